// SPDX-License-Identifier: Apache-2.0
// `sluice convert`: reads a graph and writes it again in today's form.
#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/progress.h"

namespace tidemark::tool {

int convertGraph(const ConvertOptions& options) {
    using Line = host::StandaloneHost::Line;
    host::StandaloneHost host;
    host.setSink([](Line kind, const TM_String& line) {
        if (kind == Line::report) console::report(tidemark::graph::messageLevelError, line);
    });
    bridge::setHost(&host);
    Progress progress(ProgressMode::automatic, 0);
    Graph graph;
    progress.step("reading", options.in);
    if (!readGraph(options.in, graph, &progress)) return console::leave(exitBadUse);
    const bool readingLost = !host.takeReports().empty();
    progress.step("writing", options.out);
    writeGraph(graph, options.out, readingLost);
    return console::leave(readingLost ? exitFailed : exitDone);
}

} // namespace tidemark::tool
