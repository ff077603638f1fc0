// SPDX-License-Identifier: Apache-2.0
// The port that takes every type.
#include "core/evaluate_attribute.h"

namespace weft {

EvaluateAttribute::EvaluateAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : Attribute(manager, name, parent) {
    appendClass<"EvaluateAttribute">();
    initializeSpecializations(allTypes());
}

TM_String EvaluateAttribute::getDescription() const {
    const TM_String text = Attribute::getDescription();
    return text.empty() ? TM_String("The evaluate.") : text;
}

TM_String EvaluateAttribute::allowedSpecializationsText() const {
    return isInput() ? TM_String("All") : Attribute::allowedSpecializationsText();
}

const SpecializationList& EvaluateAttribute::allTypes() {
    static const SpecializationList list = [] {
        Array<TM_String> names;
        for (int number = typeInteger; number <= typeLast; ++number) {
            if (number != typePolymorphic && !typeName(number).empty()) {
                names.append(typeName(number));
            }
        }
        return SpecializationList(names);
    }();
    return list;
}

} // namespace weft
