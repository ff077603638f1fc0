// SPDX-License-Identifier: Apache-2.0
// The pool of shared texts.
#include "graph/base/interned_text.h"

#include <mutex>
#include <unordered_set>

namespace tidemark::graph {

const TM_String* internedText(const TM_String& text) {
    // Never destroyed: scenes with static lifetime still hold texts when the process ends.
    static auto& pool = *new std::unordered_set<TM_String>();
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    return &*pool.insert(text).first;
}

} // namespace tidemark::graph
