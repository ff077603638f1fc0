// SPDX-License-Identifier: Apache-2.0
// The standalone host: reports, lines, settings.
#include "host/standalone_host.h"

#include "host/message_table.h"
#include "platform/processors.h"

namespace tidemark::host {

StandaloneHost::StandaloneHost() = default;

StandaloneHost::~StandaloneHost() {
    if (&bridge::host() == this) bridge::setHost(nullptr);
}

void StandaloneHost::setSink(Sink sink) {
    const std::lock_guard<std::mutex> lock(mutex_);
    sink_ = std::move(sink);
}

Array<StandaloneHost::Report> StandaloneHost::takeReports() {
    const std::lock_guard<std::mutex> lock(mutex_);
    Array<Report> taken(std::move(reports_));
    reports_.reset();
    return taken;
}

void StandaloneHost::setNumberOfThreads(int threads) { numberOfThreads_ = threads; }

void StandaloneHost::setFileGate(FileGate gate) {
    const std::lock_guard<std::mutex> lock(mutex_);
    fileGate_ = std::move(gate);
}

void StandaloneHost::hand(Line line, const TM_String& text) {
    if (sink_) sink_(line, text);
}

void StandaloneHost::post(int id, const Array<TM_String>& arguments) {
    const bool isPanelLine = id == bridge::message::panelLine || id == bridge::message::panelDetail;
    const TM_String text = messageText(id, arguments);
    const std::lock_guard<std::mutex> lock(mutex_);
    reports_.append(Report{id, text});
    hand(isPanelLine ? Line::panel : Line::report, text);
}

void StandaloneHost::message(const TM_String& line) {
    const std::lock_guard<std::mutex> lock(mutex_);
    hand(Line::message, line);
}

void StandaloneHost::print(const TM_String& line) {
    const std::lock_guard<std::mutex> lock(mutex_);
    hand(Line::print, line);
}

int StandaloneHost::numberOfThreads() const { return platform::threadCount(numberOfThreads_); }

FileGate StandaloneHost::fileGate() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return fileGate_;
}

bool StandaloneHost::mayRead(const TM_String& path) const { return fileGate().mayRead(path); }

bool StandaloneHost::mayWrite(const TM_String& path) const { return fileGate().mayWrite(path); }

} // namespace tidemark::host
