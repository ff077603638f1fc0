// SPDX-License-Identifier: Apache-2.0
// Nodes that reduce a numeric array to one element: sum, average, minimum and maximum.
#include "core/conversion.h"
#include "graph/define_node.h"
#include "nodes/values/arrays/num_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::SpecializationList;

namespace {

template <typename Number>
Number added(Number a, Number b) {
    if constexpr (std::is_integral_v<Number>)
        return wrappingAdd(a, b);
    else
        return a + b;
}

template <typename Number>
Number dividedByCount(Number sum, uint32_t count) {
    if constexpr (std::is_integral_v<Number>)
        return sum / static_cast<Number>(count);
    else
        return sum / static_cast<float>(count);
}

// In index order, each component for itself, in the element's own precision. Integers wrap.
// `elements` must not be empty.
template <typename T>
T sumOf(const weft::Node& node, std::span<const T> elements) {
    T sum = filledElement<T>(0);
    inPieces(node, static_cast<uint32_t>(elements.size()), [&](uint32_t first, uint32_t end) {
        Component<T> sums[componentCount<T>];
        eachComponent<T>([&](auto k) { sums[k] = componentsOf(sum)[k]; });
        for (const T& element : elements.subspan(first, end - first)) {
            eachComponent<T>([&](auto k) { sums[k] = added(sums[k], componentsOf(element)[k]); });
        }
        eachComponent<T>([&](auto k) { componentsOf(sum)[k] = sums[k]; });
    });
    return sum;
}

} // namespace

// One input "array" and one element of the same type.
class ArrayNumReduction : public weft::Node {
public:
    void attributeSpecializationChanged(Attribute*) override {
        reduce_ = nullptr;
        weft::withElementType(selectorOf(*array_),
                              [&]<typename T>() { reduce_ = &ArrayNumReduction::reduce<T>; });
    }

    void update(Attribute*) override {
        if (!reduce_) return;
        array_->pull();
        Numeric* target = result_->numericTarget();
        if (!target) return;
        if (!(this->*reduce_)(*target)) return pushError("Missing Input...");
        result_->valueChanged();
    }

protected:
    ArrayNumReduction(NetworkManager* manager, const TM_String& name, Node* parent, bool divides)
        : Node(manager, name, parent), divides_(divides) {}

    void declare(const char* arrayHelp, const char* resultName, const char* resultHelp) {
        array_ = addInput<NumericAttribute>("array", arrayHelp);
        result_ = addOutput<NumericAttribute>(resultName, resultHelp);
        setAttributeAffect(array_, result_);
        addAttributeSpecializationLink(array_, result_);
    }

private:
    // False for an empty array.
    template <typename T>
    bool reduce(Numeric& target) {
        const std::span<const T> elements = elementsOf<T>(array_->numeric());
        if (elements.empty()) return false;
        T sum = sumOf(*this, elements);
        if (divides_) {
            const auto count = static_cast<uint32_t>(elements.size());
            sum = combineComponents(
                [count](Component<T> number) { return dividedByCount(number, count); }, sum);
        }
        target.setValue(sum);
        return true;
    }

    NumericAttribute* array_ = nullptr;
    NumericAttribute* result_ = nullptr;
    bool (ArrayNumReduction::*reduce_)(Numeric&) = nullptr;
    bool divides_;
};

class ArrayNumSum : public ArrayNumReduction {
public:
    ArrayNumSum(NetworkManager* manager, const TM_String& name, Node* parent)
        : ArrayNumReduction(manager, name, parent, false) {
        appendClass<"ArrayNumSum">();
        describe("Returns the summation of all the elements of the input 'array'");
        declare("The array whose elements are added up.", "sum",
                "The sum of all elements, in each component.");
    }
};

class ArrayNumAverage : public ArrayNumReduction {
public:
    ArrayNumAverage(NetworkManager* manager, const TM_String& name, Node* parent)
        : ArrayNumReduction(manager, name, parent, true) {
        appendClass<"ArrayNumAverage">();
        describe("Computes the average value of all the input array elements");
        declare("The array whose elements are averaged.", "average",
                "The sum of all elements divided by their number, in each component. Integers are "
                "truncated.");
    }
};

