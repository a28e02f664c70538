// lumivale selfcheck DIR (and LUMIVALE_SELFTEST=DIR lumivale): the self-check.

#include "app/SelfTest.h"
#include "cli/Command.h"

#include <iomanip>
#include <iostream>

namespace lumivale::cli {

int selfCheck(std::vector<std::string> args) {
    if (args.size() != 1) return usageError("usage: lumivale selfcheck DIR");
    const std::string dir = absolutePathOf(args[0]);
    const SelfTest::Outcome outcome = SelfTest::run(dir);
    std::cout << outcome.report << "(" << std::fixed << std::setprecision(1) << outcome.seconds
              << " seconds; report in " << dir << "/selftest.txt)\n";
    return outcome.failures == 0 ? Exit::done : Exit::failed;
}

namespace {
LUMIVALE_COMMAND("selfcheck", "selfcheck DIR",
                 "checks the whole program on made-up screenshots and writes DIR/selftest.txt",
                 selfCheck);
}

} // namespace lumivale::cli
