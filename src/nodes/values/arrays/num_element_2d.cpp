// SPDX-License-Identifier: Apache-2.0
// Nodes that read numeric arrays as grids, row after row: by column and row, or smoothly by
// normalized coordinates.
#include <optional>

#include "core/conversion.h"
#include "graph/define_node.h"
#include "nodes/values/arrays/interpolation_curves.h"
#include "nodes/values/arrays/num_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::SpecializationList;

namespace {

struct GridSize {
    uint32_t width;
    uint32_t height;
};

// Nothing, with a message on the node, for a width that does not divide the elements into rows.
std::optional<GridSize> gridOf(weft::Node& node, std::size_t elements, int32_t width) {
    if (width < 1) {
        node.pushError("Error: Width <= 0...");
        return {};
    }
    const auto columns = static_cast<uint32_t>(width);
    if (elements % columns != 0) {
        node.pushError("Cannot detect array height. Check width...");
        return {};
    }
    return GridSize{columns, static_cast<uint32_t>(elements / columns)};
}

} // namespace

class GetArrayNum2DElement : public weft::Node {
public:
    GetArrayNum2DElement(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetArrayNum2DElement">();
        describe("This node returns the elements of the 2D input 'array' at positions specified by "
                 "the x and y parameters.");
        array_ = addInput<NumericAttribute>("array", "The array to read, row after row.");
        width_ = addInput<NumericAttribute>("width", "The number of elements of a row. The size of "
                                                     "the input 'array' must be a multiple of it.");
        x_ = addInput<NumericAttribute>("x", "The positions in the row, from 0 to width - 1.");
        y_ = addInput<NumericAttribute>("y", "The rows, from 0 to height - 1.");
        element_ = addOutput<NumericAttribute>("element", "The element at every position; zero "
                                                          "for a position outside.");
        index_ = addOutput<NumericAttribute>("index", "The index in the input 'array' of every "
                                                      "position: y * width + x.");
        for (NumericAttribute* pin : {width_, x_, y_, index_}) {
            setAttributeAllowedSpecialization(pin, "Integer");
        }
        setDefault(*width_, 1);
        takeOneElement({width_});
        setAttributeAffectAllOutputsByAllInputs();
        addAttributeSpecializationLink(array_, element_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        read_ = nullptr;
        weft::withElementType(selectorOf(*array_),
                              [&]<typename T>() { read_ = &GetArrayNum2DElement::read<T>; });
    }

    void update(Attribute* attribute) override {
        if (!read_) return;
        for (NumericAttribute* input : {array_, width_, x_, y_}) input->pull();
        (this->*read_)(attribute);
    }

private:
    template <typename T>
    void read(const Attribute* asked) {
        const std::span<const T> elements = elementsOf<T>(array_->numeric());
        const auto grid = gridOf(*this, elements.size(), width_->numeric().value<int32_t>());
        if (!grid) return;
        const uint32_t count = resultCount(
            {elementsOf<int32_t>(x_->numeric()).size(), elementsOf<int32_t>(y_->numeric()).size()});
        const UnfinishedOutput element(wanted(*element_, asked), {});
        const UnfinishedOutput index(wanted(*index_, asked), {});
        T* const found = begin<T>(*element_, asked, count);
        look(elements, *grid, found, begin<int32_t>(*index_, asked, count), count);
        finish(*element_, asked, count);
        finish(*index_, asked, count);
    }

    // Null where a result is not wanted.
    template <typename T>
    void look(std::span<const T> elements, GridSize grid, T* found, int32_t* positions,
              uint32_t count) {
        const std::span<const int32_t> x = elementsOf<int32_t>(x_->numeric());
        const std::span<const int32_t> y = elementsOf<int32_t>(y_->numeric());
        const T outside = filledElement<T>(0);
        inPieces(*this, count, [&](uint32_t first, uint32_t end) {
            for (uint32_t i = first; i < end; ++i) {
                const int32_t column = x[std::min<std::size_t>(i, x.size() - 1)];
                const int32_t row = y[std::min<std::size_t>(i, y.size() - 1)];
                const int32_t position =
                    wrappingAdd(wrappingMul(row, static_cast<int32_t>(grid.width)), column);
                const bool isInside = static_cast<uint32_t>(column) < grid.width &&
                                      static_cast<uint32_t>(row) < grid.height;
                if (!isInside) reportOutside();
                if (positions) positions[i] = position;
                if (found)
                    found[i] = isInside ? elements[static_cast<uint32_t>(position)] : outside;
            }
        });
    }

    // A message takes much longer than an element.
    void reportOutside() {
        pushError("Index out of bounds...");
        networkManager()->pollInterrupt();
    }

    // Where the output is written, or null when it is not wanted.
    static Numeric* wanted(const NumericAttribute& output, const Attribute* asked) {
        return isNeeded(output, asked) ? output.numericTarget() : nullptr;
    }

    // Room for `count` elements, or null when the output is not wanted.
    template <typename T>
    T* begin(const NumericAttribute& output, const Attribute* asked, uint32_t count) {
        Numeric* const target = wanted(output, asked);
        if (!target) return nullptr;
        element_map::sizeForWriting(target->refValues<T>(), count);
        return target->refValues<T>().data();
    }

    void finish(NumericAttribute& output, const Attribute* asked, uint32_t count) {
        Numeric* const target = wanted(output, asked);
        if (!target) return;
        target->setSize(count);
        output.valueChanged();
        setAttributeIsClean(&output, true);
    }

    NumericAttribute* array_;
    NumericAttribute* width_;
    NumericAttribute* x_;
    NumericAttribute* y_;
    NumericAttribute* element_;
    NumericAttribute* index_;
    void (GetArrayNum2DElement::*read_)(const Attribute*) = nullptr;
};

namespace {

// Between the four neighbours of a position, linearly along the rows and then between them.
// (0, 0) is the first element, (1, 1) the last one.
template <typename T>
class BilinearGrid {
public:
    BilinearGrid(std::span<const T> elements, GridSize size) : elements_(elements), size_(size) {}

