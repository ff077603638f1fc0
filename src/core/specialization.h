// SPDX-License-Identifier: Apache-2.0
// Specializations: the names of types, their numbers, and lists of them.
#pragma once

#include <initializer_list>

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"

namespace weft {

using tidemark::Array;

/// Type numbers of pins and colours. The names are those of `typeName`.
enum TypeNumber : int {
    typeNone = 0,
    typeInteger = 1,
    typeInteger64 = 2,
    typeReal = 3,
    typeDouble = 4,
    typeBit = 5,
    typeColor4 = 9,
    typeList = 10,
    typeVector3 = 13,
    typeMatrix4 = 14,
    typeQuaternion = 15,
    typeMesh = 17,
    typeFilePath = 19,
    typeFolder = 20,
    typeString = 21,
    typePolymorphic = 23,
    typeParticles = 25,
    typeBox = 27,
    typeFirstHostNode = 28,
    typeLastHostNode = 53,
    typeCondition = 62,
    typeParameterType = 64,
    typeEvaluate = 68,
    typeLast = 69,
};

/// The specialization name of a type number, empty for a number without one.
SLUICE_API const TM_String& typeName(int number);

/// The number of a specialization name, 0 for one that the table does not hold. Exact.
SLUICE_API int typeNumber(std::string_view name);

constexpr bool isHostNodeType(int number) {
    return number >= typeFirstHostNode && number <= typeLastHostNode;
}

/// An ordered list of specialization names. Equal lists share one record that lives as long as the
/// process, so a list costs a pointer, copying and comparing are cheap, and lists may be made on
/// any thread.
class SLUICE_API SpecializationList {
public:
    struct Record;

    SpecializationList();
    SpecializationList(std::initializer_list<const char*> names);
    explicit SpecializationList(const Array<TM_String>& names);
    /// The list of one name.
    static SpecializationList single(const TM_String& name);

    const Array<TM_String>& names() const;
    uint32_t size() const { return names().size(); }
    bool empty() const { return size() == 0; }
    const TM_String& operator[](uint32_t index) const { return names()[index]; }
    bool contains(std::string_view name) const;

    /// Same names in the same order.
    friend bool operator==(SpecializationList a, SpecializationList b) {
        return a.record_ == b.record_;
    }
    bool isSameSet(SpecializationList other) const;
    bool hasNameInCommonWith(SpecializationList other) const;
    /// True when every name stands in `other`. Says so of an empty list too.
    bool isSubsetOf(SpecializationList other) const;
    /// The names that stand in `other`, in the order of this list.
    SpecializationList intersectedWith(SpecializationList other) const;

private:
    explicit SpecializationList(const Record* record) : record_(record) {}

    const Record* record_;
};

} // namespace weft