namespace {

struct Extremes {
    uint32_t min = 0;
    uint32_t max = 0;
};

// Positions of the smallest and the largest first component; the first of equal ones. Nothing is
// smaller or larger than a not-a-number.
template <typename T>
Extremes extremesOf(const weft::Node& node, std::span<const T> elements) {
    Extremes found;
    Component<T> least = *componentsOf(elements[0]);
    Component<T> most = least;
    inPieces(node, static_cast<uint32_t>(elements.size()), [&](uint32_t first, uint32_t end) {
        for (uint32_t i = first; i < end; ++i) {
            const Component<T> number = *componentsOf(elements[i]);
            if (number < least) {
                least = number;
                found.min = i;
            }
            if (most < number) {
                most = number;
                found.max = i;
            }
        }
    });
    return found;
}

} // namespace

class ArrayNumMinMax : public weft::Node {
public:
    ArrayNumMinMax(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ArrayNumMinMax">();
        describe("Computes the minimum/maximum values of all the input array elements.");
        const SpecializationList types{"Integer", "Integer64", "Real", "Vector3", "Color4"};
        array_ = addInput<NumericAttribute>("array", "The array to search.");
        min_ = addOutput<NumericAttribute>("min", "The smallest element of the input 'array'. "
                                                  "Vector types are compared by their first "
                                                  "component.");
        max_ = addOutput<NumericAttribute>("max", "The largest element of the input 'array'. "
                                                  "Vector types are compared by their first "
                                                  "component.");
        indexMin_ = addOutput<NumericAttribute>(
            "index min", "The position of the minimum value of the input 'array'. For vector "
                         "types, it returns the index of the minimum of the first component!");
        indexMax_ = addOutput<NumericAttribute>(
            "index max", "The position of the maximum value of the input 'array'. For vector "
                         "types, it returns the index of the maximum of the first component!");
        for (NumericAttribute* pin : {array_, min_, max_}) pin->setAllowedSpecializations(types);
        for (NumericAttribute* pin : {indexMin_, indexMax_}) {
            setAttributeAllowedSpecialization(pin, "Integer");
        }
        setAttributeAffectsAllOutputs(array_);
        addAttributeSpecializationLink(array_, min_);
        addAttributeSpecializationLink(array_, max_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        search_ = nullptr;
        weft::withElementType(selectorOf(*array_), [&]<typename T>() {
            if constexpr (isOneOf<T, int32_t, int64_t, float, Vector3<float>, Color4<float>>) {
                search_ = &ArrayNumMinMax::search<T>;
            }
        });
    }

    void update(Attribute* attribute) override {
        if (!search_) return;
        array_->pull();
        (this->*search_)(attribute);
    }

private:
    template <typename T>
    void search(const Attribute* asked) {
        const std::span<const T> elements = elementsOf<T>(array_->numeric());
        if (elements.empty()) return pushError("Missing Input...");
        const Extremes found = extremesOf(*this, elements);
        const T least = elements[found.min];
        const T most = elements[found.max];
        write(*min_, asked, least);
        write(*max_, asked, most);
        write(*indexMin_, asked, static_cast<int32_t>(found.min));
        write(*indexMax_, asked, static_cast<int32_t>(found.max));
    }

    template <typename T>
    void write(NumericAttribute& output, const Attribute* asked, const T& element) {
        Numeric* target = output.numericTarget();
        if (!isNeeded(output, asked) || !target) return;
        target->setValue(element);
        output.valueChanged();
        setAttributeIsClean(&output, true);
    }

    NumericAttribute* array_;
    NumericAttribute* min_;
    NumericAttribute* max_;
    NumericAttribute* indexMin_;
    NumericAttribute* indexMax_;
    void (ArrayNumMinMax::*search_)(const Attribute*) = nullptr;
};

SLUICE_DEFINE_NODE(ArrayNumSum)
SLUICE_DEFINE_NODE(ArrayNumAverage)
SLUICE_DEFINE_NODE(ArrayNumMinMax)

} // namespace tidemark::sluice::graph
