// SPDX-License-Identifier: Apache-2.0
// The family of nodes that treat arrays of every element type alike. An element type gets its
// operations by one line in the source of its type:
//
//     SLUICE_DEFINE_ARRAY_NODES(Mesh, MeshAttribute, PointerValue<Mesh>)
//
// which defines the classes `ArrayMeshSlice`, `GetArrayMeshElement` and so on behind the rows of
// node_types/*.def. Types whose values are arrays of pointers need nothing else. For any other
// class of values there is a specialization of `ArrayPort` (array_elements.h), and one source that
// includes array_nodes_impl.h and ends with `SLUICE_INSTANTIATE_ARRAY_NODES(Port)`.
//
// An operation whose output is one of its inputs by an internal connection works in place.
#pragma once

#include "graph/define_node.h"
#include "nodes/values/arrays/array_operation.h"

namespace tidemark::sluice::graph {

// The operations, by port class. Pins and their meaning: see the descriptions in
// array_nodes_impl.h.

template <typename Port>
class GetArrayElement : public ArrayOperation<Port> {
public:
    GetArrayElement(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                    typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array_;
    NumericAttribute* index_;
    Port* result_;
};

template <typename Port>
class SetArrayElement : public ArrayOperation<Port> {
public:
    SetArrayElement(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                    typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    void checkSizes(std::size_t indexCount, std::size_t elementCount);

    Port* array_;
    NumericAttribute* index_;
    Port* element_;
    Port* outArray_;
};

template <typename Port>
class ArrayFilterByMask : public ArrayOperation<Port> {
public:
    ArrayFilterByMask(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                      typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array_;
    BitArrayAttribute* mask_;
    Port* result_;
};

template <typename Port>
class ArrayConstant : public ArrayOperation<Port> {
public:
    ArrayConstant(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                  typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* constant_;
    NumericAttribute* size_;
    Port* outArray_;
};

template <typename Port>
class ArrayResize : public ArrayOperation<Port> {
public:
    ArrayResize(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array_;
    NumericAttribute* size_;
    Port* outArray_;
};

template <typename Port>
class ArrayConcat : public ArrayOperation<Port> {
public:
    ArrayConcat(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array0_;
    Port* array1_;
    Port* outArray_;
};

template <typename Port>
class ArraySlice : public ArrayOperation<Port> {
public:
    ArraySlice(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
               typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array_;
    NumericAttribute* first_;
    NumericAttribute* size_;
    Port* outArray_;
};

template <typename Port>
class ArrayMix : public ArrayOperation<Port> {
public:
    ArrayMix(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
             typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array0_;
    Port* array1_;
    BitArrayAttribute* mask_;
    Port* outArray_;
};

/// For element types that have an order; see element_order.h.
template <typename Port>
class ArraySort : public ArrayOperation<Port> {
public:
    ArraySort(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
              typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute* asked) override;

private:
    void writeMaps(const Array<int32_t>& order, const weft::Attribute* asked, bool inPlace);

    Port* array_;
    NumericAttribute* oldToNew_;
    NumericAttribute* newToOld_;
    Port* outArray_;
};

template <typename Port>
class ArrayReverse : public ArrayOperation<Port> {
public:
    ArrayReverse(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                 typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array_;
    Port* outArray_;
};

template <typename Port>
class ArrayFindElement : public ArrayOperation<Port> {
public:
    ArrayFindElement(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                     typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array_;
    Port* element_;
    NumericAttribute* startIndex_;
    NumericAttribute* index_;
};

template <typename Port>
class ArrayFindAllElementIndices : public ArrayOperation<Port> {
public:
    ArrayFindAllElementIndices(weft::NetworkManager* manager, const TM_String& name,
                               weft::Node* parent,
                               typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute* asked) override;

private:
    Port* array_;
    Port* element_;
    NumericAttribute* index_;
    BitArrayAttribute* mask_;
};

template <typename Port>
class ArrayInsertElement : public ArrayOperation<Port> {
public:
    ArrayInsertElement(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                       typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array_;
    Port* element_;
    NumericAttribute* index_;
    Port* outArray_;
};

template <typename Port>
class ArrayPushElement : public ArrayOperation<Port> {
public:
    ArrayPushElement(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                     typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute*) override;

private:
    Port* array_;
    Port* element_;
    Port* outArray_;
};

/// Base of the operations that leave elements out and tell by a mask which ones.
template <typename Port>
class ArrayRemoval : public ArrayOperation<Port> {
protected:
    using ArrayOperation<Port>::ArrayOperation;

    void addArray();
    void addOutArray(const char* help);
    void addMask();
    /// What "out array" and "mask" are to show of `from`, the elements of "array". `read` are the
    /// values that are still read then.
    template <typename T>
    void writeRemaining(std::span<const T> from, const Array<uint32_t>& kept,
                        std::initializer_list<const weft::Value*> read, bool wantsMask,
                        WorkMeter& meter);

    Port* array_ = nullptr;
    Port* outArray_ = nullptr;
    BitArrayAttribute* mask_ = nullptr;
};

template <typename Port>
class ArrayRemoveElement : public ArrayRemoval<Port> {
public:
    ArrayRemoveElement(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                       typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute* asked) override;

private:
    using ArrayRemoval<Port>::array_;
    using ArrayRemoval<Port>::outArray_;
    using ArrayRemoval<Port>::mask_;

