// SPDX-License-Identifier: Apache-2.0
// What happens when there is no memory for a copy.
#include "nodes/values/copies/created_objects.h"

namespace weft {

void failCopy(Node& node, const CopyFailure& failure) {
    node.purge();
    node.pushCritical(tidemark::text::format(
        "Unable to allocate the necessary memory to copy data at position %d.",
        static_cast<int>(failure.position)));
}

} // namespace weft
