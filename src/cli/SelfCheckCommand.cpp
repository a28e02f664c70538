// lumivale selfcheck DIR (and LUMIVALE_SELFTEST=DIR lumivale): the self-check.

#include "app/SelfTest.h"
#include "cli/Command.h"
#include "core/FileOps.h"

#include <iomanip>
#include <iostream>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace lumivale::cli {

bool giveUpFileOverrides() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct caps[_LINUX_CAPABILITY_U32S_3] = {};
    if (syscall(SYS_capget, &header, caps) != 0)
        return false;
    for (const int cap : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        const uint32_t bit = 1u << (cap % 32);
        caps[cap / 32].effective &= ~bit;
        caps[cap / 32].permitted &= ~bit;
        caps[cap / 32].inheritable &= ~bit;
        // Out of the bounding set too, so that no program started from here gets them back.
        prctl(PR_CAPBSET_DROP, cap, 0, 0, 0);
    }
    return syscall(SYS_capset, &header, caps) == 0;
}

int selfCheck(std::vector<std::string> args) {
    if (args.size() != 1) return usageError("usage: lumivale selfcheck DIR");
    const std::string dir = absolutePathOf(args[0]);
    // Find out now, not after every check, whether the report can be written there.
    Status usable = makeFolders(dir);
    if (usable) {
        const TemporaryFile probe(dir);
        if (probe.error()) usable = Status::failure(describeErrno(probe.error()), probe.error());
    }
    if (!usable) {
        printError("the self-check can't write into " + dir + ": " + usable.message());
        return Exit::failed;
    }
    const SelfTest::Outcome outcome = SelfTest::run(dir);
    std::cout << outcome.report;
    if (!outcome.written) {
        printError("the report couldn't be written into " + dir + ": " + outcome.written.message());
        return Exit::failed;
    }
    std::cout << "(" << std::fixed << std::setprecision(1) << outcome.seconds << " seconds; report in " << dir
              << "/selftest.txt)\n";
    return outcome.failures == 0 ? Exit::done : Exit::failed;
}

namespace {
LUMIVALE_COMMAND("selfcheck", "selfcheck DIR",
                 "checks the whole program on made-up screenshots and writes DIR/selftest.txt",
                 selfCheck);
}

} // namespace lumivale::cli
