// SPDX-License-Identifier: Apache-2.0
// Scenes: the main loop and its failures.
#include <exception>
#include <new>

#include "bridge/host.h"
#include "core/exceptions.h"
#include "graph/graph_scene.h"

namespace tidemark::sluice::graph {

namespace id = bridge::message;

void SL_GraphScene::setAllAttributesNotToBeEvaluated() {
    networkManager().clearToBeEvaluatedFlags();
}

void SL_GraphScene::beginRun() {
    outcome_ = RunOutcome::finished;
    interruptedNodeName_.clear();
    networkManager().forgetFailure();
    networkManager().setDirtyHold(false);
    networkManager().setEvaluating(true);
}

void SL_GraphScene::noteEnd(RunOutcome outcome) {
    outcome_ = outcome;
    const auto failed = static_cast<unsigned>(networkManager().failedNodeId());
    if (const GraphNodeBase* node = getNodePtrById(failed)) {
        interruptedNodeName_ = node->getFullName();
    }
}

// What ends a run. Anything that is no `std::exception` goes on to the caller, and the network goes
// on evaluating.
template <typename Step>
void SL_GraphScene::runGuarded(Step step) {
    auto& center = bridge::CCallbackCenter::Instance();
    try {
        step();
    } catch (const Exception& exception) {
        const bool isInterrupt =
            networkManager().isInterrupted() && exception.code() == cancelExceptionCode;
        if (isInterrupt) networkManager().clearInterrupt();
        noteEnd(isInterrupt           ? RunOutcome::interrupted
                : exception.isQuiet() ? RunOutcome::quietCancel
                                      : RunOutcome::exception);
        // Whose run this one is a part of reports an interrupt once for all.
        const bool isReportedAbove = isInterrupt && networkManager().isPrivate();
        if (!exception.isQuiet() && !isReportedAbove)
            center.Post(id::runException, exception.message());
    } catch (const std::bad_alloc&) {
        noteEnd(RunOutcome::outOfMemory);
        center.Post(id::outOfMemory);
    } catch (const std::exception& exception) {
        noteEnd(RunOutcome::exception);
        center.Post(id::panelLine, exception.what());
    } catch (...) {
        noteEnd(RunOutcome::exception);
        throw;
    }
}

void SL_GraphScene::run() {
    outcome_ = RunOutcome::finished;
    interruptedNodeName_.clear();
    if (arrUpdateNodes_.empty()) return;
    Timer timer;
    const bool monitoring = networkManager().monitoring();
    setAllAttributesNotToBeEvaluated();
    beginRun();
    if (monitoring) timer.start();
    for (uint32_t i = 0; i < arrUpdateNodes_.size(); ++i) arrUpdateNodes_[i]->preUpdate();
    runGuarded([this] {
        const uint32_t count = arrUpdateNodes_.size();
        for (uint32_t i = 0; i < count && i < arrUpdateNodes_.size(); ++i) {
            NodeBase* const node = arrUpdateNodes_[i];
            if (node->getType() == "Evaluator") node->update();
        }
    });
    for (uint32_t i = 0; i < arrUpdateNodes_.size(); ++i) arrUpdateNodes_[i]->postUpdate();
    if (monitoring) {
        timer.stop();
        lastExecutionTime_ = timer.getTime();
    }
    networkManager().setEvaluating(false);
}

// `postUpdate` is not called here, and time is taken whether anybody monitors or not.
template <typename Before, typename Step>
void SL_GraphScene::runSingle(Before before, Step step) {
    auto& center = bridge::CCallbackCenter::Instance();
    center.Message("GRAPH RUN");
    beginRun();
    Timer timer;
    timer.start();
    clearMessages();
    setAllAttributesNotToBeEvaluated();
    before();
    runGuarded(step);
    networkManager().setEvaluating(false);
    timer.stop();
    lastExecutionTime_ = timer.getTime();
    center.Message(text::format("GRAPH RUN TIME: %f", lastExecutionTime_));
}

namespace {

// Nodes that compute only what is wanted look at this flag.
void wantWithUpstream(weft::Attribute* attribute) {
    Array<weft::Attribute*> upstream;
    attribute->networkManager()->collectUpstream(attribute, upstream);
    for (weft::Attribute* wanted : upstream) wanted->setToBeEvaluated(true);
    attribute->setToBeEvaluated(true);
}

} // namespace

void SL_GraphScene::runNode(NodeBase* node) {
    if (!node) return;
    runSingle(
        [node] {
            node->preUpdate();
            const weft::Node* const logic = node->getCoreNode();
            if (!logic) return;
            for (weft::Attribute* output : logic->refOutputAttributes()) wantWithUpstream(output);
        },
        [node] { node->update(); });
}

void SL_GraphScene::runPin(Pin* pin) {
    if (!pin) return;
    runSingle(
        [pin] {
            pin->setDirtyUpstream(true);
            if (pin->getWeftAttribute()) pin->getWeftAttribute()->setToBeEvaluated(true);
        },
        [pin] { pin->update(); });
}

void SL_GraphScene::updateNodes_notCleaning(const TM_String& category) {
    for (const auto entry : nodesById()) {
        if (entry.value->getCategory() == category) entry.value->update_notCleaning();
    }
}

void SL_GraphScene::addUpstreamNodes(Node* node, Array<Node*>& out) const {
    const weft::Node* const own = node->getCoreNode();
    for (const Pin* pin : node->getArrInputPin()) {
        const weft::Attribute* const attribute = pin->getWeftAttribute();
        if (!attribute) continue;
        Array<weft::Attribute*> upstream;
        networkManager().collectUpstream(attribute, upstream);
        for (const weft::Attribute* found : upstream) {
            if (!found->isOutput() || !found->parent() || found->parent() == own) continue;
            if (Node* owner = nodeOf(found->parent())) out.append(owner);
        }
    }
}

void SL_GraphScene::addDownstream_EvaluatorAndFor_Nodes(Node* node, Array<Node*>& evaluators,
                                                        Array<Node*>& fors) const {
    const weft::Node* const own = node->getCoreNode();
    const auto add = [this, own](const weft::Attribute* found, bool isEnd, const char* className,
                                 Array<Node*>& out) {
        const weft::Node* const owner = found->parent();
        if (!isEnd || !owner || owner == own || owner->classNameView() != className) return;
        if (Node* graphNode = nodeOf(owner)) out.append(graphNode);
    };
    for (const Pin* pin : node->getArrOutputPin()) {
        const weft::Attribute* const attribute = pin->getWeftAttribute();
        if (!attribute) continue;
        Array<weft::Attribute*> found;
        networkManager().collectDownstream(attribute, found);
        for (const weft::Attribute* a : found) add(a, a->isInput(), "Evaluator", evaluators);
        networkManager().collectUpstream(attribute, found);
        for (const weft::Attribute* a : found) add(a, a->isOutput(), "For", fors);
    }
}

void interruptGlobalGraph() {
    throw CancelGraphException("Graph execution cancelled", cancelExceptionCode);
}

} // namespace tidemark::sluice::graph
