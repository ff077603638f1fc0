// SPDX-License-Identifier: Apache-2.0
// Writing of trace files.
#include "tool/trace.h"

#include "persistence/file_save.h"
#include "tool/exit_status.h"
#include "tool/interrupts.h"
#include "tool/json.h"

namespace tidemark::tool {

namespace {

using Event = UpdateRecorder::Event;

class TraceWriter {
public:
    TraceWriter(const UpdateRecorder& recorder, const std::string& path)
        : recorder_(recorder), save_(path) {}

    bool write(const std::string& graph);
    const std::string& reason() const { return save_.reason(); }

private:
    void writeLane(std::size_t number, const std::vector<Event>& events);
    void add(const std::string& event);
    const std::string& headOf(UpdateRecorder::Subject subject);

    const UpdateRecorder& recorder_;
    sluice::graph::FileSave save_;
    std::string pending_;
    bool isFirst_ = true;
    std::unordered_map<UpdateRecorder::Subject, std::string> heads_;
};

bool TraceWriter::write(const std::string& graph) {
    const Json other{{"graph", graph}, {"droppedEvents", recorder_.droppedEvents()}};
    pending_ =
        "{\"displayTimeUnit\": \"ns\", \"otherData\": " + dumped(other) + ", \"traceEvents\": [\n";
    const auto lanes = recorder_.events();
    for (std::size_t i = 0; i < lanes.size(); ++i) writeLane(i, lanes[i]);
    pending_ += "\n]}\n";
    return save_.write(pending_) && save_.commit();
}

void TraceWriter::writeLane(std::size_t number, const std::vector<Event>& events) {
    const std::string thread = std::to_string(number);
    const std::string name = number == 0 ? "main thread" : "worker " + thread;
    add("{\"name\": \"thread_name\", \"ph\": \"M\", \"pid\": 1, \"tid\": " + thread +
        ", \"args\": {\"name\": \"" + name + "\"}}");
    constexpr double microseconds = 1e6;
    for (const Event& event : events) {
        add(headOf(event.subject) + thread +
            text::format(", \"ts\": %.3f, \"dur\": %.3f}",
                         microseconds * weft::Timer::seconds(event.begin),
                         microseconds * weft::Timer::seconds(event.length)));
    }
}

/// What is the same in all events of a subject.
const std::string& TraceWriter::headOf(UpdateRecorder::Subject subject) {
    const auto [entry, isNew] = heads_.try_emplace(subject);
    if (isNew) {
        const std::string type = recorder_.typeOf(subject);
        entry->second = "{\"name\": " + dumped(recorder_.nameOf(subject)) +
                        ", \"cat\": " + dumped(type.empty() ? "run" : type) +
                        ", \"ph\": \"X\", \"pid\": 1, \"tid\": ";
    }
    return entry->second;
}

void TraceWriter::add(const std::string& event) {
    constexpr std::size_t pieceSize = 1 << 20;
    if (!isFirst_) pending_ += ",\n";
    isFirst_ = false;
    pending_ += event;
    if (pending_.size() < pieceSize) return;
    save_.write(pending_);
    pending_.clear();
}

} // namespace

void writeTrace(const UpdateRecorder& recorder, const std::string& graph, const std::string& path) {
    const WriteSection section;
    TraceWriter writer(recorder, path);
    if (!writer.write(graph)) {
        throw UsageError("\"" + path + "\" could not be written: " + writer.reason());
    }
}

} // namespace tidemark::tool
