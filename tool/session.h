// SPDX-License-Identifier: Apache-2.0
// What every command has: the host that the library reports to, and a graph read from a file.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "graph/graph_scene.h"
#include "host/standalone_host.h"
#include "tool/json.h"

namespace tidemark::tool {

/// Least grave level of a message that makes a command fail.
struct FailLevel {
    int level = tidemark::graph::messageLevelError;

    bool isReachedBy(int messageLevel) const { return messageLevel <= level; }
};

/// A graph with its layout.
struct Graph {
    sluice::graph::SL_GraphScene scene;
    tidemark::graph::GraphLayout layout;
    std::string path;
};

class Progress;

/// Reads `path` into `graph`, which is new. False when nothing could be read at all; the reason was
/// reported to the host. `progress`, which may be null, is told how far the reading is.
bool readGraph(const std::string& path, Graph& graph, Progress* progress = nullptr);

/// Writes the graph to `path`, whole or not at all. Throws `UsageError` when it could not, and when
/// `path` is the graph's own file and reading it lost something (`readingLost`).
void writeGraph(Graph& graph, const std::string& path, bool readingLost);

/// [{"id", "text"}]
Json reportsJson(const Array<host::StandaloneHost::Report>& reports);

/// Prints what was reported to the host, as warnings; false when nothing was.
bool printReports(host::StandaloneHost& host);

/// Whether two paths lead to the same existing file.
bool isSameFile(const std::string& a, const std::string& b);

} // namespace tidemark::tool
