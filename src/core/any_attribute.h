// SPDX-License-Identifier: Apache-2.0
// The port that carries a value of any class.
#pragma once

#include "core/attribute.h"

namespace weft {

/// A port without a value of its own that may be of every type but "Polymorphic". What it shows is
/// what its source shows, or, as an output, the value object that its node hands on with
/// `setValue`; null until then.
class SLUICE_API AnyAttribute : public Attribute {
public:
    AnyAttribute(NetworkManager* manager, const TM_String& name, Node* parent);
    /// "All".
    TM_String allowedSpecializationsText() const override;
};

} // namespace weft
