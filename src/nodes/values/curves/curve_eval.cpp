// SPDX-License-Identifier: Apache-2.0
// Evaluating a curve at many times.
#include <algorithm>

#include "graph/define_node.h"
#include "nodes/values/arrays/array_elements.h"
#include "nodes/values/curves/curve_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::CurveAttribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;

class CurveEval : public weft::Node {
public:
    CurveEval(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"CurveEval">();
        describe("This node returns all the keys stored in the curve.");
        curve_ = addInput<CurveAttribute>("curve", "The curve to evaluate.");
        time_ = addInput<NumericAttribute>("time", "The times to evaluate it at, in seconds.");
        result_ = addOutput<NumericAttribute>("result", "The value of the curve at each time.");
        setAttributeAllowedSpecialization(time_, "Real");
        setAttributeAllowedSpecialization(result_, "Real");
        setAttributeAffectAllOutputsByAllInputs();
    }

    void update(Attribute*) override {
        curve_->pull();
        time_->pull();
        Numeric* target = result_->numericTarget();
        if (!target) return;
        const Numeric& time = time_->numeric();
        const ANIFloatBase* curve = curve_->curveAt(0);
        if (!curve) {
            target->resize(time.size());
            pushError("Input Curve is null");
            return;
        }
        writeElements<float>(*target, {&time}, [&](Array<float>& results) {
            element_map::sizeForWriting(results, time.size());
            evaluate(*curve, time, results);
        });
        result_->valueChanged();
        setAttributeIsClean(result_, true);
    }

private:
    void evaluate(const ANIFloatBase& curve, const Numeric& time, Array<float>& results) {
        // Between two answers to an interrupt: some milliseconds of a long expression.
        constexpr uint32_t blockSize = 8192;
        const Array<float>& times = time.values<float>();
        const uint32_t known = std::min(time.size(), times.size());
        for (uint32_t i = 0; i < known; i += blockSize) {
            networkManager()->pollInterrupt();
            curve.evaluate(times.data() + i, results.data() + i, std::min(blockSize, known - i));
        }
        // A value of another type counts by its size; its reals may be fewer.
        if (known == time.size()) return;
        std::fill(results.begin() + known, results.end(),
                  curve.DameValor(time.valueAt<float>(known)));
    }

    CurveAttribute* curve_;
    NumericAttribute* time_;
    NumericAttribute* result_;
};

SLUICE_DEFINE_NODE(CurveEval)

} // namespace tidemark::sluice::graph
