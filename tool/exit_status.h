// SPDX-License-Identifier: Apache-2.0
// How the program ends, and the failure that ends it at once.
#pragma once

#include <stdexcept>
#include <string>

namespace tidemark::tool {

/// The program's exit status. Scripts rely on the numbers.
enum ExitStatus : int {
    exitDone = 0,        ///< nothing at or above the failing level
    exitFailed = 1,      ///< it ran, and something at or above the failing level was reported
    exitBadUse = 2,      ///< bad command line, or a file that can not be read or written at all
    exitLimit = 3,       ///< a memory or element limit was hit
    exitTimeout = 124,   ///< the time limit was hit
    exitInterrupt = 130, ///< Ctrl-C or SIGTERM
};

/// The numbers as `--help` tells them.
constexpr const char* exitStatusHelp =
    "Exit status:\n"
    "  0    done; nothing at or above the failing level was reported\n"
    "  1    it ran, but something was reported at or above the failing level (see --fail-on),\n"
    "       or an exception ended the run; for check: findings; for diff: differences\n"
    "  2    bad command line, or a file that can not be read or written at all\n"
    "  3    a memory or element limit was hit\n"
    "  124  the time of --timeout was over\n"
    "  130  interrupted (Ctrl-C, SIGTERM)\n";

/// What the user asked for can not be done: status 2, the text on stderr.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace tidemark::tool
