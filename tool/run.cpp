// SPDX-License-Identifier: Apache-2.0
// `sluice run`: reads a graph, runs it once or once per frame, reports.
#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

#include "bridge/host.h"
#include "core/limits.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/interrupts.h"
#include "tool/pins.h"
#include "tool/profile.h"
#include "tool/pulls.h"
#include "tool/run_options.h"
#include "tool/run_report.h"
#include "tool/trace.h"
#include "tool/watchdog.h"

namespace tidemark::tool {

namespace {

using host::FileGate;
using host::StandaloneHost;
using sluice::graph::NodeBase;
using sluice::graph::RunOutcome;
using tidemark::graph::messageLevelCritical;
using tidemark::graph::messageLevelError;
using tidemark::graph::messageLevelInfo;
using tidemark::graph::messageLevelWarning;

FileGate fileGateOf(const RunOptions& options) {
    FileGate gate;
    if (!options.root.empty()) {
        gate = FileGate::confinedTo(options.root);
    } else if (!options.trust) {
        gate = FileGate::writingBelow(".");
    }
    if (options.noWrite) gate.forbidWriting();
    return gate;
}

/// Rounded: more digits of a time say nothing.
double inMicroseconds(double seconds) { return std::round(seconds * 1e6) / 1e6; }

/// One `sluice run` from beginning to end.
class Run {
public:
    explicit Run(const RunOptions& options)
        : options_(options), pulls_(graph_.scene),
          progress_(options.progress, options.frames ? options.frames->count() : 0) {}

    int execute();

private:
    /// What one run of the scene gave.
    struct Result {
        Json pins = Json::array();
        Json messages = Json::array();
        Json reports = Json::array();
        double seconds = 0.0;
        bool failed = false;
    };

    void setUpHost();
    void showLine(StandaloneHost::Line kind, const TM_String& line);
    bool read();
    void prepare();
    void dryRun();
    void runOnce();
    void runFrames();
    Result runScene(const std::string& phase);
    void runRecorded(const std::string& phase);
    void reportRecord();
    bool judge(const std::vector<NodeMessage>& messages);
    void reportOutcome(const Array<StandaloneHost::Report>& reports);
    void explainEnd();
    bool mustEnd() const;
    int status() const;
    void printDocument(bool good);
    int finishUnread();
    void finish();
    std::size_t count(bool evaluatorsOnly) const;

