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

// Calls `visit(entry)` for each base that `name` begins with; true as an answer drops the entry.
// Few bases are tried one by one, of many only those that are beginnings of the name.
template <typename Visit>
void SuffixIndex::eachKnownBaseOf(const TM_String& name, Visit visit) {
    if (nextByBase_.size() <= name.size()) {
        for (auto entry = nextByBase_.begin(); entry != nextByBase_.end();) {
            const bool isBase = name.compare(0, entry->first.size(), entry->first) == 0;
            entry = isBase && visit(*entry) ? nextByBase_.erase(entry) : std::next(entry);
        }
        return;
    }
    TM_String base;
    for (std::size_t length = 0; length <= name.size(); ++length) {
        base.assign(name, 0, length);
        const auto known = nextByBase_.find(base);
        if (known != nextByBase_.end() && visit(*known)) nextByBase_.erase(known);
    }
}

void SuffixIndex::insert(const TM_String& name) {
    ++countByLowerName_[text::toLower(name)];
    eachKnownBaseOf(name, [&name](auto& entry) {
        entry.second = std::max(entry.second, suffixNumber(name, entry.first.size()) + 1);
        return false;
    });
}

void SuffixIndex::erase(const TM_String& name) {
    const auto found = countByLowerName_.find(text::toLower(name));
    if (found != countByLowerName_.end() && --found->second == 0) countByLowerName_.erase(found);
    // The highest may be gone: the next question looks at all names again.
    eachKnownBaseOf(name, [&name](const auto& entry) {
        return entry.second == suffixNumber(name, entry.first.size()) + 1;
    });
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
