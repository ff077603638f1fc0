// SPDX-License-Identifier: Apache-2.0
// Finding and registering compound files.
#include "tool/library.h"

#include <algorithm>
#include <filesystem>

#include "graph/scene_manager.h"
#include "persistence/compound_file.h"
#include "tool/exit_status.h"

namespace tidemark::tool {

namespace {

namespace fs = std::filesystem;
using sluice::graph::RefToPathNodeFactory;
using sluice::graph::SceneManager;

std::vector<std::string> waitingFolders;

// Links are not followed: they may lead round in a ring.
std::vector<std::string> graphFilesBelow(const std::string& folder) {
    std::error_code error;
    std::vector<std::string> files;
    fs::recursive_directory_iterator entry(folder, error);
    for (const fs::recursive_directory_iterator end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unknown;
        // Such files are not meant to be seen, and what stands before their point names no type.
        if (entry->path().filename().string().front() == '.') {
            entry.disable_recursion_pending();
            continue;
        }
        if (entry->is_regular_file(unknown) && entry->path().extension() == ".xml") {
            files.push_back(entry->path().string());
        }
    }
    if (error) {
        throw UsageError("the library folder \"" + folder +
                         "\" cannot be listed: " + error.message());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// Points in the folder's own path would end the types' names, so the factories get the path below
// it.
void registerFolder(const std::string& folder) {
    std::string path = fs::path(folder).lexically_normal().string();
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    for (const std::string& file : graphFilesBelow(path)) {
        auto* factory = new RefToPathNodeFactory(file.substr(path.size()));
        factory->setFilePath(file);
        SceneManager::instance().registerNodeFactory(factory);
    }
}

} // namespace

void setLibraries(std::vector<std::string> folders) { waitingFolders = std::move(folders); }

void registerLibraries() {
    const std::vector<std::string> folders = std::move(waitingFolders);
    waitingFolders.clear();
    for (const std::string& folder : folders) registerFolder(folder);
}

} // namespace tidemark::tool
