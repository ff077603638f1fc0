// SPDX-License-Identifier: Apache-2.0
// Tests of the table from ids to objects.
#include "core/id_table.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

using tidemark::IdTable;

namespace {

std::vector<uint32_t> idsOf(const IdTable<int>& table) {
    std::vector<uint32_t> ids;
    for (const auto entry : table) ids.push_back(entry.id);
    return ids;
}

} // namespace

TEST(IdTable, EmptyFindsNothing) {
    const IdTable<int> table;
    EXPECT_EQ(table.find(0), nullptr);
    EXPECT_EQ(table.firstFrom(0).value, nullptr);
    EXPECT_EQ(table.lastId(), 0u);
    EXPECT_TRUE(table.empty());
    EXPECT_TRUE(table.begin() == table.end());
}

TEST(IdTable, IteratesInOrderOfIdsWhateverTheOrderOfInsertion) {
    int values[4] = {};
    IdTable<int> table;
    table.insert(5, &values[0]);
    table.insert(9, &values[1]);
    table.insert(7, &values[2]);
    table.insert(2, &values[3]);
    EXPECT_EQ(idsOf(table), (std::vector<uint32_t>{2, 5, 7, 9}));
    EXPECT_EQ(table.find(7), &values[2]);
    EXPECT_EQ(table.find(6), nullptr);
    EXPECT_EQ(table.lastId(), 9u);
}

TEST(IdTable, InsertingAKnownIdReplaces) {
    int first = 0;
    int second = 0;
    IdTable<int> table;
    table.insert(3, &first);
    table.insert(3, &second);
    EXPECT_EQ(table.size(), 1u);
    EXPECT_EQ(table.find(3), &second);
}

TEST(IdTable, ErasedIdsCanComeBack) {
    int value = 0;
    IdTable<int> table;
    for (uint32_t id = 1; id <= 5; ++id) table.insert(id, &value);
    EXPECT_TRUE(table.erase(2));
    EXPECT_FALSE(table.erase(2));
    EXPECT_FALSE(table.erase(99));
    EXPECT_FALSE(table.contains(2));
    table.insert(2, &value);
    EXPECT_EQ(idsOf(table), (std::vector<uint32_t>{1, 2, 3, 4, 5}));
}

TEST(IdTable, EraseAtTheEndLowersTheLastId) {
    int value = 0;
    IdTable<int> table;
    for (uint32_t id = 1; id <= 4; ++id) table.insert(id, &value);
    table.erase(3);
    table.erase(4);
    EXPECT_EQ(table.lastId(), 2u);
    table.erase(1);
    table.erase(2);
    EXPECT_EQ(table.lastId(), 0u);
}

TEST(IdTable, AWalkByFirstFromMayErase) {
    int value = 0;
    IdTable<int> table;
    for (uint32_t id = 10; id < 110; ++id) table.insert(id, &value);
    uint32_t seen = 0;
    for (auto entry = table.firstFrom(0); entry.value; entry = table.firstFrom(entry.id + 1)) {
        table.erase(entry.id);
        ++seen;
    }
    EXPECT_EQ(seen, 100u);
    EXPECT_TRUE(table.empty());
}

TEST(IdTable, HighestIdsDoNotOverflow) {
    int value = 0;
    IdTable<int> table;
    table.insert(0, &value);
    table.insert(0xffffffffu, &value);
    EXPECT_EQ(table.find(0xffffffffu), &value);
    EXPECT_EQ(table.find(0x80000000u), nullptr);
    table.insert(0x80000000u, &value);
    EXPECT_EQ(idsOf(table), (std::vector<uint32_t>{0, 0x80000000u, 0xffffffffu}));
}

TEST(IdTable, AgreesWithAnOrderedMapOverRandomChanges) {
    std::mt19937 random(7);
    std::vector<int> values(64);
    IdTable<int> table;
    std::map<uint32_t, int*> reference;
    for (int step = 0; step < 20000; ++step) {
        const uint32_t id = random() % 300;
        if (random() % 5 < 2) {
            int* value = &values[random() % values.size()];
            table.insert(id, value);
            reference[id] = value;
        } else {
            ASSERT_EQ(table.erase(id), reference.erase(id) == 1);
        }
        ASSERT_EQ(table.size(), reference.size());
        const uint32_t probe = random() % 310;
        const auto found = reference.find(probe);
        ASSERT_EQ(table.find(probe), found == reference.end() ? nullptr : found->second);
        const auto next = reference.lower_bound(probe);
        ASSERT_EQ(table.firstFrom(probe).value, next == reference.end() ? nullptr : next->second);
    }
    std::vector<uint32_t> ids;
    for (const auto& [id, value] : reference) ids.push_back(id);
    EXPECT_EQ(idsOf(table), ids);
}
