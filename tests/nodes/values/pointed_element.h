// SPDX-License-Identifier: Apache-2.0
// An element type of the tests, held by pointers, as docs/values.md tells an extension to write
// one. With pointed_element.cpp it is all that the type takes, but for the rows.
#pragma once

#include "core/pointer_value.h"

namespace weft {

struct Anchor {
    float depth;
};
using AnchorValue = PointerValue<Anchor>;

class AnchorAttribute : public PointerAttribute {
public:
    using Pointee = Anchor;
    AnchorAttribute(NetworkManager* manager, const TM_String& name, Node* parent);
};

} // namespace weft
