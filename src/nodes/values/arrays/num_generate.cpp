// SPDX-License-Identifier: Apache-2.0
// Nodes that make numeric arrays: random values, one value repeated, even steps, positions.
#include <cmath>

#include "core/conversion.h"
#include "graph/define_node.h"
#include "nodes/values/arrays/num_tools.h"
#include "nodes/values/random_steps.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::NumericType;
using weft::SpecializationList;

namespace {

constexpr uint32_t lowBits = 0xffffff;
constexpr float lowBitsToUnit = 0x1p-24f;

// 0 <= number < 1.
float unitReal(RandomSteps& steps) {
    return static_cast<float>(steps.next() & lowBits) * lowBitsToUnit;
}

// Every integer from `min` to `max`, both included, is as likely as the steps allow.
int32_t randomInteger(RandomSteps& steps, int32_t min, int32_t max) {
    const int64_t span = int64_t(max) - min;
    const double choices = static_cast<double>(span < 0 ? -span : span) + 1;
    const auto chosen = static_cast<int64_t>(static_cast<double>(unitReal(steps)) * choices);
    return static_cast<int32_t>(span < 0 ? min - chosen : min + chosen);
}

// One step per component.
template <typename T>
T randomElement(RandomSteps& steps, const T& min, const T& max) {
    if constexpr (std::is_same_v<T, int32_t>) {
        return randomInteger(steps, min, max);
    } else {
        return combineComponents(
            [&](float low, float high) { return low + unitReal(steps) * (high - low); }, min, max);
    }
}

} // namespace

