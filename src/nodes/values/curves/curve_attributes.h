// SPDX-License-Identifier: Apache-2.0
// The ports that carry curves and keys.
#pragma once

#include "core/pointer_value.h"
#include "platform/curve.h"

namespace weft {

extern template class SLUICE_API PointerValue<tidemark::ANIFloatBase>;
extern template class SLUICE_API PointerValue<tidemark::PointInfo>;

/// Curves, owned by whoever made them: the host, or the program that runs the graph.
using CurveValue = PointerValue<tidemark::ANIFloatBase>;
/// Keys, owned by their curves or by nodes of type "Key".
using KeyValue = PointerValue<tidemark::PointInfo>;

/// A port of the one type "Curve". From the first one on, a curve that goes blanks the references
/// to it in all scenes.
class SLUICE_API CurveAttribute : public PointerAttribute {
public:
    CurveAttribute(NetworkManager* manager, const TM_String& name, Node* parent);

    /// Null beyond an empty value and for null elements.
    tidemark::ANIFloatBase* curveAt(uint32_t index) const {
        return pointerAt<tidemark::ANIFloatBase>(*this, index);
    }
};

/// A port of the one type "Key". From the first one on, a key that is about to be freed blanks the
/// references to it in all scenes.
class SLUICE_API KeyAttribute : public PointerAttribute {
public:
    using Pointee = tidemark::PointInfo;

    KeyAttribute(NetworkManager* manager, const TM_String& name, Node* parent);

    tidemark::PointInfo* keyAt(uint32_t index) const {
        return pointerAt<tidemark::PointInfo>(*this, index);
    }
};

} // namespace weft
