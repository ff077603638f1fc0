// SPDX-License-Identifier: Apache-2.0
// Lines on stderr around one progress line, and stdout with its failures noticed.
#include "tool/console.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "core/message_handler.h"
#include "tool/exit_status.h"

namespace tidemark::tool::console {

namespace {

std::mutex mutex; // of stderr and the progress line
std::string shownProgress;
bool colorForbidden = false;

constexpr std::string_view eraseLine = "\r\033[K";

void write(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

// Whether what goes to stdout would appear behind the progress line.
bool outIsTerminal() {
    static const bool terminal = isatty(STDOUT_FILENO) != 0;
    return terminal;
}

bool usesColor() {
    const char* noColor = std::getenv("NO_COLOR");
    return hasTerminal() && !colorForbidden && !(noColor && *noColor);
}

const char* colorOf(int level) {
    constexpr const char* red = "\033[1;31m";
    constexpr const char* yellow = "\033[33m";
    constexpr const char* faint = "\033[2m";
    if (level <= tidemark::graph::messageLevelError) return red;
    return level == tidemark::graph::messageLevelWarning ? yellow : faint;
}

} // namespace

void forbidColor() { colorForbidden = true; }

bool hasTerminal() {
    static const bool terminal = [] {
        const char* kind = std::getenv("TERM");
        return isatty(STDERR_FILENO) && kind && std::strcmp(kind, "dumb") != 0;
    }();
    return terminal;
}

std::string printable(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool controls = (byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7f;
        clean += controls ? '?' : c;
    }
    return clean;
}

void line(std::string_view text) {
    const std::string clean = printable(text) + "\n";
    const std::lock_guard<std::mutex> lock(mutex);
    if (!shownProgress.empty()) write(eraseLine);
    write(clean);
    write(shownProgress);
}

void report(int level, std::string_view text) {
    const std::string name = tidemark::graph::messageLevelName(level);
    const std::string clean = printable(text) + "\n";
    const std::lock_guard<std::mutex> lock(mutex);
    if (!shownProgress.empty()) write(eraseLine);
    write(usesColor() ? colorOf(level) + name + "\033[0m" : name);
    write(clean.front() == '[' ? " " : ": ");
    write(clean);
    write(shownProgress);
}

void progressLine(std::string_view text) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (shownProgress.empty() && text.empty()) return;
    write(eraseLine);
    shownProgress = printable(text);
    write(shownProgress);
    std::fflush(stderr);
}

void out(std::string_view text) {
    const std::lock_guard<std::mutex> lock(mutex);
    const bool isInTheWay = !shownProgress.empty() && outIsTerminal();
    if (isInTheWay) {
        write(eraseLine);
        std::fflush(stderr);
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (!isInTheWay) return;
    std::fflush(stdout);
    write(shownProgress);
    std::fflush(stderr);
}

void flushOut() {
    if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return;
    throw UsageError(std::string("can not write to standard output: ") + std::strerror(errno));
}

int leave(int status) {
    flushOut();
    std::fflush(stderr);
#ifdef NDEBUG
    std::_Exit(status);
#else
    return status;
#endif
}

} // namespace tidemark::tool::console
