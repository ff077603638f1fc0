// SPDX-License-Identifier: Apache-2.0
// A node on any chain that waits a while after its input is computed.
#include <algorithm>
#include <chrono>
#include <thread>

#include "bridge/host.h"
#include "core/node.h"
#include "core/numeric.h"
#include "graph/define_node.h"

namespace weft {

class Sleep : public Node {
public:
    Sleep(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;

private:
    void sleep(std::chrono::milliseconds duration) const;

    NumericAttribute* milisecs_;
    PassThroughAttribute* in_;
    PassThroughAttribute* through_;
};

Sleep::Sleep(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"Sleep">();
    describe("This node freezes the graph evaluation for the input 'milisecs' amount of time in "
             "miliseconds.");
    milisecs_ = addInput<NumericAttribute>("milisecs", "The miliseconds to sleep");
    in_ = addInput<PassThroughAttribute>("in", "The value that is passed on.");
    through_ = addOutput<PassThroughAttribute>("through", "The value of 'in', unchanged.");
    setAttributeAllowedSpecialization(milisecs_, "Integer");
    setAttributeAffect(milisecs_, through_);
    connectInternalAttributes(in_, through_);
}

void Sleep::update(Attribute*) {
    milisecs_->pull();
    const int32_t duration = milisecs_->numeric().value<int32_t>();
    in_->pull();
    if (duration > 0 && tidemark::bridge::host().allowsSleep()) {
        sleep(std::chrono::milliseconds(duration));
    }
}

// In short slices, so that an interrupt of the run is noticed.
void Sleep::sleep(std::chrono::milliseconds duration) const {
    using Clock = std::chrono::steady_clock;
    constexpr Clock::duration longestSlice = std::chrono::milliseconds(20);
    const Clock::time_point end = Clock::now() + duration;
    for (Clock::time_point now = Clock::now(); now < end; now = Clock::now()) {
        networkManager()->pollInterrupt();
        std::this_thread::sleep_for(std::min(longestSlice, end - now));
    }
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::Sleep;

SLUICE_DEFINE_NODE(Sleep)

} // namespace tidemark::sluice::graph
