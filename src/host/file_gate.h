// SPDX-License-Identifier: Apache-2.0
// Which files the nodes of a graph may reach: the allowed folders for reading and for writing.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "core/export.h"

namespace tidemark::host {

/// A new gate lets everything pass. Paths are judged by where they lead: "..", and symbolic links,
/// also links to what does not exist yet, are followed first. Relative paths start at the process's
/// current folder. What a path leads to may change between the answer and its use.
class SLUICE_API FileGate {
public:
    /// Reading anywhere, writing only at or below `folder`.
    static FileGate writingBelow(const std::filesystem::path& folder);
    /// Reading and writing only at or below `folder`.
    static FileGate confinedTo(const std::filesystem::path& folder);

    /// From now on nothing may be written.
    void forbidWriting() { mayWriteAtAll_ = false; }

    /// False for an empty path, one with a NUL byte, and one that can not be followed.
    bool mayRead(const std::string& path) const;
    bool mayWrite(const std::string& path) const;

private:
    std::optional<std::filesystem::path> readRoot_;  // unset: anywhere
    std::optional<std::filesystem::path> writeRoot_; // unset: anywhere
    bool mayWriteAtAll_ = true;
};

/// `path` made absolute, without "." and "..", with all links followed, whether or not it exists.
/// Unset when the links lead in a circle or the current folder is gone.
SLUICE_API std::optional<std::filesystem::path> resolvedPath(const std::filesystem::path& path);

} // namespace tidemark::host
