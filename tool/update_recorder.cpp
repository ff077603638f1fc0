// SPDX-License-Identifier: Apache-2.0
// The lanes of a recorder, and what they record.
#include "tool/update_recorder.h"

#include <deque>

#include "core/node.h"

namespace tidemark::tool {

namespace {

using weft::Timer;

constexpr std::size_t noEvent = ~std::size_t(0); // of a stretch that no event is kept of
constexpr uint32_t noEntry = IdIndex::none - 1;
// Copies come and go with every evaluation of a kernel, and their nodes have ids of their own.
constexpr std::size_t mostKnownCopies = std::size_t(1) << 18;

// The lane of this thread, as long as the serial number is that of the recorder.
constinit thread_local void* currentLane = nullptr;
constinit thread_local uint32_t currentSerial = 0;

uint32_t nextSerial() {
    static std::atomic<uint32_t> last{0};
    return ++last;
}

} // namespace

/// What one thread at a time records.
struct UpdateRecorder::Lane {
    struct Entry {
        Subject subject;
        uint32_t open = 0; // computations in progress
        Sums sums{};
    };
    /// A computation, a wait or a phase in progress.
    struct Stretch {
        uint32_t entry; // noEntry for what is no node's
        std::size_t event;
        Ticks begin;
        Ticks inner; // spent in stretches inside
    };

    uint32_t entryOf(Subject subject) {
        uint32_t entry = bySubject.find(subject);
        if (entry != IdIndex::none) return entry;
        entry = static_cast<uint32_t>(entries.size());
        entries.push_back({subject});
        bySubject.insert(subject, entry);
        return entry;
    }

    std::vector<Stretch> stretches; // the innermost last
    Ticks outside = 0;              // of phases without what lies inside of them
    uint32_t missed = 0;            // innermost ones for which there was no memory
    std::vector<Entry> entries;
    IdIndex bySubject;
    IdIndex byCopy; // by the ids of nodes of copies
    std::deque<Event> events;
};

/// Gives the lane back at the end of the thread.
struct UpdateRecorder::Lease {
    UpdateRecorder* recorder = nullptr;
    Lane* lane = nullptr;