    T at(float x, float y) const {
        const CurvePosition column = curvePosition(x, size_.width);
        const CurvePosition row = curvePosition(y, size_.height);
        const T* const upper = elements_.data() + std::size_t(row.segment) * size_.width;
        const T* const lower = row.segment + 1 < size_.height ? upper + size_.width : upper;
        const uint32_t left = column.segment;
        const uint32_t right = std::min(left + 1, size_.width - 1);
        return mixed(mixed(upper[left], upper[right], column.fraction),
                     mixed(lower[left], lower[right], column.fraction), row.fraction);
    }

private:
    static T mixed(const T& first, const T& second, float way) {
        return combineComponents([way](float a, float b) { return a + (b - a) * way; }, first,
                                 second);
    }

    std::span<const T> elements_;
    GridSize size_;
};

} // namespace

class GetArrayNum2DElementByUV : public weft::Node {
public:
    GetArrayNum2DElementByUV(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetArrayNum2DElementByUV">();
        describe("This node returns the bilinearly interpolated element of the 2D-input 'array' "
                 "with the given width at the normalized coordinates x,y (0<x<1, 0<y<1).");
        array_ = addInput<NumericAttribute>("array", "The array to read, row after row.");
        width_ = addInput<NumericAttribute>("width", "The number of elements of a row. The size of "
                                                     "the input 'array' must be a multiple of it.");
        x_ = addInput<NumericAttribute>("x", "The positions along the rows: 0 is the first "
                                             "element of a row, 1 the last one.");
        y_ = addInput<NumericAttribute>("y", "The positions across the rows: 0 is the first row, "
                                             "1 the last one.");
        element_ = addOutput<NumericAttribute>("element", "The interpolated element at every "
                                                          "position.");
        setThreadingModeHintByElement();
        const SpecializationList types{"Real", "Vector3", "Color4"};
        array_->setAllowedSpecializations(types);
        element_->setAllowedSpecializations(types);
        declareNumber(*width_, {"Integer"}, 1);
        setAttributeAllowedSpecialization(x_, "Real");
        setAttributeAllowedSpecialization(y_, "Real");
        takeOneElement({width_});
        setAttributeAffectedByAllInputs(element_);
        addAttributeSpecializationLink(array_, element_);
    }

    void attributeSpecializationChanged(Attribute*) override {
        sample_ = nullptr;
        weft::withElementType(selectorOf(*array_), [&]<typename T>() {
            if constexpr (isOneOf<T, float, Vector3<float>, Color4<float>>) {
                sample_ = &GetArrayNum2DElementByUV::sample<T>;
            }
        });
    }

    void update(Attribute*) override {
        if (!sample_) return;
        for (NumericAttribute* input : {array_, width_, x_, y_}) input->pull();
        Numeric* target = element_->numericTarget();
        if (target) (this->*sample_)(*target);
    }

private:
    template <typename T>
    void sample(Numeric& target) {
        constexpr double nanoseconds = 8;
        const std::span<const T> elements = elementsOf<T>(array_->numeric());
        if (elements.empty()) return pushError("Missing Input...");
        const auto size = gridOf(*this, elements.size(), width_->numeric().value<int32_t>());
        if (!size) return;
        const BilinearGrid<T> grid(elements, *size);
        mapNumbers<T>(
            *this, nanoseconds, target, [&grid](float x, float y) { return grid.at(x, y); },
            elementsOf<float>(x_->numeric()), elementsOf<float>(y_->numeric()));
        element_->valueChanged();
    }

    NumericAttribute* array_;
    NumericAttribute* width_;
    NumericAttribute* x_;
    NumericAttribute* y_;
    NumericAttribute* element_;
    void (GetArrayNum2DElementByUV::*sample_)(Numeric&) = nullptr;
};

SLUICE_DEFINE_NODE(GetArrayNum2DElement)
SLUICE_DEFINE_NODE(GetArrayNum2DElementByUV)

} // namespace tidemark::sluice::graph
