// SPDX-License-Identifier: Apache-2.0
// The two output streams: results on stdout, everything else as lines on stderr, with colour on a
// terminal only.
#pragma once

#include <string>
#include <string_view>

namespace tidemark::tool::console {

/// `--no-color`; NO_COLOR in the environment does the same.
void forbidColor();

/// Whether stderr is a terminal that takes rewritten lines.
bool hasTerminal();

/// A line on stderr, above the progress line. May be called from any thread.
void line(std::string_view text);

/// "error: text" and the like on stderr, the level's name in colour. Levels as of messages.
void report(int level, std::string_view text);

/// Shows `text` as the rewritten last line of the terminal; empty takes it away.
void progressLine(std::string_view text);

/// Appends whole lines to stdout; on a terminal, above the progress line. May be called from any
/// thread.
void out(std::string_view text);

/// Writes what stdout still holds back; throws `UsageError` when it could not all be written.
void flushOut();

/// The last step of a command: the caller returns `leave(status)`. Builds for users end the process
/// here, with everything written: taking a large graph apart would only delay the end. Other builds
/// return, so that leak checks and coverage see the whole life of the program.
int leave(int status);

/// `text` without control characters that would act on a terminal; newlines stay.
std::string printable(std::string_view text);

} // namespace tidemark::tool::console