class ArrayNumRandom : public weft::Node {
public:
    ArrayNumRandom(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayNumRandom">();
        describe("Computes an array of the given input 'size' filled with random values in range "
                 "from 'min' to 'max'");
        const SpecializationList types{"Integer", "Real", "Vector3", "Color4"};
        size_ = addInput<NumericAttribute>("size", "The number of elements of the output 'array'.");
        min_ = addInput<NumericAttribute>("min", "The minimum of the random values, which is part "
                                                 "of the range.");
        max_ = addInput<NumericAttribute>("max", "The maximum of the random values. Integers may "
                                                 "reach it, all other values only by rounding.");
        seed_ = addInput<NumericAttribute>("seed", "Where the random sequence begins. The same "
                                                   "seed gives the same values.");
        array_ = addOutput<NumericAttribute>("array", "The array of random values.");
        declareNumber(*size_, {"Integer"}, 1);
        declareNumber(*min_, types, 0);
        declareNumber(*max_, types, 1);
        declareNumber(*seed_, {"Integer"}, 0);
        array_->setAllowedSpecializations(types);
        takeOneElement({size_, min_, max_, seed_});
        setAttributeAffectedByAllInputs(array_);
        addAttributeSpecializationLink(min_, array_);
        addAttributeSpecializationLink(max_, array_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        make_ = nullptr;
        weft::withElementType(selectorOf(*min_), [&]<typename T>() {
            if constexpr (isOneOf<T, int32_t, float, Vector3<float>, Color4<float>>) {
                make_ = &ArrayNumRandom::make<T>;
            }
        });
    }

    void update(Attribute*) override {
        if (!make_) {
            setAttributeIsClean(array_, false);
            return;
        }
        for (NumericAttribute* input : {size_, min_, max_, seed_}) input->pull();
        const int32_t size = size_->numeric().value<int32_t>();
        Numeric* target = array_->numericTarget();
        if (size < 0 || !target) return;
        (this->*make_)(static_cast<uint32_t>(size), *target);
        array_->valueChanged();
    }

private:
    template <typename T>
    void make(uint32_t size, Numeric& target) {
        const T min = min_->numeric().value<T>();
        const T max = max_->numeric().value<T>();
        RandomSteps steps(seed_->numeric().value<int32_t>());
        generateElements<T>(*this, target, size,
                            [&](uint32_t) { return randomElement(steps, min, max); });
    }

    NumericAttribute* size_;
    NumericAttribute* min_;
    NumericAttribute* max_;
    NumericAttribute* seed_;
    NumericAttribute* array_;
    void (ArrayNumRandom::*make_)(uint32_t, Numeric&) = nullptr;
};

class ArrayNumConstant : public weft::Node {
public:
    ArrayNumConstant(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayNumConstant">();
        describe("Returns an array of size 'size' for which all elements have 'constant' as value");
        size_ = addInput<NumericAttribute>("size", "The number of elements of the output 'array'.");
        constant_ = addInput<NumericAttribute>("constant", "The value of every element.");
        array_ = addOutput<NumericAttribute>("array", "The array of equal elements.");
        declareNumber(*size_, {"Integer"}, 1);
        setDefault(*constant_, 0);
        takeOneElement({size_, constant_});
        setAttributeAffectedByAllInputs(array_);
        addAttributeSpecializationLink(constant_, array_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        fill_ = nullptr;
        weft::withElementType(selectorOf(*constant_),
                              [&]<typename T>() { fill_ = &ArrayNumConstant::fill<T>; });
    }

    void update(Attribute*) override {
        if (!fill_) return;
        size_->pull();
        constant_->pull();
        const int32_t size = size_->numeric().value<int32_t>();
        Numeric* target = array_->numericTarget();
        if (size < 0 || !target) return;
        (this->*fill_)(static_cast<uint32_t>(size), *target);
        array_->valueChanged();
    }

private:
    template <typename T>
    void fill(uint32_t size, Numeric& target) {
        const T constant = constant_->numeric().value<T>();
        generateElements<T>(*this, target, size, [constant](uint32_t) { return constant; });
    }

    NumericAttribute* size_;
    NumericAttribute* constant_;
    NumericAttribute* array_;
    void (ArrayNumConstant::*fill_)(uint32_t, Numeric&) = nullptr;
};

namespace {

// `start + (end - start) * i / last`, where no product is too large for its type.
template <typename T>
class EvenSteps {
public:
    EvenSteps(const T& start, const T& end, uint32_t last)
        : start_(start), end_(end), last_(last) {}
    T operator()(uint32_t i) const {
        return combineComponents(
            [&](float start, float end) {
                const double way = static_cast<double>(end) - static_cast<double>(start);
                return static_cast<float>(start + way * i / last_);
            },
            start_, end_);
    }

private:
    T start_;
    T end_;
    double last_;
};

// Truncated toward zero, as the quotient of the exact product.
template <typename T>
requires std::is_integral_v<T>
class EvenSteps<T> {
public:
    EvenSteps(T start, T end, uint32_t last) : start_(start), isFalling_(end < start), last_(last) {
        const auto way = static_cast<uint64_t>(end) - static_cast<uint64_t>(start);
        const uint64_t length = isFalling_ ? uint64_t(0) - way : way;
        whole_ = length / last;
        rest_ = length % last;
    }
    T operator()(uint32_t i) const {
        const uint64_t distance = whole_ * i + rest_ * i / last_;
        const auto start = static_cast<uint64_t>(start_);
        return static_cast<T>(isFalling_ ? start - distance : start + distance);
    }

private:
    T start_;
    bool isFalling_;
    uint64_t last_;
    uint64_t whole_;
    uint64_t rest_;
};

} // namespace

class ArrayNumRange : public weft::Node {
public:
    ArrayNumRange(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayNumRange">();
        describe("Creates an array of size 'steps' which values are increased uniformly from "
                 "'start' to 'end'.\nIf 'steps' is 1 the single element of the output 'array' is "
                 "'start'.");
        const SpecializationList types{"Integer", "Integer64", "Real", "Vector3", "Color4"};
        start_ = addInput<NumericAttribute>("start", "The first element.");
        end_ = addInput<NumericAttribute>("end", "The last element.");
        steps_ = addInput<NumericAttribute>("steps", "The number of elements of the output "
                                                     "'array'.");
        array_ = addOutput<NumericAttribute>("array", "The array of evenly spaced elements.");
        declareNumber(*start_, types, 0);
        declareNumber(*end_, types, 1);
        declareNumber(*steps_, {"Integer"}, 2);
        array_->setAllowedSpecializations(types);
        takeOneElement({start_, end_, steps_});
        setAttributeAffectedByAllInputs(array_);
        addAttributeSpecializationLink(start_, array_);
        addAttributeSpecializationLink(end_, array_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        make_ = nullptr;
        weft::withElementType(selectorOf(*start_), [&]<typename T>() {
            if constexpr (isOneOf<T, int32_t, int64_t, float, Vector3<float>, Color4<float>>) {
                make_ = &ArrayNumRange::make<T>;
            }
        });
    }

    void update(Attribute*) override {
        if (!make_) return;
        for (NumericAttribute* input : {start_, end_, steps_}) input->pull();
        const int32_t steps = steps_->numeric().value<int32_t>();
        Numeric* target = array_->numericTarget();
        if (steps < 0 || !target) return;
        (this->*make_)(static_cast<uint32_t>(steps), *target);
        array_->valueChanged();
    }

private:
    template <typename T>
    void make(uint32_t steps, Numeric& target) {
        const T start = start_->numeric().value<T>();
        if (steps < 2) {
            // Apart, because no step at all towards an infinite end would be not-a-number.
            return generateElements<T>(*this, target, steps, [start](uint32_t) { return start; });
        }
        const EvenSteps<T> step(start, end_->numeric().value<T>(), steps - 1);
        generateElements<T>(*this, target, steps, step);
    }

    NumericAttribute* start_;
    NumericAttribute* end_;
    NumericAttribute* steps_;
    NumericAttribute* array_;
    void (ArrayNumRange::*make_)(uint32_t, Numeric&) = nullptr;
};

class ArrayNumIndices : public weft::Node {
public:
    ArrayNumIndices(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayNumIndices">();
        describe("This node returns an array filled with integers from 0 to the size of the input "
                 "array");
        array_ = addInput<NumericAttribute>("array", "The array whose elements are counted.");
        indices_ = addOutput<NumericAttribute>("indices", "The position of every element of the "
                                                          "input 'array'.");
        setAttributeAllowedSpecialization(indices_, "Integer");
        setAttributeAffect(array_, indices_);
    }

    void update(Attribute*) override {
        array_->pull();
        const weft::Value* array = array_->currentValue();
        Numeric* target = indices_->numericTarget();
        if (!array || !target) return;
        generateElements<int32_t>(*this, *target, array->size(),
                                  [](uint32_t i) { return static_cast<int32_t>(i); });
        indices_->valueChanged();
    }

private:
    NumericAttribute* array_;
    NumericAttribute* indices_;
};

SLUICE_DEFINE_NODE(ArrayNumRandom)
SLUICE_DEFINE_NODE(ArrayNumConstant)
SLUICE_DEFINE_NODE(ArrayNumRange)
SLUICE_DEFINE_NODE(ArrayNumIndices)

} // namespace tidemark::sluice::graph
