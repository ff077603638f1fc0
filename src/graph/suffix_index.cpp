// SPDX-License-Identifier: Apache-2.0
// Suffixes in use.
#include "graph/suffix_index.h"

#include <algorithm>

namespace tidemark::sluice::graph {

namespace {

// The number behind `base` and a separator, 0 when the name is too short to hold one.
int64_t suffixNumber(std::string_view name, std::size_t baseLength) {
    return name.size() > baseLength + 1 ? text::toInt32(name.substr(baseLength + 1)) : 0;
}

} // namespace

SuffixIndex::SuffixIndex(const Nodes& nodes) {
    for (const auto entry : nodes) ++countByLowerName_[text::toLower(entry.value->getName())];
}

void SuffixIndex::insert(const TM_String& name) {
    ++countByLowerName_[text::toLower(name)];
    if (nextByBase_.empty()) return;
    TM_String base;
    for (std::size_t length = 0; length <= name.size(); ++length) {
        base.assign(name, 0, length);
        const auto known = nextByBase_.find(base);
        if (known == nextByBase_.end()) continue;
        known->second = std::max(known->second, suffixNumber(name, length) + 1);
    }
}

void SuffixIndex::erase(const TM_String& name) {
    const auto found = countByLowerName_.find(text::toLower(name));
    if (found != countByLowerName_.end() && --found->second == 0) countByLowerName_.erase(found);
    if (nextByBase_.empty()) return;
    TM_String base;
    for (std::size_t length = 0; length <= name.size(); ++length) {
        base.assign(name, 0, length);
        const auto known = nextByBase_.find(base);
        if (known == nextByBase_.end()) continue;
        // The highest may be gone: the next question looks at all names again.
        if (known->second == suffixNumber(name, length) + 1) nextByBase_.erase(known);
    }
}

bool SuffixIndex::has(const TM_String& name) const {
    return countByLowerName_.count(text::toLower(name)) > 0;
}

int64_t SuffixIndex::nextNumber(const TM_String& base, const Nodes& nodes) {
    const auto known = nextByBase_.find(base);
    if (known != nextByBase_.end()) return known->second;
    int64_t next = 1;
    for (const auto entry : nodes) {
        const TM_String& name = entry.value->getName();
        if (name.compare(0, base.size(), base) != 0) continue;
        next = std::max(next, suffixNumber(name, base.size()) + 1);
    }
    nextByBase_[base] = next;
    return next;
}

} // namespace tidemark::sluice::graph
