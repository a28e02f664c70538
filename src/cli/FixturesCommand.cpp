// `lumivale fixtures DIR`: draws the made-up screenshots into a folder.

#include "app/Fixtures.h"
#include "cli/Command.h"

#include <iostream>

namespace lumivale::cli {
namespace {

int runFixtures(std::vector<std::string> args) {
    if (args.size() != 1 || args[0].empty() || args[0].front() == '-')
        return usageError("usage: lumivale fixtures DIR");
    const auto result = Fixtures::write(Fixtures::all(), args[0], now());
    for (const auto& [fixture, path] : result.files)
        std::cout << fixtureKindId(fixture.kind) << '\t' << shelfId(fixture.expected) << '\t'
                  << (fixture.sensitive ? "true" : "false") << '\t' << path << '\n';
    if (!result.status) {
        printError(result.status.message());
        return Exit::failed;
    }
    return Exit::done;
}

} // namespace

LUMIVALE_COMMAND("fixtures", "fixtures DIR",
                 "draws the sixteen made-up screenshots into DIR and lists them", runFixtures);

} // namespace lumivale::cli
