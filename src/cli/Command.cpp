#include "cli/Command.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace lumivale::cli {
namespace {

std::vector<Command>& registry() {
    static std::vector<Command> all;
    return all;
}

} // namespace

Registration::Registration(Command command) {
    auto& all = registry();
    all.insert(std::upper_bound(all.begin(), all.end(), command,
                                [](const Command& a, const Command& b) {
                                    return std::string(a.name) < std::string(b.name);
                                }),
               command);
}

const std::vector<Command>& commands() { return registry(); }

const Command* commandNamed(const std::string& name) {
    for (const Command& command : registry())
        if (name == command.name) return &command;
    return nullptr;
}

bool takeFlag(std::vector<std::string>& args, const std::string& flag) {
    const auto it = std::find(args.begin(), args.end(), flag);
    if (it == args.end())
        return false;
    args.erase(it);
    return true;
}

std::vector<std::string> takeValues(std::vector<std::string>& args, const std::string& flag, bool& missing) {
    std::vector<std::string> values;
    for (size_t i = 0; i < args.size();) {
        if (args[i] == flag) {
            if (i + 1 >= args.size()) {
                missing = true;
                args.erase(args.begin() + static_cast<long>(i));
                continue;
            }
            values.push_back(args[i + 1]);
            args.erase(args.begin() + static_cast<long>(i), args.begin() + static_cast<long>(i) + 2);
        } else if (args[i].rfind(flag + "=", 0) == 0) {
            values.push_back(args[i].substr(flag.size() + 1));
            args.erase(args.begin() + static_cast<long>(i));
        } else {
            ++i;
        }
    }
    return values;
}

int usageError(const std::string& message) {
    std::cerr << "lumivale: " << message << "\n";
    return Exit::usage;
}

void printError(const std::string& message) { std::cerr << "lumivale: " << message << "\n"; }

std::string absolutePathOf(const std::string& path) {
    std::error_code ec;
    const auto absolute = std::filesystem::absolute(path, ec);
    return (ec ? std::filesystem::path(path) : absolute).lexically_normal().string();
}

} // namespace lumivale::cli
