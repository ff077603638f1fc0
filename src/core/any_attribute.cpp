// SPDX-License-Identifier: Apache-2.0
// The port that carries a value of any class.
#include "core/any_attribute.h"

#include "core/evaluate_attribute.h"

namespace weft {

AnyAttribute::AnyAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : Attribute(manager, name, parent) {
    appendClass<"AnyAttribute">();
    initializeSpecializations(EvaluateAttribute::allTypes());
}

TM_String AnyAttribute::allowedSpecializationsText() const { return "All"; }

} // namespace weft
