// SPDX-License-Identifier: Apache-2.0
// Tests of the table of type names and of lists of specializations.
#include "core/specialization.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/type_numbers.h"

using namespace weft;

namespace {

using Names = std::vector<std::string>;

SpecializationList listOf(const Names& names) {
    Array<TM_String> array;
    for (const std::string& name : names) array.append(name);
    return SpecializationList(array);
}

Names namesOf(const SpecializationList& list) {
    return Names(list.names().begin(), list.names().end());
}

bool has(const Names& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

TEST(TypeTable, NamesAndNumbersAgreeInBothDirections) {
    ASSERT_EQ(std::size(support::typeNumbers), 69u);
    for (const auto& [number, name] : support::typeNumbers) {
        EXPECT_EQ(typeName(number), name);
        EXPECT_EQ(typeNumber(name), number);
    }
}

TEST(TypeTable, OtherNumbersHaveNoName) {
    for (const int number : {0, -1, 70, 1000, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(typeName(number), "") << number;
    }
}

TEST(TypeTable, OtherNamesHaveNoNumber) {
    for (const char* name : {"", "integer", "Integer ", "Vertex", "MeshRef", "FaceRef", "VertexRef",
                             "DistanceFieldRef", "Vector"}) {
        EXPECT_EQ(typeNumber(name), 0) << name;
    }
}

TEST(TypeTable, HostNodeTypesAreARange) {
    EXPECT_FALSE(isHostNodeType(27));
    EXPECT_TRUE(isHostNodeType(28));
    EXPECT_TRUE(isHostNodeType(53));
    EXPECT_FALSE(isHostNodeType(54));
}

TEST(SpecializationList, EmptyOne) {
    const SpecializationList empty;
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(empty.size(), 0u);
    EXPECT_FALSE(empty.contains(""));
    EXPECT_EQ(empty, SpecializationList{});
    EXPECT_TRUE(empty.isSubsetOf(empty));
    EXPECT_TRUE(empty.isSubsetOf(SpecializationList{"Real"}));
    EXPECT_FALSE(empty.hasNameInCommonWith(empty));
    EXPECT_TRUE(empty.isSameSet(SpecializationList{}));
}

TEST(SpecializationList, EqualityMindsTheOrderSameSetDoesNot) {
    const SpecializationList a{"Real", "Integer"};
    const SpecializationList b{"Integer", "Real"};
    EXPECT_EQ(a, (SpecializationList{"Real", "Integer"}));
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a.isSameSet(b));
    EXPECT_FALSE(a.isSameSet(SpecializationList{"Real"}));
    EXPECT_EQ(a[1], "Integer");
    EXPECT_EQ(SpecializationList::single("Mesh"), SpecializationList{"Mesh"});
}

TEST(SpecializationList, IntersectionKeepsItsOwnOrder) {
    const SpecializationList a{"Real", "Integer", "Mesh"};
    const SpecializationList b{"Mesh", "Box", "Real"};
    EXPECT_EQ(a.intersectedWith(b), (SpecializationList{"Real", "Mesh"}));
    EXPECT_EQ(b.intersectedWith(a), (SpecializationList{"Mesh", "Real"}));
}

TEST(SpecializationList, SetOperationsMatchPlainSearches) {
    // Many more names than a host will ever have, so that some are beyond any table inside.
    Names pool;
    for (int i = 0; i < 600; ++i) pool.push_back("type" + std::to_string(i * 7919 % 600));
    std::mt19937 random(5);
    for (int round = 0; round < 4000; ++round) {
        const std::size_t range = 1 + random() % (round % 3 ? 12 : pool.size());
        const std::size_t base = random() % (pool.size() - range + 1);
        const auto draw = [&] {
            Names names;
            for (unsigned count = random() % 7; count > 0; --count) {
                names.push_back(pool[base + random() % range]);
            }
            return names;
        };
        const Names a = draw();
        const Names b = draw();
        const SpecializationList la = listOf(a);
        const SpecializationList lb = listOf(b);
        const auto allIn = [](const Names& x, const Names& y) {
            return std::all_of(x.begin(), x.end(), [&](const auto& n) { return has(y, n); });
        };
        Names common;
        std::copy_if(a.begin(), a.end(), std::back_inserter(common),
                     [&](const std::string& name) { return has(b, name); });
        ASSERT_EQ(namesOf(la), a);
        ASSERT_EQ(la == lb, a == b);
        ASSERT_EQ(la.isSubsetOf(lb), allIn(a, b));
        ASSERT_EQ(la.isSameSet(lb), allIn(a, b) && allIn(b, a));
        ASSERT_EQ(la.hasNameInCommonWith(lb), !common.empty());
        ASSERT_EQ(namesOf(la.intersectedWith(lb)), common);
        for (const std::string& name : b) ASSERT_EQ(la.contains(name), has(a, name));
    }
}

TEST(SpecializationList, MayBeMadeOnSeveralThreads) {
    std::vector<std::thread> workers;
    std::vector<int> wrong(4, 0);
    for (int worker = 0; worker < 4; ++worker) {
        workers.emplace_back([&wrong, worker] {
            for (int i = 0; i < 2000; ++i) {
                const std::string name = "shared" + std::to_string(i);
                const SpecializationList list = listOf({name, "Real"});
                if (list.size() != 2 || list[0] != name || !list.contains("Real")) ++wrong[worker];
            }
        });
    }
    for (std::thread& worker : workers) worker.join();
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}