    Port* element_;
};

template <typename Port>
class ArrayRemoveIndex : public ArrayRemoval<Port> {
public:
    ArrayRemoveIndex(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                     typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute* asked) override;

private:
    using ArrayRemoval<Port>::array_;
    using ArrayRemoval<Port>::outArray_;
    using ArrayRemoval<Port>::mask_;

    NumericAttribute* index_;
};

template <typename Port>
class ArrayRemoveRepeatedElements : public ArrayRemoval<Port> {
public:
    ArrayRemoveRepeatedElements(weft::NetworkManager* manager, const TM_String& name,
                                weft::Node* parent,
                                typename ArrayOperation<Port>::MakePort makePort);
    void update(weft::Attribute* asked) override;

private:
    using ArrayRemoval<Port>::array_;
    using ArrayRemoval<Port>::outArray_;
    using ArrayRemoval<Port>::mask_;

    NumericAttribute* newToOld_;
};

// The same by element type.

template <typename Attr, typename Value>
using GetArrayElementBase = ArrayOf<GetArrayElement, Attr, Value>;
template <typename Attr, typename Value>
using SetArrayElementBase = ArrayOf<SetArrayElement, Attr, Value>;
template <typename Attr, typename Value>
using ArrayFilterByMaskBase = ArrayOf<ArrayFilterByMask, Attr, Value>;
template <typename Attr, typename Value>
using ArrayConstantBase = ArrayOf<ArrayConstant, Attr, Value>;
template <typename Attr, typename Value>
using ArrayResizeBase = ArrayOf<ArrayResize, Attr, Value>;
template <typename Attr, typename Value>
using ArrayConcatBase = ArrayOf<ArrayConcat, Attr, Value>;
template <typename Attr, typename Value>
using ArraySliceBase = ArrayOf<ArraySlice, Attr, Value>;
template <typename Attr, typename Value>
using ArrayMixBase = ArrayOf<ArrayMix, Attr, Value>;
template <typename Attr, typename Value>
using ArraySortBase = ArrayOf<ArraySort, Attr, Value>;
template <typename Attr, typename Value>
using ArrayReverseBase = ArrayOf<ArrayReverse, Attr, Value>;
template <typename Attr, typename Value>
using ArrayFindElementBase = ArrayOf<ArrayFindElement, Attr, Value>;
template <typename Attr, typename Value>
using ArrayFindAllElementIndicesBase = ArrayOf<ArrayFindAllElementIndices, Attr, Value>;
template <typename Attr, typename Value>
using ArrayInsertElementBase = ArrayOf<ArrayInsertElement, Attr, Value>;
template <typename Attr, typename Value>
using ArrayPushElementBase = ArrayOf<ArrayPushElement, Attr, Value>;
template <typename Attr, typename Value>
using ArrayRemoveElementBase = ArrayOf<ArrayRemoveElement, Attr, Value>;
template <typename Attr, typename Value>
using ArrayRemoveIndexBase = ArrayOf<ArrayRemoveIndex, Attr, Value>;
template <typename Attr, typename Value>
using ArrayRemoveRepeatedElementsBase = ArrayOf<ArrayRemoveRepeatedElements, Attr, Value>;

} // namespace tidemark::sluice::graph

/// Defines the node class `Class` as the operation `Base` over `Attr` and `Value`.
#define SLUICE_DEFINE_ARRAY_NODE(Class, Base, Attr, Value)                                         \
    class Class final : public Base<Attr, Value> {                                                 \
        using Operation = Base<Attr, Value>;                                                       \
                                                                                                   \
    public:                                                                                        \
        Class(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)            \
            : Operation(manager, name, parent) {                                                   \
            initializeClassName();                                                                 \
        }                                                                                          \
                                                                                                   \
    protected:                                                                                     \
        void initializeClassName() override { appendClass<#Class>(); }                             \
    };                                                                                             \
    SLUICE_DEFINE_NODE(Class)

/// The operations that every element type has and that no type has a version of its own of.
#define SLUICE_DEFINE_COMMON_ARRAY_NODES(Word, Attr, Value)                                        \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##FilterByMask, ArrayFilterByMaskBase, Attr, Value)        \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##Resize, ArrayResizeBase, Attr, Value)                    \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##Concat, ArrayConcatBase, Attr, Value)                    \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##Slice, ArraySliceBase, Attr, Value)                      \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##Mix, ArrayMixBase, Attr, Value)                          \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##Reverse, ArrayReverseBase, Attr, Value)                  \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##FindElement, ArrayFindElementBase, Attr, Value)          \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##FindAllElementIndices, ArrayFindAllElementIndicesBase,   \
                             Attr, Value)                                                          \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##InsertElement, ArrayInsertElementBase, Attr, Value)      \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##PushElement, ArrayPushElementBase, Attr, Value)          \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##RemoveElement, ArrayRemoveElementBase, Attr, Value)      \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##RemoveIndex, ArrayRemoveIndexBase, Attr, Value)          \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##RemoveRepeatedElements, ArrayRemoveRepeatedElementsBase, \
                             Attr, Value)

/// All sixteen operations of an element type, inside namespace tidemark::sluice::graph.
#define SLUICE_DEFINE_ARRAY_NODES(Word, Attr, Value)                                               \
    SLUICE_DEFINE_ARRAY_NODE(GetArray##Word##Element, GetArrayElementBase, Attr, Value)            \
    SLUICE_DEFINE_ARRAY_NODE(SetArray##Word##Element, SetArrayElementBase, Attr, Value)            \
    SLUICE_DEFINE_ARRAY_NODE(Array##Word##Constant, ArrayConstantBase, Attr, Value)                \
    SLUICE_DEFINE_COMMON_ARRAY_NODES(Word, Attr, Value)
