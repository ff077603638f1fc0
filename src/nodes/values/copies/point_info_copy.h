// SPDX-License-Identifier: Apache-2.0
// Copies of keys, for code that builds logic networks: no registered node type.
#pragma once

#include "nodes/values/copies/copy_nodes.h"
#include "nodes/values/curves/curve_attributes.h"

namespace weft {

/// The keys that it made belong to no curve.
class SLUICE_API PointInfoCopy : public CopyPtr<KeyAttribute> {
public:
    PointInfoCopy(NetworkManager* manager, const TM_String& name, Node* parent)
        : CopyPtr(manager, name, parent) {
        appendClass<"PointInfoCopy">();
    }
};

} // namespace weft
