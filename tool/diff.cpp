// SPDX-License-Identifier: Apache-2.0
// `sluice diff`: reads two graphs and tells what differs.
#include <algorithm>
#include <fstream>
#include <iterator>

#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/graph_diff.h"
#include "tool/progress.h"

namespace tidemark::tool {

namespace {

using host::StandaloneHost;
using Reports = Array<StandaloneHost::Report>;

/// One of the two files.
struct Side {
    Graph graph;
    Reports reports; // of what could not be read
};

bool read(const std::string& path, StandaloneHost& host, Side& side) {
    Progress progress(ProgressMode::automatic, 0);
    progress.step("reading", path);
    const bool good = readGraph(path, side.graph, &progress);
    side.reports = host.takeReports();
    for (const StandaloneHost::Report& report : side.reports) {
        console::report(tidemark::graph::messageLevelError, path + ": " + report.text);
    }
    return good;
}

bool haveEqualBytes(const std::string& a, const std::string& b) {
    using Bytes = std::istreambuf_iterator<char>;
    std::ifstream streamOfA(a, std::ios::binary);
    std::ifstream streamOfB(b, std::ios::binary);
    return streamOfA && streamOfB &&
           std::equal(Bytes(streamOfA), Bytes(), Bytes(streamOfB), Bytes());
}

/// What could not be read could not be compared either, so it counts as different unless the files
/// are the same.
void addReadingDifferences(const Side& a, const Side& b, std::vector<Difference>& differences) {
    if (a.reports.empty() && b.reports.empty()) return;
    const auto texts = [](const Reports& reports) {
        Json list = nullptr;
        for (const StandaloneHost::Report& report : reports) list.push_back(report.text);
        return list;
    };
    differences.push_back(
        {"reading", "parts that could not be read", "", texts(a.reports), texts(b.reports)});
}

Json differencesJson(const std::vector<Difference>& differences) {
    Json list = Json::array();
    for (const Difference& difference : differences) list.push_back(differenceJson(difference));
    return list;
}

void print(const DiffOptions& options, const std::vector<Difference>& differences) {
    if (options.json) {
        console::out(document({{"schema", "sluice.diff/1"},
                               {"a", options.a},
                               {"b", options.b},
                               {"equal", differences.empty()},
                               {"differences", differencesJson(differences)}}));
        return;
    }
    for (const Difference& difference : differences) {
        const std::string line = text::replaceAll(differenceText(difference), "\n", "\\n");
        console::out(console::printable(line) + "\n");
    }
}

} // namespace

int diffGraphs(const DiffOptions& options) {
    StandaloneHost host;
    bridge::setHost(&host);
    Side a;
    Side b;
    const bool isReadA = read(options.a, host, a);
    const bool isReadB = read(options.b, host, b);
    std::vector<Difference> differences;
    if (isReadA && isReadB) differences = compareGraphs(a.graph, b.graph, !options.ignoresLayout);
    if (!isReadA || !isReadB || !haveEqualBytes(options.a, options.b)) {
        addReadingDifferences(a, b, differences);
    }
    if (!isReadA || !isReadB) {
        if (options.json) print(options, differences);
        return console::leave(exitBadUse);
    }
    print(options, differences);
    const std::size_t count = differences.size();
    console::line(count == 0
                      ? "equal"
                      : std::to_string(count) + (count == 1 ? " difference" : " differences"));
    return console::leave(count == 0 ? exitDone : exitFailed);
}

} // namespace tidemark::tool
