// SPDX-License-Identifier: Apache-2.0
// How elements are dealt out to threads, and functions over arrays of unequal lengths.
#include "nodes/values/element_loop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

#include "nodes/values/element_map.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace tidemark::sluice::graph;
using sluice_tests::LogicNet;
using tidemark::TM_String;
using Wave = std::vector<ElementRecord>;

// While it lives, every record has a thread of its own.
struct RealThreads {
    RealThreads() { setThreadForEveryRecord(true); }
    ~RealThreads() { setThreadForEveryRecord(false); }
};

struct Seen {
    std::mutex mutex;
    std::vector<std::pair<uint32_t, uint32_t>> pieces;
    std::set<std::thread::id> threads;

    void note(uint32_t first, uint32_t count) {
        const std::lock_guard lock(mutex);
        pieces.emplace_back(first, count);
        threads.insert(std::this_thread::get_id());
    }
};

weft::Node& nodeWithThreads(LogicNet& net, int threads) {
    weft::Node& node = net.add("Add", "n");
    node.setNumberOfThreads(threads);
    return node;
}

TEST(ElementWaves, DealTheRestInFurtherWaves) {
    EXPECT_EQ(elementWaves(10, 4), (std::vector<Wave>{{{0, 2, 0}, {2, 2, 1}, {4, 2, 2}, {6, 2, 3}},
                                                      {{8, 1, 0}, {9, 1, 1}}}));
    EXPECT_EQ(elementWaves(7, 4), (std::vector<Wave>{{{0, 1, 0}, {1, 1, 1}, {2, 1, 2}, {3, 1, 3}},
                                                     {{4, 1, 0}, {5, 1, 1}, {6, 1, 2}}}));
    EXPECT_EQ(elementWaves(5, 8),
              (std::vector<Wave>{{{0, 1, 0}, {1, 1, 1}, {2, 1, 2}, {3, 1, 3}, {4, 1, 4}}}));
    EXPECT_EQ(elementWaves(8, 4).size(), 1u);
}

TEST(ElementWaves, OneThreadOrOneElementIsOneRecord) {
    EXPECT_EQ(elementWaves(10, 1), (std::vector<Wave>{{{0, 10, 0}}}));
    EXPECT_EQ(elementWaves(1, 8), (std::vector<Wave>{{{0, 1, 0}}}));
    EXPECT_EQ(elementWaves(10, 0), (std::vector<Wave>{{{0, 10, 0}}}));
    EXPECT_EQ(elementWaves(10, -3), (std::vector<Wave>{{{0, 10, 0}}}));
    EXPECT_TRUE(elementWaves(0, 4).empty());
}

TEST(ElementWaves, CoverEveryElementOnce) {
    for (const uint32_t count : {2u, 3u, 63u, 64u, 65u, 1000u, 4095u}) {
        for (const int threads : {2, 3, 7, 64, 5000}) {
            uint32_t next = 0;
            for (const Wave& wave : elementWaves(count, threads)) {
                EXPECT_LE(wave.size(), static_cast<std::size_t>(threads));
                for (const ElementRecord& record : wave) {
                    EXPECT_EQ(record.first, next);
                    EXPECT_EQ(record.count, wave[0].count);
                    next += record.count;
                }
            }
            EXPECT_EQ(next, count) << threads;
        }
    }
}

TEST(RangeRecords, LastThreadTakesTheRest) {
    EXPECT_EQ(rangeRecords(5, 14, 4), (Wave{{5, 2, 0}, {7, 2, 1}, {9, 2, 2}, {11, 4, 3}}));
    EXPECT_EQ(rangeRecords(3, 4, 4), (Wave{{3, 2, 3}}));
    EXPECT_EQ(rangeRecords(0, 9, 1), (Wave{{0, 10, 0}}));
    EXPECT_EQ(rangeRecords(0, 9, 0), (Wave{{0, 10, 0}}));
    EXPECT_TRUE(rangeRecords(1, 0, 4).empty());
}

