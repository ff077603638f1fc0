// SPDX-License-Identifier: Apache-2.0
// What a pin asks of a value that refers to objects of the host's scene.
#pragma once

#include "core/value.h"

namespace weft {

/// References to host objects, held as names and as pointers at once. Which of the two counts is
/// the value's business: whoever changes one side says so, and the other is looked up when it is
/// asked for. The host owns the objects.
class SLUICE_API HostNodeValue : public Value {
public:
    using Value::Value;

    /// Takes over the names, one element each; they are newer than the pointers from now on.
    virtual void setNames(const Array<TM_String>& names) = 0;
    /// The host objects, looked up by name when the names are newer; null where there is none.
    virtual Array<void*> pointers() = 0;
    /// Blanks every reference to `object`, which is about to die.
    virtual void forget(const void* object) = 0;
    /// The elements' names, looked up from the pointers when those are newer.
    virtual Array<TM_String> names() const = 0;
    /// The names for a graph file, separated by a blank.
    virtual TM_String asStringForParameter() const = 0;
    /// Looks every name up; false when one names no object of the value's classes.
    virtual bool checkNamesIntegrity() = 0;
    /// Names and pointers have to be compared again before the next use.
    virtual void markStale() = 0;
    /// The classes of host objects that may stand here, one bit each.
    virtual uint32_t classMask() const = 0;
};

} // namespace weft
