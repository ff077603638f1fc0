// SPDX-License-Identifier: Apache-2.0
// Reading and writing of graphs for all commands.
#include "tool/session.h"

#include <filesystem>

#include "persistence/graph_parsing_helper.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/interrupts.h"
#include "tool/library.h"
#include "tool/progress.h"

namespace tidemark::tool {

using sluice::graph::GraphParsingHelper;

bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

namespace {

Progress* readingProgress = nullptr; // of the one reading at a time

void tellProgress(const char*, uint64_t done, uint64_t total) {
    readingProgress->share(static_cast<double>(done) / static_cast<double>(total));
}

} // namespace

bool readGraph(const std::string& path, Graph& graph, Progress* progress) {
    registerLibraries();
    graph.path = path;
    readingProgress = progress;
    GraphParsingHelper::readProgress_ = progress ? tellProgress : nullptr;
    const bool good =
        GraphParsingHelper::read_XML_base_static(true, path, graph.scene, graph.layout);
    GraphParsingHelper::readProgress_ = nullptr;
    return good;
}

void writeGraph(Graph& graph, const std::string& path, bool readingLost) {
    if (readingLost && isSameFile(graph.path, path)) {
        throw UsageError("\"" + path + "\" was not written: parts of it could not be read and " +
                         "would be lost; write to another file");
    }
    const WriteSection section;
    TM_String unused;
    if (!GraphParsingHelper::write_XML_base_static(true, path, graph.scene, graph.layout, unused)) {
        throw UsageError("\"" + path + "\" could not be written");
    }
}

bool printReports(host::StandaloneHost& host) {
    const Array<host::StandaloneHost::Report> reports = host.takeReports();
    for (const host::StandaloneHost::Report& report : reports) {
        console::report(tidemark::graph::messageLevelWarning, report.text);
    }
    return !reports.empty();
}

Json reportsJson(const Array<host::StandaloneHost::Report>& reports) {
    Json list = Json::array();
    for (const host::StandaloneHost::Report& report : reports) {
        list.push_back({{"id", report.id}, {"text", report.text}});
    }
    return list;
}

} // namespace tidemark::tool
