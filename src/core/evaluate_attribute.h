// SPDX-License-Identifier: Apache-2.0
// The port that asks for something to be computed, whatever its type is.
#pragma once

#include "core/attribute.h"

namespace weft {

/// A port without a value of its own that may be of every type with a number and a name, except
/// "Polymorphic". As an output it is "Evaluate" alone, which its node sees to when it is added.
class SLUICE_API EvaluateAttribute : public Attribute {
public:
    EvaluateAttribute(NetworkManager* manager, const TM_String& name, Node* parent);
    /// "The evaluate." unless a text was given.
    TM_String getDescription() const override;
    /// "All" as an input.
    TM_String allowedSpecializationsText() const override;

    /// Every type name but "Polymorphic", in the order of the numbers.
    static const SpecializationList& allTypes();
};

} // namespace weft
