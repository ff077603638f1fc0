// SPDX-License-Identifier: Apache-2.0
// `sluice check`: reads a graph and tells what is wrong with it, without running it.
#include <algorithm>
#include <unordered_set>

#include "bridge/host.h"
#include "graph/scene_manager.h"
#include "persistence/compound_file.h"
#include "persistence/node_listing.h"
#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/pins.h"
#include "tool/pulls.h"
#include "tool/run_report.h"

namespace tidemark::tool {

namespace {

using host::StandaloneHost;
using sluice::graph::NodeBase;
using sluice::graph::Pin;
using sluice::graph::RefToPathNodeFactory;
using sluice::graph::SceneManager;
using tidemark::graph::messageLevelError;
using tidemark::graph::messageLevelInfo;
using tidemark::graph::messageLevelWarning;

struct Finding {
    int level;
    const char* kind;
    int id;           ///< of the host's message; 0: none
    std::string node; ///< full name; empty: none
    std::string text;
};
using Findings = std::vector<Finding>;

void addReports(const Array<StandaloneHost::Report>& reports, Findings& findings) {
    for (const StandaloneHost::Report& report : reports) {
        // Lines of nodes come again with the messages of the nodes.
        const bool isLine =
            report.id == bridge::message::panelLine || report.id == bridge::message::panelDetail;
        if (!isLine) findings.push_back({messageLevelError, "reading", report.id, "", report.text});
    }
}

void addMessages(const Graph& graph, Findings& findings) {
    for (const NodeMessage& entry : collectMessages(graph.scene, nullptr)) {
        std::string text = entry.message.text;
        if (!entry.message.detail.empty()) text += " - " + entry.message.detail;
        findings.push_back({entry.message.level, "message", 0, entry.node, text});
    }
}

// Of the graph, and of every compound file that it needs; nodes bear their names in their file.
void addLegacyTypes(const Graph& graph, Findings& findings) {
    std::vector<std::string> files{graph.path};
    std::unordered_set<std::string> known{graph.path};
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string where = i == 0 ? "" : " in \"" + files[i] + "\"";
        for (const sluice::graph::ListedNode& node : sluice::graph::listNodesOfFile(files[i])) {
            const TM_String now = SceneManager::instance().translateLegacyNodeType(node.type);
            if (now != node.type) {
                findings.push_back(
                    {messageLevelWarning, "legacy", 0, node.fullName,
                     "old type \"" + node.type + "\" has become \"" + now + "\"" + where});
            }
            const auto* reference = dynamic_cast<RefToPathNodeFactory*>(
                SceneManager::instance().getNodeFactoryFromType(node.type));
            if (reference && known.insert(reference->getFilePath()).second) {
                files.push_back(reference->getFilePath());
            }
        }
    }
}

void addUnreached(const Graph& graph, Findings& findings) {
    std::unordered_set<const NodeBase*> reached;
    bool hasEvaluator = false;
    for (const NodeBase* node : pullOrder(graph.scene)) {
        hasEvaluator = hasEvaluator || node->isEvaluator();
        // A compound is reached with what it holds.
        for (const auto* owner = static_cast<const tidemark::graph::GraphNodeBase*>(node); owner;
             owner = owner->getNodeOwner()) {
            reached.insert(static_cast<const NodeBase*>(owner));
        }
    }
    if (!hasEvaluator) {
        findings.push_back({messageLevelWarning, "no evaluator", 0, "",
                            "the graph has no evaluator: a run computes nothing"});
        return;
    }
    for (const NodeBase* node : nodesInTreeOrder(graph.scene)) {
        const auto* owner = static_cast<const NodeBase*>(node->getNodeOwner());
        const bool isTold = owner && !owner->isRoot() && reached.count(owner) == 0;
        if (reached.count(node) != 0 || isTold || node->isEvaluator()) continue;
        findings.push_back(
            {messageLevelWarning, "unreached", 0, node->getFullName(), "no evaluator reaches it"});
    }
}

void addUnconnectedOutputs(const Graph& graph, Findings& findings) {
    for (const NodeBase* node : nodesInTreeOrder(graph.scene)) {
        for (const Pin* pin : node->getArrOutputPin()) {
            if (pin->isConnected()) continue;
            findings.push_back({messageLevelInfo, "unconnected output", 0, node->getFullName(),
                                "output \"" + pin->getName() + "\" is not connected"});
        }
    }
}

Json findingsJson(const Findings& findings) {
    Json list = Json::array();
    for (const Finding& finding : findings) {
        Json json{{"level", finding.level}, {"kind", finding.kind}};
        if (finding.id != 0) json["id"] = finding.id;
        if (!finding.node.empty()) json["node"] = finding.node;
        json["text"] = finding.text;
        list.push_back(std::move(json));
    }
    return list;
}

void printFindings(const Findings& findings) {
    for (const Finding& finding : findings) {
        std::string line = tidemark::graph::messageLevelName(finding.level);
        if (finding.id != 0) line += " " + std::to_string(finding.id);
        if (!finding.node.empty()) line += " [" + finding.node + "]";
        console::out(console::printable(line + ": " + finding.text) + "\n");
    }
}

int statusOf(const Findings& findings, const FailLevel& failLevel) {
    const bool fails = std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) {
        return failLevel.isReachedBy(finding.level);
    });
    return fails ? exitFailed : exitDone;
}

} // namespace

int checkGraph(const CheckOptions& options) {
    StandaloneHost host;
    bridge::setHost(&host);
    Graph graph;
    const bool good = readGraph(options.graph, graph);
    Findings findings;
    addReports(host.takeReports(), findings);
    if (good) {
        addMessages(graph, findings);
        addLegacyTypes(graph, findings);
        addUnreached(graph, findings);
        addUnconnectedOutputs(graph, findings);
    }
    const int status = good ? statusOf(findings, options.failLevel) : int(exitBadUse);
    if (options.json) {
        console::out(document({{"schema", "sluice.check/1"},
                               {"graph", options.graph},
                               {"ok", status == exitDone},
                               {"findings", findingsJson(findings)}}));
    } else {
        printFindings(findings);
    }
    const std::string count = std::to_string(findings.size());
    console::line(options.graph + ": " + (findings.empty() ? "nothing found" : count + " found"));
    return console::leave(status);
}

} // namespace tidemark::tool
