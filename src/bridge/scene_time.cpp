// SPDX-License-Identifier: Apache-2.0
// Where the application's scene stands.
#include "bridge/host.h"
#include "core/numeric.h"
#include "graph/define_node.h"

namespace tidemark::sluice::graph {

using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;

class GetCurrentFrameTime : public weft::Node {
public:
    GetCurrentFrameTime(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetCurrentFrameTime">();
        describe("This node returns the time and frame according to the current status of the "
                 "Sluice scene.");
        time_ = addOutput<NumericAttribute>("time", "The current time value of the scene.");
        frame_ = addOutput<NumericAttribute>("frame", "The current frame of the scene.");
        setAttributeAllowedSpecialization(time_, "Real");
        setAttributeAllowedSpecialization(frame_, "Integer");
    }

    void update(weft::Attribute* attribute) override {
        if (attribute == time_) answer(time_, bridge::host().currentTime());
        if (attribute == frame_)
            answer(frame_, static_cast<int32_t>(bridge::host().currentFrame()));
    }

private:
    template <typename T>
    void answer(NumericAttribute* output, T value) {
        if (Numeric* target = output->numericTarget()) target->setValueAt<T>(0, value);
        setAttributeIsClean(output, true);
    }

    NumericAttribute* time_;
    NumericAttribute* frame_;
};

SLUICE_DEFINE_NODE(GetCurrentFrameTime)

} // namespace tidemark::sluice::graph
