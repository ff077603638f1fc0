// SPDX-License-Identifier: Apache-2.0
// Tests of the search for free suffixes, against a plain search over all names.
#include "graph/suffix_index.h"

#include <gtest/gtest.h>

#include <cctype>
#include <memory>
#include <random>
#include <vector>

using namespace tidemark;
using tidemark::graph::GraphNodeBase;
using tidemark::sluice::graph::SuffixIndex;

namespace {

// Names in a table of nodes, each change told to an index.
class NamedNodes {
public:
    NamedNodes() : index(table) {}

    uint32_t add(const TM_String& name) {
        nodes_.push_back(std::make_unique<GraphNodeBase>());
        nodes_.back()->setName(name);
        const auto id = static_cast<uint32_t>(nodes_.size());
        table.insert(id, nodes_.back().get());
        index.insert(name);
        return id;
    }
    void rename(uint32_t id, const TM_String& name) {
        const TM_String before = table.find(id)->getName();
        table.find(id)->setName(name);
        index.erase(before);
        index.insert(name);
    }
    void remove(uint32_t id) {
        const TM_String name = table.find(id)->getName();
        table.erase(id);
        index.erase(name);
    }

    bool hasBySearch(const TM_String& name) const {
        for (const auto entry : table) {
            const TM_String& other = entry.value->getName();
            if (text::toLower(other) == text::toLower(name)) return true;
        }
        return false;
    }
    int64_t nextBySearch(const TM_String& base) const {
        int64_t number = 1;
        for (const auto entry : table) {
            const TM_String& name = entry.value->getName();
            if (name.rfind(base, 0) != 0) continue;
            const TM_String rest = name.size() > base.size() ? name.substr(base.size() + 1) : "";
            const int64_t suffix = text::toInt32(rest);
            if (suffix >= number) number = suffix + 1;
        }
        return number;
    }

    SuffixIndex::Nodes table;
    SuffixIndex index;

private:
    std::vector<std::unique_ptr<GraphNodeBase>> nodes_;
};

} // namespace

TEST(SuffixIndex, AnswersOneAboveTheHighest) {
    NamedNodes names;
    for (const char* name :
         {"Add", "Add_01", "Add_07", "Add-12", "Add_x", "Addition_99", "Add_7x"}) {
        names.add(name);
    }
    EXPECT_EQ(names.index.nextNumber("Add", names.table), 13);
    EXPECT_EQ(names.index.nextNumber("Addition", names.table), 100);
    EXPECT_EQ(names.index.nextNumber("add", names.table), 1); // letter case counts here
    EXPECT_EQ(names.index.nextNumber("Sub", names.table), 1);
    EXPECT_TRUE(names.index.has("ADD_01"));
    EXPECT_FALSE(names.index.has("ADD_02"));
}

TEST(SuffixIndex, KeepsUpWithChanges) {
    NamedNodes names;
    const uint32_t first = names.add("A_05");
    EXPECT_EQ(names.index.nextNumber("A", names.table), 6);
    names.add("A_09");
    EXPECT_EQ(names.index.nextNumber("A", names.table), 10);
    names.rename(2, "B_09");
    EXPECT_EQ(names.index.nextNumber("A", names.table), 6);
    names.remove(first);
    EXPECT_EQ(names.index.nextNumber("A", names.table), 1);
    EXPECT_FALSE(names.index.has("a_05"));
}

TEST(SuffixIndex, HugeNumbersAreNoTrap) {
    NamedNodes names;
    names.add("A_2147483647");
    EXPECT_EQ(names.index.nextNumber("A", names.table), 2147483648);
    names.add("A_99999999999999999999");
    EXPECT_EQ(names.index.nextNumber("A", names.table), names.nextBySearch("A"));
}

TEST(SuffixIndex, LongNamesCostNoMoreThanTheirLength) {
    NamedNodes names;
    names.index.nextNumber("A", names.table);
    const TM_String long_ = "A_" + TM_String(4000000, '1');
    const uint32_t id = names.add(long_);
    EXPECT_TRUE(names.index.has(long_));
    names.remove(id);
    EXPECT_FALSE(names.index.has(long_));
}

TEST(SuffixIndex, AgreesWithThePlainSearch) {
    std::mt19937 random(20);
    const std::vector<TM_String> stems{"A", "Ab", "AB", "a", "A_0", "", "A_1"};
    NamedNodes names;
    std::vector<uint32_t> alive;
    const auto name = [&] {
        TM_String text = stems[random() % stems.size()];
        if (random() % 4) text += "_" + std::to_string(random() % 30);
        if (random() % 8 == 0) text += "x";
        return text;
    };
    for (int step = 0; step < 3000; ++step) {
        const unsigned action = random() % 4;
        if (action < 2 || alive.empty()) {
            alive.push_back(names.add(name()));
        } else if (action == 2) {
            names.rename(alive[random() % alive.size()], name());
        } else {
            const std::size_t at = random() % alive.size();
            names.remove(alive[at]);
            alive.erase(alive.begin() + static_cast<std::ptrdiff_t>(at));
        }
        const TM_String asked = random() % 2 ? stems[random() % stems.size()] : name();
        ASSERT_EQ(names.index.nextNumber(asked, names.table), names.nextBySearch(asked)) << asked;
        ASSERT_EQ(names.index.has(asked), names.hasBySearch(asked)) << asked;
    }
}