TEST(ElementLoop, EveryRecordMayHaveItsThread) {
    const RealThreads real;
    LogicNet net;
    Seen seen;
    forEachElement(nodeWithThreads(net, 8), 5, 1,
                   [&](uint32_t first, uint32_t count) { seen.note(first, count); });
    std::sort(seen.pieces.begin(), seen.pieces.end());
    EXPECT_EQ(seen.pieces,
              (std::vector<std::pair<uint32_t, uint32_t>>{{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}}));
    EXPECT_EQ(seen.threads.count(std::this_thread::get_id()), 0u);
}

TEST(ElementLoop, OneThreadStaysOnTheCallersThread) {
    const RealThreads real;
    LogicNet net;
    Seen seen;
    forEachElement(nodeWithThreads(net, 1), 1000, 1,
                   [&](uint32_t first, uint32_t count) { seen.note(first, count); });
    EXPECT_EQ(seen.pieces, (std::vector<std::pair<uint32_t, uint32_t>>{{0, 1000}}));
    EXPECT_EQ(seen.threads, std::set{std::this_thread::get_id()});
}

TEST(ElementLoop, SmallWorkStaysOnTheCallersThread) {
    LogicNet net;
    Seen seen;
    forEachElement(nodeWithThreads(net, 4), 10, 1,
                   [&](uint32_t first, uint32_t count) { seen.note(first, count); });
    EXPECT_EQ(seen.threads, std::set{std::this_thread::get_id()});
    uint32_t next = 0;
    for (const auto& [first, count] : seen.pieces) {
        EXPECT_EQ(first, next);
        next += count;
    }
    EXPECT_EQ(next, 10u);
}

TEST(ElementLoop, LargeWorkIsSplit) {
    LogicNet net;
    Seen seen;
    forEachElement(nodeWithThreads(net, 4), 4000, worthThreadNanoseconds / 1000,
                   [&](uint32_t first, uint32_t count) { seen.note(first, count); });
    EXPECT_EQ(seen.pieces.size(), 4u);
    EXPECT_EQ(seen.threads.count(std::this_thread::get_id()), 0u);
}

TEST(ElementLoop, NoElementsCallNothing) {
    const RealThreads real;
    LogicNet net;
    forEachElement(nodeWithThreads(net, 4), 0, 1, [&](uint32_t, uint32_t) { ADD_FAILURE(); });
}

TEST(ElementLoop, EarliestFailureIsThrownAfterAllAreJoined) {
    const RealThreads real;
    LogicNet net;
    std::atomic<int> calls{0};
    try {
        forEachElement(nodeWithThreads(net, 4), 4, 1, [&](uint32_t first, uint32_t) {
            ++calls;
            if (first > 0) throw std::runtime_error("element " + std::to_string(first));
        });
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "element 1");
    }
    EXPECT_EQ(calls, 4);
}

TEST(ElementLoop, RangesRunInOneWave) {
    const RealThreads real;
    LogicNet net;
    Seen seen;
    forEachInRange(nodeWithThreads(net, 3), 10, 19, 1,
                   [&](uint32_t first, uint32_t count) { seen.note(first, count); });
    std::sort(seen.pieces.begin(), seen.pieces.end());
    EXPECT_EQ(seen.pieces, (std::vector<std::pair<uint32_t, uint32_t>>{{10, 3}, {13, 3}, {16, 4}}));
}

// Functions over arrays.

class ElementMap : public ::testing::Test {
protected:
    weft::Numeric& number(std::initializer_list<float> values) {
        auto* made = new weft::Numeric(&net_.manager());
        made->retain();
        made->setType(weft::NumericType::real);
        made->setValues(tidemark::Array<float>(values));
        made_.emplace_back(made, [](weft::Numeric* value) { value->release(); });
        return *made;
    }
    TM_String subtracted(const weft::Numeric& a, const weft::Numeric& b, weft::Numeric& result) {
        mapNumbers<float>(
            nodeWithThreads(net_, 2), 1, result, [](float x, float y) { return x - y; },
            elementsOf<float>(a), elementsOf<float>(b));
        return result.asString();
    }

