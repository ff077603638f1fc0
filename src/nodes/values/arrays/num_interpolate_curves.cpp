// SPDX-License-Identifier: Apache-2.0
// Interpolation along curves through the points of an array: cubic, Hermite, Bezier.
#include <limits>
#include <new>

#include "core/bit_array.h"
#include "graph/define_node.h"
#include "nodes/values/arrays/interpolation_curves.h"
#include "nodes/values/arrays/num_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::SpecializationList;

namespace {

const SpecializationList& curveTypes() {
    static const SpecializationList types{"Real", "Vector3", "Color4", "Matrix4"};
    return types;
}

template <typename T>
constexpr bool isCurveElement = isOneOf<T, float, Vector3<float>, Color4<float>, Matrix4<float>>;

// What one point costs, roughly.
template <typename T>
constexpr double pointNanoseconds = 4 + 0.5 * componentCount<T>;
constexpr double searchNanoseconds = 40;

// The distances of all samples from the first one along `curve`, in steps of equal parameter.
template <typename T>
Array<float> sampleDistances(const weft::Node& node, const HermiteCurve<T>& curve,
                             uint32_t segments, uint32_t stepsPerSegment) {
    const uint64_t steps = uint64_t(segments) * stepsPerSegment;
    if (steps >= std::numeric_limits<int32_t>::max()) throw std::bad_alloc();
    const auto sample = [&](uint32_t i) {
        const auto fraction = static_cast<float>(i % stepsPerSegment);
        return curve.at({i / stepsPerSegment, fraction / static_cast<float>(stepsPerSegment)});
    };
    Array<float> distances;
    distances.resizeForOverwrite(static_cast<uint32_t>(steps) + 1);
    float* const out = distances.data();
    out[0] = 0;
    const auto chords = [&](uint32_t first, uint32_t count) {
        T previous = sample(first);
        for (uint32_t i = first; i < first + count; ++i) {
            const T next = sample(i + 1);
            out[i + 1] = distanceBetween(previous, next);
            previous = next;
        }
    };
    forEachElement(node, static_cast<uint32_t>(steps), pointNanoseconds<T> * 2, chords);
    double distance = 0;
    inPieces(node, distances.size(), [&](uint32_t first, uint32_t end) {
        for (uint32_t i = first; i < end; ++i) out[i] = static_cast<float>(distance += out[i]);
    });
    return distances;
}

} // namespace

// Both nodes of this kind differ only in their pins: a cubic curve is a Hermite curve without
// tension and bias.
class HermiteNode : public weft::Node {
public:
    void attributeSpecializationChanged(Attribute*) override {
        interpolate_ = nullptr;
        weft::withElementType(selectorOf(*array_), [&]<typename T>() {
            if constexpr (isCurveElement<T>) interpolate_ = &HermiteNode::interpolate<T>;
        });
    }

    void update(Attribute*) override {
        if (!interpolate_) return;
        for (Attribute* input : refInputAttributes()) input->pull();
        Numeric* target = result_->numericTarget();
        if (target) (this->*interpolate_)(*target);
    }

protected:
    using Node::Node;

    // The pins in their order: these, those of the derived class, the rest.

    void addCurvePins() {
        array_ = addInput<NumericAttribute>("array", "The supporting points of the curve.");
        t_ = addInput<NumericAttribute>("t", "Parameter to access he curve (0..1)");
        array_->setAllowedSpecializations(curveTypes());
        setAttributeAllowedSpecialization(t_, "Real");
    }

    void addRestOfPins() {
        equalStepping_ = addInput<BitArrayAttribute>(
            "equal stepping", "Enables constant distances within the discretization of the curve. "
                              "See also the following parameter, to tweak quality of equal "
                              "distances...");
        equalSteppingParam_ = addInput<NumericAttribute>(
            "equal stepping param",
            "No of discretization steps to determine constant distances. Good values lie between "
            "(50...2000), depending on the length of the curve. Higher values mean higher "
            "precision, but may slow down the calculation.");
        result_ = addOutput<NumericAttribute>("result", "The point of the curve at every 't'.");
        declareNumber(*equalSteppingParam_, {"Integer"}, 100);
        result_->setAllowedSpecializations(curveTypes());
        takeOneElement({equalStepping_, equalSteppingParam_});
        setThreadingModeHintByElement();
        setAttributeAffectedByAllInputs(result_);
        addAttributeSpecializationLink(array_, result_);
    }

    virtual float tension() const { return 0; }
    virtual float bias() const { return 0; }

private:
    template <typename T>
    void interpolate(Numeric& target) {
        const std::span<const T> points = elementsOf<T>(array_->numeric());
        const std::span<const float> t = elementsOf<float>(t_->numeric());
        if (points.empty() || t.empty()) return pushError("Missing Input...");
        const HermiteCurve<T> curve(points, tension(), bias());
        const bool isEven = equalStepping_->lastBit() && points.size() > 1;
        if (!isEven || !stepEvenly(curve, points, t, target)) {
            mapNumbers<T>(
                *this, pointNanoseconds<T>, target,
                [curve, count = points.size()](float at) {
                    return curve.at(curvePosition(at, count));
                },
                t);
        }
        result_->valueChanged();
    }

