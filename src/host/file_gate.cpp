// SPDX-License-Identifier: Apache-2.0
// Following paths and comparing them with the allowed folders.
#include "host/file_gate.h"

#include <algorithm>
#include <list>

namespace tidemark::host {

namespace fs = std::filesystem;

namespace {

constexpr int mostLinks = 40;

bool isAtOrBelow(const fs::path& path, const fs::path& folder) {
    const auto ends = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return ends.first == folder.end();
}

// A folder that can not be followed allows nothing: no resolved path begins like this.
fs::path rootOf(const fs::path& folder) { return resolvedPath(folder).value_or("unreachable"); }

bool isAllowed(const std::string& path, const std::optional<fs::path>& root) {
    if (path.empty() || path.find('\0') != std::string::npos) return false;
    if (!root) return true;
    const std::optional<fs::path> resolved = resolvedPath(path);
    return resolved && isAtOrBelow(*resolved, *root);
}

} // namespace

std::optional<fs::path> resolvedPath(const fs::path& path) {
    std::error_code error;
    const fs::path start = path.is_absolute() ? path : fs::current_path(error) / path;
    if (error) return std::nullopt;
    std::list<fs::path> rest(start.begin(), start.end());
    fs::path done;
    int links = 0;
    while (!rest.empty()) {
        const fs::path part = rest.front();
        rest.pop_front();
        if (part.empty() || part == ".") continue;
        if (part == "..") {
            done = done.parent_path();
            continue;
        }
        const fs::path next = done / part;
        if (!fs::is_symlink(fs::symlink_status(next, error))) {
            done = next;
            continue;
        }
        const fs::path target = fs::read_symlink(next, error);
        if (error || ++links > mostLinks) return std::nullopt;
        if (target.is_absolute()) done.clear();
        rest.insert(rest.begin(), target.begin(), target.end());
    }
    return done;
}

FileGate FileGate::writingBelow(const fs::path& folder) {
    FileGate gate;
    gate.writeRoot_ = rootOf(folder);
    return gate;
}

FileGate FileGate::confinedTo(const fs::path& folder) {
    FileGate gate;
    gate.readRoot_ = gate.writeRoot_ = rootOf(folder);
    return gate;
}

bool FileGate::mayRead(const std::string& path) const { return isAllowed(path, readRoot_); }

bool FileGate::mayWrite(const std::string& path) const {
    return mayWriteAtAll_ && isAllowed(path, writeRoot_);
}

} // namespace tidemark::host