    LogicNet net_;

private:
    std::vector<std::unique_ptr<weft::Numeric, void (*)(weft::Numeric*)>> made_;
};

TEST_F(ElementMap, ShorterInputsRepeatTheirLastElement) {
    weft::Numeric& out = number({});
    EXPECT_EQ(subtracted(number({10, 20, 30}), number({1, 2}), out), "[3] 9,18,28");
    EXPECT_EQ(subtracted(number({10}), number({1, 2, 3}), out), "[3] 9,8,7");
    EXPECT_EQ(subtracted(number({10}), number({}), out), "[3] ");
    EXPECT_EQ(out.size(), 0u);
}

TEST_F(ElementMap, ResultMayBeAnInput) {
    weft::Numeric& same = number({1, 2, 3});
    EXPECT_EQ(subtracted(same, number({1}), same), "[3] 0,1,2");
    weft::Numeric& shorter = number({5, 7});
    EXPECT_EQ(subtracted(number({10, 20, 30, 40}), shorter, shorter), "[3] 5,13,23,33");
}

TEST_F(ElementMap, LongArraysOfUnequalLengths) {
    for (const uint32_t shortCount : {1u, 255u, 256u, 257u, 700u, 1999u}) {
        weft::Numeric& a = number({});
        weft::Numeric& b = number({});
        weft::Numeric& out = number({});
        a.resize(2000);
        b.resize(shortCount);
        for (uint32_t i = 0; i < 2000; ++i) a.setValueAt(i, float(3 * i));
        for (uint32_t i = 0; i < shortCount; ++i) b.setValueAt(i, float(i));
        subtracted(a, b, out);
        for (uint32_t i = 0; i < 2000; ++i) {
            ASSERT_EQ(out.valueAt<float>(i), float(3 * i) - float(std::min(i, shortCount - 1)));
        }
    }
}

TEST_F(ElementMap, BitsOfAnyLength) {
    for (const uint32_t count : {1u, 31u, 32u, 33u, 1000u}) {
        weft::Numeric& a = number({});
        a.resize(count);
        for (uint32_t i = 0; i < count; ++i) a.setValueAt(i, float(i % 3));
        weft::BitArrayValue bits(&net_.manager());
        mapBits(
            nodeWithThreads(net_, 1), 1, bits, [](float x, float y) { return x == y; },
            elementsOf<float>(a), elementsOf<float>(number({1})));
        ASSERT_EQ(bits.size(), count);
        for (uint32_t i = 0; i < count; ++i) ASSERT_EQ(bits.testBit(i), i % 3 == 1) << i;
    }
}

// No two threads write into one word.
TEST(MapBits, DealsWordsOutToThreads) {
    const RealThreads real;
    LogicNet net;
    weft::Node& node = nodeWithThreads(net, 3);
    std::vector<float> numbers(1003);
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<float>(i % 7);
    const std::vector<float> bound = {4, 3, 2};
    weft::BitArrayValue bits(&net.manager());
    Seen seen;
    const auto isBelow = [&seen](float number, float most) {
        seen.note(0, 1);
        return number < most;
    };
    mapBits(node, 1, bits, isBelow, std::span<const float>(numbers), std::span<const float>(bound));
    EXPECT_GT(seen.threads.size(), 1u);
    EXPECT_EQ(numbers.size(), seen.pieces.size());
    ASSERT_EQ(numbers.size(), bits.size());
    for (uint32_t i = 0; i < bits.size(); ++i) {
        EXPECT_EQ(numbers[i] < bound[std::min(i, 2u)], bits.testBit(i)) << i;
    }
}

} // namespace
