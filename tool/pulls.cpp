// SPDX-License-Identifier: Apache-2.0
// Temporary evaluators and the walk against the flow.
#include "tool/pulls.h"

#include <unordered_set>

#include "tool/exit_status.h"
#include "tool/pins.h"

namespace tidemark::tool {

namespace {

using sluice::graph::Node;
using sluice::graph::NodeBase;
using sluice::graph::Pin;
using sluice::graph::SL_GraphScene;

/// What an attribute's computation reads, in order.
void appendReads(const weft::Attribute& attribute, std::vector<weft::Attribute*>& out) {
    if (attribute.source()) out.push_back(attribute.source());
    if (attribute.isInput()) return;
    for (weft::Attribute* input : attribute.affectedBy()) out.push_back(input);
}

} // namespace

Pin& TemporaryPulls::freeInput() {
    for (Pin* input : evaluator_->getArrInputPin()) {
        if (!input->isConnected()) return *input;
    }
    return *static_cast<Pin*>(evaluator_->addDynamicInputPin());
}

void TemporaryPulls::add(const std::string& pinName) {
    Pin& pin = findPin(scene_, pinName);
    const weft::Attribute* attribute = pin.getWeftAttribute();
    if (!attribute || !attribute->isOutput()) {
        throw UsageError("\"" + pinName + "\" is an input; only outputs can be pulled");
    }
    if (!evaluator_) {
        evaluator_ = static_cast<Node*>(scene_.createNewEvaluator());
        scene_.addNodeToGraph(evaluator_);
        evaluator_->setNodeOwner(scene_.getRootNode());
    }
    if (!scene_.connect(&pin, &freeInput(), false)) {
        throw UsageError("output \"" + pinName + "\" can not be pulled");
    }
}

void TemporaryPulls::remove() {
    if (evaluator_) scene_.removeNodeFromGraph(evaluator_);
    evaluator_ = nullptr;
}

std::vector<Node*> pullOrder(const SL_GraphScene& scene) {
    std::vector<Node*> order;
    std::unordered_set<const weft::Attribute*> seen;
    std::unordered_set<const Node*> listed;
    std::vector<weft::Attribute*> open;
    std::vector<weft::Attribute*> next;
    for (const NodeBase* evaluator : scene.getArrUpdateNodes()) {
        if (!evaluator->isEvaluator()) continue;
        const auto& inputs = evaluator->getArrInputPin();
        for (uint32_t i = inputs.size(); i > 0; --i) {
            open.push_back(inputs[i - 1]->getWeftAttribute());
        }
        while (!open.empty()) {
            weft::Attribute* attribute = open.back();
            open.pop_back();
            if (!seen.insert(attribute).second) continue;
            Node* node = scene.nodeOf(attribute->parent());
            if (node && listed.insert(node).second) order.push_back(node);
            next.clear();
            appendReads(*attribute, next);
            open.insert(open.end(), next.rbegin(), next.rend());
        }
    }
    return order;
}

} // namespace tidemark::tool
