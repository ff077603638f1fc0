// SPDX-License-Identifier: Apache-2.0
// Counts, positions, all and any, by the node that tells everything and by those that tell one.
#include <gtest/gtest.h>

#include <algorithm>

#include "nodes/values/bits/bit_node.h"

namespace {

using namespace weft;
using sluice_tests::BitNode;
using sluice_tests::LogicNet;
using sluice_tests::randomDigits;
using sluice_tests::telltaleSizes;
using tidemark::TM_String;

struct Question {
    TM_String infoPin;
    TM_String type;
    TM_String pin;
    bool isBit;
};
const std::vector<Question> questions = {
    {"all true", "ArrayBitAllTrue", "all", true},
    {"all false", "ArrayBitAllFalse", "all", true},
    {"any true", "ArrayBitAnyTrue", "any", true},
    {"any false", "ArrayBitAnyFalse", "any", true},
    {"count true", "ArrayBitCountTrue", "count", false},
    {"count false", "ArrayBitCountFalse", "count", false},
    {"first true", "ArrayBitFirstTrue", "first", false},
    {"first false", "ArrayBitFirstFalse", "first", false},
    {"last true", "ArrayBitLastTrue", "last", false},
    {"last false", "ArrayBitLastFalse", "last", false},
};

int64_t position(std::size_t found) {
    return found == TM_String::npos ? -1 : static_cast<int64_t>(found);
}

// The answer to a question about the digits, as text.
TM_String answerTo(const TM_String& question, const TM_String& digits) {
    const auto ones = std::count(digits.begin(), digits.end(), '1');
    const auto size = static_cast<int64_t>(digits.size());
    const auto bit = [](bool holds) { return TM_String(holds ? "1" : "0"); };
    const auto number = [](int64_t n) { return "[1] " + std::to_string(n); };
    if (question == "all true") return bit(ones == size);
    if (question == "all false") return bit(ones == 0);
    if (question == "any true") return bit(ones > 0);
    if (question == "any false") return bit(ones < size);
    if (question == "count true") return number(ones);
    if (question == "count false") return number(size - ones);
    if (question == "first true") return number(position(digits.find('1')));
    if (question == "first false") return number(position(digits.find('0')));
    if (question == "last true") return number(position(digits.rfind('1')));
    return number(position(digits.rfind('0')));
}

TEST(ArrayBitInfo, AnswersInOneExample) {
    BitNode n("ArrayBitInfo", "in");
    n.set("in", "0110100");
    EXPECT_EQ("[1] 7", n.get("size"));
    EXPECT_EQ("0", n.get("all true"));
    EXPECT_EQ("0", n.get("all false"));
    EXPECT_EQ("1", n.get("any true"));
    EXPECT_EQ("1", n.get("any false"));
    EXPECT_EQ("[1] 3", n.get("count true"));
    EXPECT_EQ("[1] 4", n.get("count false"));
    EXPECT_EQ("[1] 1", n.get("first true"));
    EXPECT_EQ("[1] 0", n.get("first false"));
    EXPECT_EQ("[1] 4", n.get("last true"));
    EXPECT_EQ("[1] 6", n.get("last false"));
    EXPECT_EQ("1001011", n.get("negated"));
    EXPECT_EQ("0110100", n.get("through"));
    EXPECT_EQ("", n.messages());
}

TEST(ArrayBitInfo, EmptyArray) {
    BitNode n("ArrayBitInfo", "in");
    n.set("in", "");
    EXPECT_EQ("[1] 0", n.get("size"));
    EXPECT_EQ("1", n.get("all true"));
    EXPECT_EQ("1", n.get("all false"));
    EXPECT_EQ("0", n.get("any true"));
    EXPECT_EQ("0", n.get("any false"));
    EXPECT_EQ("[1] 0", n.get("count true"));
    EXPECT_EQ("[1] -1", n.get("first true"));
    EXPECT_EQ("[1] -1", n.get("last false"));
    EXPECT_EQ("", n.get("negated"));
    BitNode allFalse("ArrayBitAllFalse");
    allFalse.set("in", "");
    EXPECT_EQ("1", allFalse.get("all"));
}

TEST(ArrayBitInfo, ComputesOnlyWhatIsAskedFor) {
    BitNode n("ArrayBitInfo", "in");
    n.set("in", "111");
    EXPECT_EQ("[1] 3", n.get("count true"));
    EXPECT_TRUE(n.pin("n.count true").isClean());
    EXPECT_FALSE(n.pin("n.size").isClean());
    EXPECT_FALSE(n.pin("n.negated").isClean());
    EXPECT_EQ("0", n.pin("n.negated").value()->asString());
}

TEST(ArrayBitInfo, ThroughIsTheInputsValue) {
    LogicNet net;
    net.add("Bit", "b");
    net.add("ArrayBitInfo", "n");
    net.link("b.bit", "n.in");
    net.bits("b.in", {true, false});
    EXPECT_EQ("10", net.text("n.through"));
    EXPECT_EQ(net.pin("b.bit").value(), net.pin("n.through").currentValue());
    EXPECT_EQ("01", net.text("n.negated"));
    EXPECT_EQ("10", net.text("n.through")) << "inverting works on a copy";
}

TEST(ArrayBitInfo, AgreesWithPlainCountingAndWithTheSingleNodes) {
    std::mt19937 random(11);
    BitNode info("ArrayBitInfo", "in");
    std::vector<std::unique_ptr<BitNode>> single;
    for (const Question& question : questions) {
        single.push_back(std::make_unique<BitNode>(question.type));
    }
    for (const uint32_t size : telltaleSizes()) {
        for (const uint32_t percent : {0u, 1u, 50u, 99u, 100u}) {
            const TM_String digits = randomDigits(random, size, percent);
            info.set("in", digits);
            for (std::size_t i = 0; i < questions.size(); ++i) {
                const TM_String wanted = answerTo(questions[i].infoPin, digits);
                single[i]->set("in", digits);
                ASSERT_EQ(wanted, info.get(questions[i].infoPin)) << questions[i].infoPin << size;
                ASSERT_EQ(wanted, single[i]->get(questions[i].pin)) << questions[i].type << size;
            }
        }
    }
}

// A single odd one at every position of several blocks of words.
TEST(ArrayBitInfo, FindsASingleElementAnywhere) {
    BitNode first("ArrayBitFirstTrue");
    BitNode last("ArrayBitLastFalse");
    for (std::size_t place = 0; place < 1300; place += 7) {
        TM_String digits(1300, '0');
        digits[place] = '1';
        first.set("in", digits);
        ASSERT_EQ(static_cast<int32_t>(place), first.number("first"));
        for (char& digit : digits) digit = digit == '1' ? '0' : '1';
        last.set("in", digits);
        ASSERT_EQ(static_cast<int32_t>(place), last.number("last"));
    }
}

} // namespace