    const RunOptions& options_;
    StandaloneHost host_;
    Curves curves_; // that pins were set to; the graph goes before them
    Graph graph_;
    TemporaryPulls pulls_;
    std::unique_ptr<UpdateRecorder> recorder_; // null unless something wants to know
    Progress progress_;
    std::unique_ptr<Watchdog> watchdog_;
    Array<StandaloneHost::Report> readReports_;
    Json json_;
    double seconds_ = 0.0;
    bool failed_ = false;
    bool wasOutOfMemory_ = false;
    bool wasCutShort_ = false; // an interrupt ended a run
    std::string endedIn_;      // the node that was running then
};

void Run::setUpHost() {
    host_.setNumberOfThreads(options_.threads);
    host_.setAllowsSleep(!options_.noSleep);
    host_.setFileGate(fileGateOf(options_));
    host_.setSink(
        [this](StandaloneHost::Line kind, const TM_String& line) { showLine(kind, line); });
    bridge::setHost(&host_);
    limits::Limits limits;
    limits.maxElements = options_.maxElements;
    limits.maxMemory = options_.maxMemory;
    limits::set(limits);
    const auto onHit = [this](LimitHit) { graph_.scene.requestInterrupt(); };
    watchdog_ = std::make_unique<Watchdog>(options_.timeoutSeconds, options_.maxMemory, onHit);
}

void Run::showLine(StandaloneHost::Line kind, const TM_String& line) {
    switch (kind) {
    case StandaloneHost::Line::report:
        if (options_.verbosity >= messageLevelError) console::report(messageLevelError, line);
        break;
    case StandaloneHost::Line::panel:
        break;                          // shown with the messages of the nodes
    case StandaloneHost::Line::message: // what nodes print
    case StandaloneHost::Line::print:
        if (options_.json) {
            console::line(line);
        } else {
            console::out(line + "\n");
        }
        break;
    }
}

bool Run::read() {
    progress_.step("reading", options_.graph);
    const bool good = readGraph(options_.graph, graph_, &progress_);
    if (wasSignalled() || watchdog_->hit() != LimitHit::none) wasCutShort_ = true;
    readReports_ = host_.takeReports();
    if (!readReports_.empty() && options_.failLevel.isReachedBy(messageLevelError)) failed_ = true;
    return good;
}

void Run::prepare() {
    keepMessagesUpTo(graph_.scene, options_.verbosity);
    if (!options_.settingFile.empty()) {
        applySettingFile(graph_.scene, options_.settingFile, curves_);
    }
    for (const std::string& setting : options_.settings) {
        applySetting(graph_.scene, setting, curves_);
    }
    for (const std::string& pin : options_.getPins) findPin(graph_.scene, pin);
    for (const std::string& pin : options_.pullPins) pulls_.add(pin);
    if (options_.profile || !options_.traceFile.empty()) {
        const bool keepsEvents = !options_.traceFile.empty();
        if (keepsEvents && isSameFile(options_.graph, options_.traceFile)) {
            throw UsageError("\"" + options_.traceFile +
                             "\" is the graph: write the trace elsewhere");
        }
        recorder_ =
            std::make_unique<UpdateRecorder>(graph_.scene, keepsEvents ? mostTraceEvents : 0);
    }
    if (count(true) == 0 && !pulls_.evaluator()) {
        console::report(messageLevelWarning, "the graph has no evaluator: nothing is computed");
    }
}

bool Run::judge(const std::vector<NodeMessage>& messages) {
    return std::any_of(messages.begin(), messages.end(), [this](const NodeMessage& entry) {
        return options_.failLevel.isReachedBy(entry.message.level);
    });
}

/// A standard exception reaches the host as a mere line, which is not shown as it comes.
void Run::reportOutcome(const Array<StandaloneHost::Report>& reports) {
    const RunOutcome outcome = graph_.scene.lastOutcome();
    if (outcome == RunOutcome::outOfMemory) wasOutOfMemory_ = true;
    if (outcome == RunOutcome::interrupted) wasCutShort_ = true;
    if (wasOutOfMemory_ || wasCutShort_) endedIn_ = graph_.scene.interruptedNodeName();
    if (outcome != RunOutcome::exception || reports.empty()) return;
    const StandaloneHost::Report& last = reports.back();
    if (last.id == bridge::message::panelLine) {
        console::report(messageLevelCritical, "The run was ended: " + last.text);
    }
}

void Run::runRecorded(const std::string& phase) {
    if (recorder_) recorder_->phaseBegins(phase);
    graph_.scene.run();
    if (recorder_) recorder_->phaseEnds();
}

Run::Result Run::runScene(const std::string& phase) {
    runRecorded(phase);
    const RunOutcome outcome = graph_.scene.lastOutcome();
    const std::vector<NodeMessage> messages = collectMessages(graph_.scene, pulls_.evaluator());
    const Array<StandaloneHost::Report> reports = host_.takeReports();
    printMessages(messages, options_.verbosity);
    reportOutcome(reports);
    Result result;
    result.failed =
        judge(messages) || outcome == RunOutcome::exception || outcome == RunOutcome::outOfMemory;
    result.messages = messagesJson(messages, options_.verbosity);
    result.reports = reportsJson(reports);
    result.pins = pinsJson(graph_.scene, options_.getPins);
    for (Json& pin : pinsJson(graph_.scene, options_.pullPins)) {
        result.pins.push_back(std::move(pin));
    }
    result.seconds = graph_.scene.getLastExecutionTime();
    seconds_ += result.seconds;
    failed_ = failed_ || result.failed;
    return result;
}

/// What was reported while reading comes before what a run reports.
Json behindReading(const Array<StandaloneHost::Report>& readReports, const Json& reports) {
    Json all = reportsJson(readReports);
    for (const Json& report : reports) all.push_back(report);
    return all;
}

void Run::runOnce() {
    progress_.step("running", options_.graph);
    Result result = runScene("run");
    if (!options_.json) return printPins(result.pins, "");
    json_["pins"] = std::move(result.pins);
    json_["messages"] = std::move(result.messages);
    json_["host"] = behindReading(readReports_, result.reports);
}

void Run::runFrames() {
    Json frames = Json::array();
    bool isFirst = true;
    options_.frames->forEach([&](int frame) {
        if (!isFirst) clearMessages(graph_.scene);
        host_.setCurrentFrame(frame);
        progress_.frameBegins(frame);
        Result result = runScene("frame " + std::to_string(frame));
        progress_.frameEnds(frame, result.seconds, !result.failed);
        if (options_.json) {
            frames.push_back({{"frame", frame},
                              {"pins", std::move(result.pins)},
                              {"messages", std::move(result.messages)},
                              {"host", isFirst ? behindReading(readReports_, result.reports)
                                               : std::move(result.reports)},
                              {"seconds", inMicroseconds(result.seconds)}});
        } else {
            printPins(result.pins, "frame " + std::to_string(frame) + ": ");
        }
        isFirst = false;
        if (watchdog_->hit() == LimitHit::time) wasCutShort_ = true;
        return !mustEnd() && (!result.failed || options_.keepsGoing);
    });
    json_["frames"] = std::move(frames);
}

bool Run::mustEnd() const {
    return wasSignalled() || wasCutShort_ || wasOutOfMemory_ || limits::wasHit() ||
           watchdog_->hit() != LimitHit::none || host_.isStopRequested();
}

/// Before anything changes the scene, whose nodes the record names by their ids.
void Run::reportRecord() {
    if (!recorder_) return;
    if (!options_.traceFile.empty()) {
        progress_.step("writing", options_.traceFile);
        writeTrace(*recorder_, options_.graph, options_.traceFile);
        if (const uint64_t dropped = recorder_->droppedEvents()) {
            console::report(messageLevelWarning, "the trace holds the first " +
                                                     std::to_string(mostTraceEvents) + " events; " +
                                                     std::to_string(dropped) + " were dropped");
        }
    }
    if (!options_.profile) return;
    const auto rows = profileOf(*recorder_, graph_.scene, pulls_.evaluator());
    if (options_.json) {
        json_["profile"] = profileJson(rows, seconds_);
    } else {
        printProfile(rows, seconds_, weft::Timer::seconds(recorder_->outside()));
    }
}

void Run::dryRun() {
    Json evaluators = Json::array();
    for (const NodeBase* node : graph_.scene.getArrUpdateNodes()) {
        if (node->isEvaluator() && node != pulls_.evaluator()) {
            evaluators.push_back(node->getFullName());
        }
    }
    Json pulls = Json::array();
    for (const NodeBase* node : pullOrder(graph_.scene)) {
        if (node != pulls_.evaluator()) pulls.push_back(node->getFullName());
    }
    const std::vector<NodeMessage> messages = collectMessages(graph_.scene, pulls_.evaluator());
    printMessages(messages, options_.verbosity);
    failed_ = failed_ || judge(messages);
    if (!options_.json) {
        console::out("evaluators:\n");
        for (const Json& name : evaluators) console::out("  " + name.get<std::string>() + "\n");
        console::out("first pulls:\n");
        for (const Json& name : pulls) console::out("  " + name.get<std::string>() + "\n");
    }
    json_["dryRun"] = true;
    json_["evaluators"] = std::move(evaluators);
    json_["pulls"] = std::move(pulls);
    json_["messages"] = messagesJson(messages, options_.verbosity);
    json_["host"] = behindReading(readReports_, reportsJson(host_.takeReports()));
}

int Run::status() const {
    if (wasSignalled()) return exitInterrupt;
    if (wasCutShort_ && watchdog_->hit() == LimitHit::time) return exitTimeout;
    if (watchdog_->hit() == LimitHit::memory || wasOutOfMemory_ || limits::wasHit()) {
        return exitLimit;
    }
    return failed_ ? exitFailed : exitDone;
}

/// Says which limit or signal ended the run, and where.
void Run::explainEnd() {
    const char* reason = nullptr;
    switch (status()) {
    case exitInterrupt:
        reason = "interrupted";
        break;
    case exitTimeout:
        reason = "time limit hit";
        break;
    case exitLimit:
        reason = limits::wasHit() && options_.maxElements != 0 ? "element or memory limit hit"
                                                               : "memory limit hit";
        break;
    default:
        break;
    }
    if (host_.isStopRequested()) console::report(messageLevelInfo, "a node asked to stop");
    if (!reason) return;
    const std::string where = endedIn_.empty() ? "" : " in node \"" + endedIn_ + "\"";
    console::report(messageLevelCritical, reason + where);
    json_["ended"] = {{"reason", reason}, {"node", endedIn_}};
}

std::size_t Run::count(bool evaluatorsOnly) const {
    std::size_t sum = 0;
    if (evaluatorsOnly) {
        for (const NodeBase* node : graph_.scene.getArrUpdateNodes()) sum += node->isEvaluator();
    } else {
        sum = graph_.scene.nodesById().size();
    }
    return sum - (pulls_.evaluator() ? 1 : 0);
}

void Run::printDocument(bool good) {
    Json json{{"schema", "sluice.run/1"},
              {"graph", options_.graph},
              {"ok", good},
              {"seconds", inMicroseconds(seconds_)}};
    json.update(json_);
    console::out(document(json));
}

void Run::finish() {
    progress_.hide();
    if (options_.json) printDocument(status() == exitDone);
    console::flushOut();
    const std::size_t nodes = count(false);
    const std::size_t evaluators = count(true);
    console::line(
        std::to_string(nodes) + (nodes == 1 ? " node, " : " nodes, ") + std::to_string(evaluators) +
        (evaluators == 1 ? " evaluator, " : " evaluators, ") + text::format("%.4f s", seconds_));
    progress_.done(status(), seconds_);
}

/// The document of a graph that was not read.
int Run::finishUnread() {
    explainEnd();
    json_["pins"] = Json::array();
    json_["messages"] = Json::array();
    json_["host"] = reportsJson(readReports_);
    if (options_.json) printDocument(false);
    return console::leave(wasCutShort_ ? status() : int(exitBadUse));
}

int Run::execute() {
    setUpHost();
    {
        const RunSection section(graph_.scene);
        if (!read()) return finishUnread();
        prepare();
        if (options_.dryRun) {
            dryRun();
        } else if (options_.frames) {
            runFrames();
        } else {
            runOnce();
        }
        watchdog_->stop();
    }
    reportRecord();
    pulls_.remove();
    explainEnd();
    if (!options_.saveFile.empty() && !options_.dryRun) {
        progress_.step("writing", options_.saveFile);
        writeGraph(graph_, options_.saveFile, !readReports_.empty());
    }
    finish();
    return console::leave(status());
}

} // namespace

int runGraph(const RunOptions& options) {
    Run run(options);
    return run.execute();
}

} // namespace tidemark::tool
