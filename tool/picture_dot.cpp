// SPDX-License-Identifier: Apache-2.0
// Pictures for Graphviz.
#include <algorithm>
#include <unordered_map>

#include "core/markup.h"
#include "tool/picture_colors.h"
#include "tool/picture_writers.h"

namespace tidemark::tool {

namespace {

using sluice::graph::NodeBase;
using sluice::graph::Pin;
using sluice::graph::SL_GraphScene;
using tidemark::graph::GraphConnection;
using tidemark::graph::GraphNodeBase;
using tidemark::graph::GraphNodePin;

/// As markup of a label. Graphviz refuses empty elements.
std::string bold(const std::string& text) {
    return text.empty() ? " " : "<B>" + text::escapedMarkup(text) + "</B>";
}

/// Writes one picture. Nodes are numbered: full names need not be unique.
class Dot {
public:
    explicit Dot(const SL_GraphScene& scene) : scene_(scene) {}

    std::string write() {
        out_ = "digraph graph_ {\nrankdir=LR;\nnode [shape=plain, fontname=\"Helvetica\", "
               "fontsize=10];\n";
        for (const GraphNodeBase* child : scene_.getRootNode()->children()) addNode(*child);
        for (const GraphConnection* wire : scene_.connections()) {
            const std::string source = port(wire->getSourcePin());
            const std::string target = port(wire->getTargetPin());
            if (!source.empty() && !target.empty()) out_ += source + " -> " + target + ";\n";
        }
        return std::move(out_) + "}\n";
    }

private:
    static std::string cells(const Array<Pin*>& pins, const char* side, const char* align) {
        std::string rows;
        for (uint32_t i = 0; i < pins.size(); ++i) {
            rows += std::string("<TR><TD PORT=\"") + side + std::to_string(i) + "\" ALIGN=\"" +
                    align + "\">" + text::escapedMarkup(pins[i]->getName()) + "</TD></TR>";
        }
        return rows.empty() ? std::string("<TR><TD></TD></TR>") : rows;
    }

    std::string port(const GraphNodePin* pin) const {
        const auto* own = static_cast<const Pin*>(pin);
        const auto* node = static_cast<const NodeBase*>(pin->getParentGraphNodePtr());
        const auto number = numbers_.find(node);
        if (number == numbers_.end()) return {};
        const Array<Pin*>& pins = pin->isInput() ? node->getArrInputPin() : node->getArrOutputPin();
        return "n" + std::to_string(number->second) + (pin->isInput() ? ":i" : ":o") +
               std::to_string(std::max<int64_t>(pins.indexOf(const_cast<Pin*>(own)), 0));
    }

    // The depth is bounded: files that nest deeper than a limit are refused.
    void addNode(const GraphNodeBase& base) {
        const auto& node = static_cast<const NodeBase&>(base);
        const std::string number = std::to_string(numbers_.size() + 1);
        numbers_.emplace(&node, numbers_.size() + 1);
        const bool isFrame = !node.children().empty();
        if (isFrame) {
            out_ += "subgraph cluster_" + std::to_string(++clusters_) + " {\nlabel=<" +
                    bold(node.getName()) + ">;\n";
        }
        const Color4<float> color = SL_GraphScene::getColorForCategory(node.getCategory());
        const char* const table = "<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"0\">";
        out_ += "n" + number +
                " [label=<<TABLE BORDER=\"1\" CELLBORDER=\"0\" CELLSPACING=\"0\"><TR><TD "
                "COLSPAN=\"2\" BGCOLOR=\"" +
                hex(color) + "\"><FONT COLOR=\"" + (isDark(color) ? "white" : "black") + "\">" +
                bold(headName(node)) + " " + text::escapedMarkup(headType(node)) +
                "</FONT></TD></TR><TR><TD>" + table + cells(node.getArrInputPin(), "i", "LEFT") +
                "</TABLE></TD><TD>" + table + cells(node.getArrOutputPin(), "o", "RIGHT") +
                "</TABLE></TD></TR></TABLE>>];\n";
        for (const GraphNodeBase* child : node.children()) addNode(*child);
        if (isFrame) out_ += "}\n";
    }

    const SL_GraphScene& scene_;
    std::unordered_map<const GraphNodeBase*, std::size_t> numbers_;
    unsigned clusters_ = 0;
    std::string out_;
};

} // namespace

std::string dotOf(const SL_GraphScene& scene) { return Dot(scene).write(); }

} // namespace tidemark::tool