    ~Lease() {
        if (lane && installed() == recorder) recorder->giveBack(lane);
    }
};

UpdateRecorder::UpdateRecorder(const sluice::graph::SL_GraphScene& scene, uint64_t mostEvents)
    : serial_(nextSerial()), scene_(scene), origin_(Timer::now()), mostEvents_(mostEvents) {
    waiting_ = addLabel("waiting for threads", "");
    nameNodesForCopies();
    Timer::seconds(1); // measures the clock, which takes a while at the first use
    install(this);
}

UpdateRecorder::~UpdateRecorder() { install(nullptr); }

// While threads run nobody may look through the scene, so this is done before.
void UpdateRecorder::nameNodesForCopies() {
    bool hasKernel = false;
    for (const auto* node : scene_.getArrUpdateNodes()) {
        hasKernel = hasKernel || node->getType() == "Kernel";
    }
    if (!hasKernel) return;
    for (const auto entry : scene_.nodesById()) {
        const auto* node = static_cast<const sluice::graph::NodeBase*>(entry.value);
        const weft::Node* logic = node->getCoreNode();
        if (logic) subjectsByName_.emplace(logic->fullName(), logic->id());
    }
}

// Lanes.

UpdateRecorder::Lane& UpdateRecorder::laneOfThisThread() {
    if (currentSerial != serial_) {
        currentLane = takeLane();
        currentSerial = serial_;
    }
    return *static_cast<Lane*>(currentLane);
}

UpdateRecorder::Lane* UpdateRecorder::takeLane() {
    static thread_local Lease lease;
    const std::lock_guard<std::mutex> lock(mutex_);
    if (freeLanes_.empty()) {
        lanes_.push_back(std::make_unique<Lane>());
        freeLanes_.reserve(lanes_.size()); // so that giving back needs no memory
        freeLanes_.push_back(lanes_.back().get());
    }
    lease.recorder = this;
    lease.lane = freeLanes_.back();
    freeLanes_.pop_back();
    return lease.lane;
}

void UpdateRecorder::giveBack(Lane* lane) {
    const std::lock_guard<std::mutex> lock(mutex_);
    freeLanes_.push_back(lane);
}

// Subjects.

// What stands for a kernel in its copies computes nothing and is not told.
uint32_t UpdateRecorder::entryOf(const weft::Node& node, Lane& lane) {
    if (!node.networkManager()->isPrivate()) return lane.entryOf(node.id());
    uint32_t entry = lane.byCopy.find(node.id());
    if (entry != IdIndex::none) return entry;
    const bool isKernel = node.classNameView() == "KernelVars";
    entry = isKernel ? noEntry : lane.entryOf(subjectOfCopy(node));
    if (lane.byCopy.size() >= mostKnownCopies) lane.byCopy.clear();
    lane.byCopy.insert(node.id(), entry);
    return entry;
}

UpdateRecorder::Subject UpdateRecorder::subjectOfCopy(const weft::Node& node) {
    const std::string name = node.fullName();
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto known = subjectsByName_.find(name);
    if (known != subjectsByName_.end()) return known->second;
    const Subject subject = addLabel(name, std::string(node.classNameView()));
    subjectsByName_.emplace(name, subject);
    return subject;
}

UpdateRecorder::Subject UpdateRecorder::addLabel(const std::string& name, const std::string& type) {
    labels_.push_back({name, type});
    return -static_cast<Subject>(labels_.size());
}

// Recording. What there is no memory for is left out; beginnings and ends stay paired.

template <typename Step>
void UpdateRecorder::begin(Step step) noexcept {
    Lane* lane = nullptr;
    try {
        lane = &laneOfThisThread();
        if (lane->missed > 0) {
            ++lane->missed;
        } else {
            step(*lane);
        }
    } catch (...) {
        if (lane) ++lane->missed;
    }
}

void UpdateRecorder::open(Lane& lane, uint32_t entry, Subject subject) {
    std::size_t event = noEvent;
    if (mostEvents_ > 0 && subject != 0) {
        if (eventsBegun_.fetch_add(1, std::memory_order_relaxed) < mostEvents_) {
            event = lane.events.size();
            lane.events.push_back({subject, 0, 0});
        }
    }
    lane.stretches.push_back({entry, event, 0, 0});
    if (entry != noEntry) {
        ++lane.entries[entry].sums.calls;
        ++lane.entries[entry].open;
    }
    lane.stretches.back().begin = Timer::now();
}

void UpdateRecorder::updateBegins(const weft::Node& node) noexcept {
    begin([&](Lane& lane) {
        const uint32_t entry = entryOf(node, lane);
        open(lane, entry, entry == noEntry ? 0 : lane.entries[entry].subject);
    });
}

void UpdateRecorder::updateEnds() noexcept {
    const Ticks now = Timer::now();
    if (currentSerial != serial_) return;
    Lane& lane = *static_cast<Lane*>(currentLane);
    if (lane.missed > 0) {
        --lane.missed;
        return;
    }
    if (lane.stretches.empty()) return;
    const Lane::Stretch stretch = lane.stretches.back();
    lane.stretches.pop_back();
    const Ticks length = now - stretch.begin;
    if (!lane.stretches.empty()) lane.stretches.back().inner += length;
    if (stretch.event != noEvent) {
        lane.events[stretch.event].begin = stretch.begin - origin_;
        lane.events[stretch.event].length = length;
    }
    if (stretch.entry == noEntry) {
        const bool isPhase = lane.stretches.empty();
        if (isPhase) lane.outside += length - stretch.inner;
        return;
    }
    Lane::Entry& entry = lane.entries[stretch.entry];
    entry.sums.own += length - stretch.inner;
    if (--entry.open == 0) entry.sums.total += length;
}

void UpdateRecorder::waitBegins() noexcept {
    begin([this](Lane& lane) { open(lane, noEntry, waiting_); });
}
void UpdateRecorder::waitEnds() noexcept { updateEnds(); }

void UpdateRecorder::phaseBegins(const std::string& name) {
    begin([&](Lane& lane) {
        const std::lock_guard<std::mutex> lock(mutex_);
        open(lane, noEntry, addLabel(name, ""));
    });
}
void UpdateRecorder::phaseEnds() { updateEnds(); }

// Answers.

std::unordered_map<UpdateRecorder::Subject, UpdateRecorder::Sums> UpdateRecorder::sums() const {
    std::unordered_map<Subject, Sums> all;
    for (const auto& lane : lanes_) {
        for (const Lane::Entry& entry : lane->entries) {
            Sums& sums = all[entry.subject];
            sums.calls += entry.sums.calls;
            sums.own += entry.sums.own;
            sums.total += entry.sums.total;
        }
    }
    return all;
}

UpdateRecorder::Ticks UpdateRecorder::outside() const {
    Ticks sum = 0;
    for (const auto& lane : lanes_) sum += lane->outside;
    return sum;
}

std::vector<std::vector<UpdateRecorder::Event>> UpdateRecorder::events() const {
    std::vector<std::vector<Event>> all;
    for (const auto& lane : lanes_) all.emplace_back(lane->events.begin(), lane->events.end());
    return all;
}

uint64_t UpdateRecorder::droppedEvents() const {
    return mostEvents_ > 0 && eventsBegun_ > mostEvents_ ? eventsBegun_ - mostEvents_ : 0;
}

std::string UpdateRecorder::nameOf(Subject subject) const {
    if (subject < 0) return labels_[static_cast<std::size_t>(-subject) - 1].name;
    const auto* node = scene_.getNodePtrById(static_cast<unsigned>(subject));
    return node ? node->getFullName() : "node " + std::to_string(subject);
}

std::string UpdateRecorder::typeOf(Subject subject) const {
    if (subject < 0) return labels_[static_cast<std::size_t>(-subject) - 1].type;
    const auto* node = scene_.getNodePtrById(static_cast<unsigned>(subject));
    return node ? node->getType() : "";
}

} // namespace tidemark::tool
