#pragma once

// The subcommands of the `lumivale` program. Each command file registers itself with
// LUMIVALE_COMMAND, so the dispatcher needs no list of them.

#include <optional>
#include <string>
#include <vector>

namespace lumivale::cli {

// Exit statuses shared by every command.
enum Exit { done = 0, failed = 1, usage = 2 };

// What a command does with the user's library. While the window is open, its process runs the
// commands that read or change the library, so they see and change what the window shows; else
// a command that changes it holds the data folder's lock while it runs.
enum class Access { none, reads, changes };

struct Command {
    const char* name;
    const char* usage;   // "read [--json] [--lang TAG]... FILE..."
    const char* summary; // one line for --help
    int (*run)(std::vector<std::string> args);
    Access access = Access::none;
};

// The registered command of that name, or null.
const Command* commandNamed(const std::string& name);

// Every registered command, sorted by name.
const std::vector<Command>& commands();

struct Registration {
    explicit Registration(Command command);
};

// Takes a flag such as "--json" out of args; true when it was there.
bool takeFlag(std::vector<std::string>& args, const std::string& flag);
// Takes every "--name VALUE" (or "--name=VALUE") out of args, in order. A flag without its
// value sets `missing`.
std::vector<std::string> takeValues(std::vector<std::string>& args, const std::string& flag, bool& missing);
// Prints "lumivale: " + message to standard error and gives Exit::usage.
int usageError(const std::string& message);
// Prints "lumivale: " + message to standard error.
void printError(const std::string& message);
// An absolute, clean form of a path given on the command line.
std::string absolutePathOf(const std::string& path);
// The self-check into DIR (also entered through LUMIVALE_SELFTEST).
int selfCheck(std::vector<std::string> args);
// Gives up the power to read and write every file that root has, so that the self-check finds
// permissions as a user does; before any thread starts, as it holds for this thread only.
bool giveUpFileOverrides();

} // namespace lumivale::cli

#define LUMIVALE_COMMAND_CAT2(a, b) a##b
#define LUMIVALE_COMMAND_CAT(a, b) LUMIVALE_COMMAND_CAT2(a, b)
#define LUMIVALE_COMMAND(...)                                                                      \
    static const ::lumivale::cli::Registration LUMIVALE_COMMAND_CAT(registration_, __LINE__)(      \
        ::lumivale::cli::Command{__VA_ARGS__})