    // False, and nothing done, for a curve whose length tells nothing.
    template <typename T>
    bool stepEvenly(const HermiteCurve<T>& curve, std::span<const T> points,
                    std::span<const float> t, Numeric& target) {
        const auto steps = static_cast<uint32_t>(
            std::max(equalSteppingParam_->numeric().value<int32_t>(), int32_t(1)));
        const auto segments = static_cast<uint32_t>(points.size()) - 1;
        const Array<float> distances = sampleDistances(*this, curve, segments, steps);
        const ArcLengthTable table({distances.data(), distances.size()}, steps);
        if (!table.isUsable()) return false;
        mapNumbers<T>(
            *this, searchNanoseconds + pointNanoseconds<T>, target,
            [&](float at) { return curve.at(table.at(at)); }, t);
        return true;
    }

    NumericAttribute* array_ = nullptr;
    NumericAttribute* t_ = nullptr;
    BitArrayAttribute* equalStepping_ = nullptr;
    NumericAttribute* equalSteppingParam_ = nullptr;
    NumericAttribute* result_ = nullptr;
    void (HermiteNode::*interpolate_)(Numeric&) = nullptr;
};

class NumInterpolateCubic : public HermiteNode {
public:
    NumInterpolateCubic(NetworkManager* manager, const TM_String& name, Node* parent)
        : HermiteNode(manager, name, parent) {
        appendClass<"NumInterpolateCubic">();
        describe("Computes cubic interpolated value between the array of supporting points.");
        addCurvePins();
        addRestOfPins();
    }
};

class NumInterpolateHermite : public HermiteNode {
public:
    NumInterpolateHermite(NetworkManager* manager, const TM_String& name, Node* parent)
        : HermiteNode(manager, name, parent) {
        appendClass<"NumInterpolateHermite">();
        describe("Computes hermite interpolated value between the array of supporting points.");
        addCurvePins();
        tension_ = addInput<NumericAttribute>(
            "tension", "Tension can be used to tighten up the curvature at the supporting points. "
                       "1 is high, 0 normal, -1 is low.");
        bias_ = addInput<NumericAttribute>(
            "bias", "The bias can be used to twist the curve about the known points. 0 is even, >0 "
                    "is towards first segment, <0 towards the other.");
        for (NumericAttribute* pin : {tension_, bias_}) {
            setAttributeAllowedSpecialization(pin, "Real");
        }
        takeOneElement({tension_, bias_});
        addRestOfPins();
    }

protected:
    float tension() const override { return tension_->numeric().value<float>(); }
    float bias() const override { return bias_->numeric().value<float>(); }

private:
    NumericAttribute* tension_;
    NumericAttribute* bias_;
};

class NumInterpolateBezier : public weft::Node {
public:
    NumInterpolateBezier(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"NumInterpolateBezier">();
        describe("Computes bezier interpolated value between the array of supporting points.");
        array_ = addInput<NumericAttribute>("array", "The supporting points of the curve.");
        tangents_ = addInput<NumericAttribute>(
            "tangents", "Array of same size as supporting points, defining the tangent per point.");
        t_ = addInput<NumericAttribute>("t", "Parameter to access the curve (0..1)");
        influence_ = addInput<NumericAttribute>(
            "tangent influence", "How far the tangents reach: the control points lie this many "
                                 "tangents from their supporting point. 0 is straight.");
        result_ = addOutput<NumericAttribute>("result", "The point of the curve at every 't'.");
        for (NumericAttribute* pin : {array_, tangents_, result_}) {
            pin->setAllowedSpecializations(curveTypes());
        }
        setAttributeAllowedSpecialization(t_, "Real");
        declareNumber(*influence_, {"Real"}, 1.0 / 3.0);
        takeOneElement({influence_});
        setThreadingModeHintByElement();
        setAttributeAffectedByAllInputs(result_);
        addAttributeSpecializationLink(array_, result_);
        addAttributeSpecializationLink(tangents_, result_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        interpolate_ = nullptr;
        weft::withElementType(selectorOf(*array_), [&]<typename T>() {
            if constexpr (isCurveElement<T>) interpolate_ = &NumInterpolateBezier::interpolate<T>;
        });
    }

    void update(Attribute*) override {
        if (!interpolate_) return;
        for (Attribute* input : refInputAttributes()) input->pull();
        Numeric* target = result_->numericTarget();
        if (target) (this->*interpolate_)(*target);
    }

private:
    template <typename T>
    void interpolate(Numeric& target) {
        const std::span<const T> points = elementsOf<T>(array_->numeric());
        const std::span<const T> tangents = elementsOf<T>(tangents_->numeric());
        const std::span<const float> t = elementsOf<float>(t_->numeric());
        if (points.empty() || tangents.empty() || t.empty()) return pushError("Missing Input...");
        const BezierCurve<T> curve(points, tangents, influence_->numeric().value<float>());
        mapNumbers<T>(
            *this, pointNanoseconds<T>, target,
            [curve, count = points.size()](float at) { return curve.at(curvePosition(at, count)); },
            t);
        result_->valueChanged();
    }

    NumericAttribute* array_;
    NumericAttribute* tangents_;
    NumericAttribute* t_;
    NumericAttribute* influence_;
    NumericAttribute* result_;
    void (NumInterpolateBezier::*interpolate_)(Numeric&) = nullptr;
};

SLUICE_DEFINE_NODE(NumInterpolateCubic)
SLUICE_DEFINE_NODE(NumInterpolateHermite)
SLUICE_DEFINE_NODE(NumInterpolateBezier)

} // namespace tidemark::sluice::graph
