// SPDX-License-Identifier: Apache-2.0
// Filtering two lists of types by the pairs that go together.
#include "nodes/values/type_pairs.h"

#include <array>

namespace weft {

namespace {

struct PairLists {
    SpecializationList second;
    SpecializationList result;
};

PairLists filtered(TypePairs pairs, SpecializationList secondList, SpecializationList resultList) {
    Array<TM_String> secondNames;
    Array<TM_String> resultNames;
    for (const TM_String& name : resultList.names()) {
        for (const NumericType type : pairs(numericTypeOf(name))) {
            const TM_String& second = nameOf(type);
            if (!secondList.contains(second)) continue;
            if (!secondNames.contains(second)) secondNames.append(second);
            if (!resultNames.contains(name)) resultNames.append(name);
        }
    }
    return {SpecializationList(secondNames), SpecializationList(resultNames)};
}

// Networks settle the same few lists over and over.
class PairMemory {
public:
    const PairLists& lists(TypePairs pairs, SpecializationList second, SpecializationList result) {
        for (uint32_t i = 0; i < used_; ++i) {
            const Entry& entry = entries_[i];
            if (entry.pairs == pairs && entry.second == second && entry.result == result) {
                return entry.lists;
            }
        }
        const uint32_t slot = used_ < entries_.size() ? used_++ : next_++ % entries_.size();
        entries_[slot] = {pairs, second, result, filtered(pairs, second, result)};
        return entries_[slot].lists;
    }

private:
    struct Entry {
        TypePairs pairs = nullptr;
        SpecializationList second;
        SpecializationList result;
        PairLists lists;
    };
    std::array<Entry, 16> entries_;
    uint32_t used_ = 0;
    uint32_t next_ = 0;
};

} // namespace

void filterPairs(TypePairs pairs, SpecializationList& secondList, SpecializationList& resultList) {
    thread_local PairMemory memory;
    const PairLists& lists = memory.lists(pairs, secondList, resultList);
    secondList = lists.second;
    resultList = lists.result;
}

} // namespace weft
