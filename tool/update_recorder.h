// SPDX-License-Identifier: Apache-2.0
// Records which node computes when: sums per node for a profile, single events for a trace.
//
// Every thread writes to a lane of its own. A lane outlives its thread and serves the next one, so
// there are as many lanes as threads at a time. Nodes of the scene are known by their ids; those of
// the private copies that kernels run stand for the node of the same full name.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/timer.h"
#include "core/update_observer.h"
#include "graph/graph_scene.h"
#include "tool/id_index.h"

namespace tidemark::tool {

/// Hears of all computations while it lives. Its answers are asked for while nothing computes.
class UpdateRecorder final : public weft::UpdateObserver {
public:
    using Ticks = weft::Timer::Ticks;

    /// The id of a node of the scene, or a negative number for anything else that has a name.
    using Subject = int32_t;
    struct Sums {
        uint64_t calls = 0;
        Ticks own = 0;   ///< without what was computed or waited for meanwhile
        Ticks total = 0; ///< a node that is entered again while it computes counts once
    };
    struct Event {
        Subject subject;
        Ticks begin; ///< since the recorder was made
        Ticks length;
    };

    /// Of events, the first `mostEvents` that begin are kept; 0: none are.
    UpdateRecorder(const sluice::graph::SL_GraphScene& scene, uint64_t mostEvents);
    ~UpdateRecorder() override;
    UpdateRecorder(const UpdateRecorder&) = delete;
    UpdateRecorder& operator=(const UpdateRecorder&) = delete;

    void updateBegins(const weft::Node& node) noexcept override;
    void updateEnds() noexcept override;
    void waitBegins() noexcept override;
    void waitEnds() noexcept override;

    /// A stretch of the calling thread that is no node's, such as a frame. Stretches are told only
    /// in events, and may lie around computations.
    void phaseBegins(const std::string& name);
    void phaseEnds();

    std::unordered_map<Subject, Sums> sums() const;
    /// What phases took without the computations inside.
    Ticks outside() const;
    /// What the calling threads, lane by lane, recorded in order of their beginnings.
    std::vector<std::vector<Event>> events() const;
    /// How many more there would have been.
    uint64_t droppedEvents() const;

    /// Full name of a node of the scene, or the name of anything else.
    std::string nameOf(Subject subject) const;
    /// Type of a node of the scene, or the class of a node that only copies have; empty for a
    /// phase.
    std::string typeOf(Subject subject) const;

private:
    struct Lane;
    struct Lease;
    struct Label {
        std::string name;
        std::string type;
    };

    Lane& laneOfThisThread();
    Lane* takeLane();
    void giveBack(Lane* lane);
    uint32_t entryOf(const weft::Node& node, Lane& lane);
    Subject subjectOfCopy(const weft::Node& node);
    template <typename Step>
    void begin(Step step) noexcept;
    void open(Lane& lane, uint32_t entry, Subject subject);
    Subject addLabel(const std::string& name, const std::string& type);
    void nameNodesForCopies();

    const uint32_t serial_; // tells recorders apart, whose addresses may be the same
    const sluice::graph::SL_GraphScene& scene_;
    const Ticks origin_;
    Subject waiting_ = 0;
    const uint64_t mostEvents_;
    std::atomic<uint64_t> eventsBegun_{0};
    mutable std::mutex mutex_; // of what follows
    std::vector<std::unique_ptr<Lane>> lanes_;
    std::vector<Lane*> freeLanes_;
    std::vector<Label> labels_;
    std::unordered_map<std::string, Subject> subjectsByName_;
};

} // namespace tidemark::tool
