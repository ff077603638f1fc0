// SPDX-License-Identifier: Apache-2.0
// Folders of graph files that serve as node types.
#pragma once

#include <string>
#include <vector>

namespace tidemark::tool {

/// The folders of `--library`, for the command that runs. To be called once, before it.
void setLibraries(std::vector<std::string> folders);

/// Registers every graph file below the folders as a node type, in order of their paths, but for
/// hidden files and folders; what is wrong is reported to the host that is installed. Does its work
/// at the first call. Throws `UsageError` for a folder that cannot be listed.
void registerLibraries();

} // namespace tidemark::tool
