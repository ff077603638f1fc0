// SPDX-License-Identifier: Apache-2.0
// Nodes: messages and timers.
#include <cstdarg>
#include <cstdio>

#include "bridge/host.h"
#include "core/exceptions.h"
#include "core/node.h"

namespace weft {

namespace graph = tidemark::graph;

namespace {

TM_String panelLine(const TM_String& who, const TM_String& text, const TM_String& detail) {
    return detail.empty() ? "[" + who + "] " + text : "[" + who + "] " + text + " - " + detail;
}

} // namespace

void Node::pushMessage(int level, const TM_String& text, const TM_String& detail) {
    if (!messages_.isLevelAllowed(level)) return;
    messages_.push(level, text, detail);
    if (level > messagePanelVerbosityLevel_) return;
    namespace id = tidemark::bridge::message;
    tidemark::bridge::CCallbackCenter::Instance().Post(
        level >= graph::messageLevelInfo ? id::panelDetail : id::panelLine,
        panelLine(name(), text, detail));
}

void Node::pushCriticalNoException(const TM_String& text, const TM_String& detail) {
    pushMessage(graph::messageLevelCritical, text, detail);
}
void Node::pushError(const TM_String& text, const TM_String& detail) {
    pushMessage(graph::messageLevelError, text, detail);
}
void Node::pushWarning(const TM_String& text, const TM_String& detail) {
    pushMessage(graph::messageLevelWarning, text, detail);
}
void Node::pushInfo(const TM_String& text, const TM_String& detail) {
    pushMessage(graph::messageLevelInfo, text, detail);
}
void Node::pushDebug(const TM_String& text, const TM_String& detail) {
    pushMessage(graph::messageLevelDebug, text, detail);
}

void Node::pushMessageFormatted(int level, const TM_String& text, const char* detailPattern, ...) {
    va_list arguments;
    va_start(arguments, detailPattern);
    const TM_String detail = tidemark::text::formatList(detailPattern, arguments);
    va_end(arguments);
    pushMessage(level, text, detail);
}

void Node::pushCritical(const TM_String& text, const TM_String& detail) {
    using namespace tidemark::sluice::graph;
    const GenericGraphException exception(panelLine(fullName(), text, detail),
                                          criticalExceptionCode);
    pushCritical(text, exception, detail);
}

// Timers.

void Node::startNodeTimer() {
    if (timerNeedsStart_) {
        nodeTimer_.start();
        timerNeedsStart_ = false;
    } else {
        nodeTimer_.resume();
    }
}

void Node::resumeNodeTimer() { nodeTimer_.resume(); }

bool Node::stopNodeTimer(bool store) {
    const bool wasRunning = nodeTimer_.isRunning();
    const Timer::Ticks time = Timer::now();
    nodeTimer_.stopAt(time);
    if (store) lastUpdateTicks_ = nodeTimer_.ticks(time);
    return wasRunning;
}

void Node::resetNodeTimer(bool alsoAttributes) {
    nodeTimer_ = Timer();
    timerNeedsStart_ = true;
    if (!alsoAttributes) return;
    for (Attribute* input : inputs_) input->resetAccumulatedTime();
    for (Attribute* output : outputs_) output->resetAccumulatedTime();
}

void Node::resetLastUpdateTime() {
    lastUpdateTicks_ = 0;
    resetNodeTimer(true);
}

float Node::getIsolatedTime() const {
    double time = 0.0;
    for (const Attribute* output : outputs_) {
        if (!output->destinations().empty()) time += output->accumulatedTime();
    }
    for (const Attribute* input : inputs_) {
        if (input->source()) time -= input->source()->accumulatedTime();
    }
    return static_cast<float>(time);
}

} // namespace weft
