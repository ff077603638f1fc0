// SPDX-License-Identifier: Apache-2.0
// Tests of the hash from names to the items of a list.
#include "core/name_index.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <string>

using namespace tidemark;

namespace {

struct Item {
    std::string name;
    uint32_t order = 0;
};

struct ItemTraits {
    static std::string_view name(const Item& item) { return item.name; }
    static uint32_t order(const Item& item) { return item.order; }
};

using Index = NameIndex<Item, ItemTraits>;
using LazyIndex = LazyNameIndex<Item, ItemTraits>;

// A list with a lazy index beside it, as an owner of named children keeps it.
struct List {
    Item* add(const std::string& name) {
        const uint32_t order = items.empty() ? 0 : items.back()->order + 1;
        store.push_back(Item{name, order});
        items.append(&store.back());
        index.added(&store.back());
        return &store.back();
    }
    void remove(Item* item) {
        index.removing(item);
        items.remove(item);
    }

    std::deque<Item> store;
    ArrayOfPtr<Item> items;
    LazyIndex index;
};

} // namespace

TEST(NameIndex, EmptyFindsNothing) {
    const Index index;
    EXPECT_EQ(index.find(""), nullptr);
    EXPECT_EQ(index.find("a"), nullptr);
}

TEST(NameIndex, FirstInOrderWinsAmongEqualNames) {
    Item late{"same", 9};
    Item early{"same", 2};
    Item middle{"same", 5};
    Index index;
    index.insert(&late);
    EXPECT_EQ(index.find("same"), &late);
    index.insert(&early);
    index.insert(&middle);
    EXPECT_EQ(index.find("same"), &early);
    EXPECT_EQ(index.countOfNames(), 1u);
    EXPECT_TRUE(index.erase(&early));
    EXPECT_EQ(index.find("same"), &middle);
    EXPECT_TRUE(index.erase(&middle));
    EXPECT_EQ(index.find("same"), &late);
    EXPECT_TRUE(index.erase(&late));
    EXPECT_EQ(index.find("same"), nullptr);
    EXPECT_EQ(index.countOfNames(), 0u);
}

TEST(NameIndex, ErasingWhatItDoesNotHoldChangesNothing) {
    Item held{"a", 1};
    Item twin{"a", 2};
    Item other{"b", 3};
    Index index;
    index.insert(&held);
    EXPECT_FALSE(index.erase(&twin));
    EXPECT_FALSE(index.erase(&other));
    EXPECT_EQ(index.find("a"), &held);
}

TEST(NameIndex, RenameMovesOneOfEqualNames) {
    Item first{"a", 1};
    Item second{"a", 2};
    Index index;
    index.insert(&first);
    index.insert(&second);
    index.rename(&first, [&] { first.name = "b"; });
    EXPECT_EQ(index.find("a"), &second);
    EXPECT_EQ(index.find("b"), &first);
}

TEST(NameIndex, AgreesWithASearchOverRandomChanges) {
    std::mt19937 random(11);
    std::deque<Item> items;
    for (uint32_t i = 0; i < 400; ++i) items.push_back({std::to_string(random() % 150), i});
    std::vector<bool> held(items.size());
    Index index;
    for (int step = 0; step < 20000; ++step) {
        const std::size_t at = random() % items.size();
        if (held[at]) {
            ASSERT_TRUE(index.erase(&items[at]));
        } else {
            index.insert(&items[at]);
        }
        held[at] = !held[at];
        const std::string probe = std::to_string(random() % 150);
        const Item* expected = nullptr;
        for (std::size_t i = items.size(); i-- > 0;) {
            if (held[i] && items[i].name == probe) expected = &items[i];
        }
        ASSERT_EQ(index.find(probe), expected);
    }
}

TEST(LazyNameIndex, FindsTheSameBelowAndAboveTheLimit) {
    List list;
    for (int i = 0; i < 40; ++i) {
        Item* item = list.add("n" + std::to_string(i));
        EXPECT_EQ(list.index.find(item->name, list.items), item);
        EXPECT_EQ(list.index.find("n0", list.items), &list.store[0]);
        EXPECT_EQ(list.index.find("missing", list.items), nullptr);
    }
    list.remove(&list.store[0]);
    EXPECT_EQ(list.index.find("n0", list.items), nullptr);
    list.index.rename(&list.store[5], [&] { list.store[5].name = "other"; });
    EXPECT_EQ(list.index.find("n5", list.items), nullptr);
    EXPECT_EQ(list.index.find("other", list.items), &list.store[5]);
}

TEST(LazyNameIndex, ForgottenIndexIsBuiltAgain) {
    List list;
    for (int i = 0; i < 40; ++i) list.add("n" + std::to_string(i));
    EXPECT_EQ(list.index.find("n7", list.items), &list.store[7]);
    list.index.forget();
    list.items.clear();
    EXPECT_EQ(list.index.find("n7", list.items), nullptr);
}

TEST(LazyNameIndex, FreeNameTakesTheSmallestNumber) {
    List list;
    EXPECT_EQ(list.index.freeName("in", list.items), "in");
    list.add("in");
    EXPECT_EQ(list.index.freeName("in", list.items), "in1");
    list.add("in2");
    EXPECT_EQ(list.index.freeName("in", list.items), "in1");
    list.add("in1");
    EXPECT_EQ(list.index.freeName("in", list.items), "in3");
    EXPECT_EQ(list.index.freeName("", list.items), "");
}

TEST(LazyNameIndex, FreeNameOfALongListSeesFreedNumbers) {
    List list;
    for (int i = 0; i < 100; ++i) list.add(list.index.freeName("in", list.items));
    EXPECT_EQ(list.items.back()->name, "in99");
    EXPECT_EQ(list.index.freeName("in", list.items), "in100");
    list.remove(&list.store[40]);
    EXPECT_EQ(list.index.freeName("in", list.items), "in40");
    list.add("in40");
    list.index.rename(&list.store[10], [&] { list.store[10].name = "away"; });
    EXPECT_EQ(list.index.freeName("in", list.items), "in10");
    EXPECT_EQ(list.index.freeName("", list.items), "");
    list.add("");
    EXPECT_EQ(list.index.freeName("", list.items), "1");
}

TEST(LazyNameIndex, ManyFreeNamesOfOneStemTakeLinearTime) {
    List list;
    for (int i = 0; i < 200000; ++i) list.add(list.index.freeName("n", list.items));
    EXPECT_EQ(list.items.back()->name, "n199999");
}
