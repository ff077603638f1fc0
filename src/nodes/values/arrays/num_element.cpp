// SPDX-License-Identifier: Apache-2.0
// Nodes that read and write elements of numeric arrays by position.
#include "graph/define_node.h"
#include "nodes/values/arrays/num_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;

namespace {

// What a reader beyond the end finds: the last element, or a default where there is none.
template <typename T>
class ClampedElements {
public:
    explicit ClampedElements(std::span<const T> elements) {
        static const T fallback = ElementDefault<T>::value();
        elements_ = elements.empty() ? &fallback : elements.data();
        last_ = elements.empty() ? 0 : static_cast<uint32_t>(elements.size()) - 1;
    }
    const T& operator[](uint32_t index) const { return elements_[std::min(index, last_)]; }

private:
    const T* elements_;
    uint32_t last_;
};

} // namespace

class GetArrayNumElement : public weft::Node {
public:
    GetArrayNumElement(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetArrayNumElement">();
        describe("This node returns the elements of the input 'array' at positions specified by "
                 "the 'index' parameter.");
        array_ = addInput<NumericAttribute>("array", "The array to read.");
        index_ = addInput<NumericAttribute>(
            "index", "The positions of the elements to read, from 0. A position outside the input "
                     "'array' reads the last element.");
        element_ = addOutput<NumericAttribute>("element", "One element for every position.");
        setThreadingModeHintByElement();
        setAttributeAllowedSpecialization(index_, "Integer");
        setAttributeAffectedByAllInputs(element_);
        addAttributeSpecializationLink(array_, element_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        gather_ = nullptr;
        weft::withElementType(selectorOf(*array_),
                              [&]<typename T>() { gather_ = &GetArrayNumElement::gather<T>; });
    }

    void update(Attribute*) override {
        if (!gather_) return;
        array_->pull();
        index_->pull();
        Numeric* target = element_->numericTarget();
        if (!target) return;
        (this->*gather_)(*target);
        element_->valueChanged();
    }

private:
    template <typename T>
    void gather(Numeric& target) {
        constexpr double nanoseconds = sizeof(T) > 16 ? 6 : 2;
        const ClampedElements<T> elements(elementsOf<T>(array_->numeric()));
        mapNumbers<T>(
            *this, nanoseconds, target,
            [elements](int32_t index) { return elements[static_cast<uint32_t>(index)]; },
            elementsOf<int32_t>(index_->numeric()));
    }

    NumericAttribute* array_;
    NumericAttribute* index_;
    NumericAttribute* element_;
    void (GetArrayNumElement::*gather_)(Numeric&) = nullptr;
};

class SetArrayNumElement : public weft::Node {
public:
    SetArrayNumElement(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"SetArrayNumElement">();
        describe("Returns an array equal to the input 'array' but changing the element at position "
                 "'index' to the value of 'element'.\nIf input 'array' is not internally connected "
                 "to the output, the output 'outArray' is a copy of the input.");
        array_ = addInput<NumericAttribute>("array", "The array to change.");
        index_ = addInput<NumericAttribute>("index", "The positions of the elements to change, "
                                                     "from 0. A position outside the input 'array' "
                                                     "is passed over.");
        element_ = addInput<NumericAttribute>("element", "The new element for every position. The "
                                                         "last one serves for all further "
                                                         "positions.");
        outArray_ = addOutput<NumericAttribute>("out array", "The changed array.");
        setAttributeAllowedSpecialization(index_, "Integer");
        setAttributeAffectedByAllInputs(outArray_);
        addAttributeSpecializationLink(array_, outArray_);
        addAttributeSpecializationLink(element_, outArray_);
        addAttributeAllowedPassThrough(array_, outArray_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        scatter_ = nullptr;
        weft::withElementType(selectorOf(*array_),
                              [&]<typename T>() { scatter_ = &SetArrayNumElement::scatter<T>; });
    }

    void update(Attribute*) override {
        if (!scatter_) return;
        for (NumericAttribute* input : {array_, index_, element_}) input->pull();
        Numeric* target = outArray_->numericTarget();
        if (!target) return;
        copyUnlessPassedThrough(*array_, *outArray_);
        (this->*scatter_)(*target);
        outArray_->valueChanged();
        setAttributeIsClean(outArray_, true);
    }

private:
    template <typename T>
    void scatter(Numeric& target) {
        // First the array that is written: taking it may move what the inputs read.
        Array<T>& array = target.refValues<T>();
        const uint32_t size = std::min(target.size(), array.size());
        const std::span<const int32_t> index = elementsOf<int32_t>(index_->numeric());
        const ClampedElements<T> elements(elementsOf<T>(element_->numeric()));
        const auto count = static_cast<uint32_t>(index.size());
        const UnfinishedOutput unfinished(&target, {&array_->numeric()});
        inPieces(*this, count, [&](uint32_t first, uint32_t end) {
            for (uint32_t i = first; i < end; ++i) {
                const auto position = static_cast<uint32_t>(index[i]);
                if (position < size) array[position] = elements[i];
            }
        });
    }

    NumericAttribute* array_;
    NumericAttribute* index_;
    NumericAttribute* element_;
    NumericAttribute* outArray_;
    void (SetArrayNumElement::*scatter_)(Numeric&) = nullptr;
};

SLUICE_DEFINE_NODE(GetArrayNumElement)
SLUICE_DEFINE_NODE(SetArrayNumElement)

} // namespace tidemark::sluice::graph
