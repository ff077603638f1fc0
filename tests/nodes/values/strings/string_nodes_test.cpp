// SPDX-License-Identifier: Apache-2.0
// What the string nodes compute, and what they report.
#include <gtest/gtest.h>

#include <chrono>
#include <clocale>

#include "core/exceptions.h"
#include "core/limits.h"
#include "core/network_manager.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;

// One node called "n".
class StringNode : public LogicNet {
public:
    explicit StringNode(const TM_String& type) { add(type, "n"); }
    // Sets strings without the limits of a literal list.
    void set(const TM_String& pin, const TM_String& text) {
        as<StringAttributeBase>("n." + pin).ownStrings().setValue(text);
        this->pin("n." + pin).valueChanged();
    }
    TM_String messages() { return LogicNet::messages("n"); }
};

// Constants.

TEST(StringConstants, GiveWhatTheirInputHolds) {
    for (const auto& [type, out] :
         {std::pair("String", "n.out"), std::pair("StringFilePath", "n.file path"),
          std::pair("StringFolder", "n.folder")}) {
        StringNode n(type);
        EXPECT_EQ("", n.text(out));
        n.set("in", " a b ");
        EXPECT_EQ(" a b ", n.text(out));
        n.strings("n.in", {"x", "", "y"});
        EXPECT_EQ("x||y", n.list(out));
    }
}

TEST(StringConstants, PathsAndStringsConnect) {
    LogicNet net;
    net.add("StringFilePath", "p");
    net.add("StringFolder", "f");
    net.add("String", "s");
    EXPECT_TRUE(net.link("p.file path", "s.in"));
    net.strings("p.in", {"/tmp/a.bin"});
    EXPECT_EQ("/tmp/a.bin", net.text("s.out"));
    EXPECT_TRUE(net.link("s.out", "f.in"));
    EXPECT_EQ("/tmp/a.bin", net.text("f.folder"));
}

// StringInfo.

TEST(StringInfo, AnswersPerString) {
    StringNode n("StringInfo");
    n.strings("n.string", {"abc", "ABC", "aB", "A1", "", "\xc3\x84"});
    EXPECT_EQ("[1] 3,3,2,2,0,2", n.text("n.length"));
    EXPECT_EQ("000010", n.text("n.is empty"));
    EXPECT_EQ("010010", n.text("n.all uppercase"));
    EXPECT_EQ("100010", n.text("n.all lowercase"));
    EXPECT_EQ("ABC|ABC|AB|A1||\xc3\x84", n.list("n.uppercase"));
    EXPECT_EQ("abc|abc|ab|a1||\xc3\x84", n.list("n.lowercase"));
    EXPECT_EQ("abc\nABC\naB\nA1\n\n\xc3\x84", n.text("n.through"));
}

TEST(StringInfo, ComputesOnlyWhatIsAskedFor) {
    StringNode n("StringInfo");
    n.strings("n.string", {"ab"});
    n.refresh("n.length");
    EXPECT_TRUE(n.pin("n.length").isClean());
    EXPECT_FALSE(n.pin("n.uppercase").isClean());
    EXPECT_EQ("", n.pin("n.uppercase").value()->asString());
}

TEST(StringInfo, ThroughIsTheInputsValue) {
    LogicNet net;
    net.add("String", "s");
    net.add("StringInfo", "i");
    ASSERT_TRUE(net.link("s.out", "i.string"));
    net.strings("s.in", {"x"});
    EXPECT_EQ("x", net.text("i.through"));
    EXPECT_EQ(net.pin("s.out").value(), net.pin("i.through").currentValue());
    net.strings("s.in", {"longer"});
    EXPECT_EQ("[1] 6", net.text("i.length"));
}

// StringUpperLowerCase.

TEST(StringUpperLowerCase, ChangesAsciiLettersOnly) {
    StringNode n("StringUpperLowerCase");
    n.strings("n.string", {"aZ [`{ \xc3\xa4\xc3\x84 \xdf", ""});
    EXPECT_EQ("AZ [`{ \xc3\xa4\xc3\x84 \xdf|", n.list("n.uppercase"));
    EXPECT_EQ("", n.pin("n.lowercase").value()->asString()) << "not asked for";
    EXPECT_EQ("az [`{ \xc3\xa4\xc3\x84 \xdf|", n.list("n.lowercase"));
    EXPECT_EQ("aZ [`{ \xc3\xa4\xc3\x84 \xdf\n", n.text("n.string"));
}

TEST(StringUpperLowerCase, PassedThroughItWorksInPlace) {
    LogicNet net;
    net.add("String", "s");
    net.add("StringUpperLowerCase", "c");
    net.strings("s.in", {"abc"});
    ASSERT_TRUE(net.link("s.out", "c.string"));
    net.pin("c.string").addPassThrough(&net.pin("c.uppercase"));
    ASSERT_TRUE(net.pin("c.uppercase").isPassThrough());
    net.refresh("c.uppercase");
    EXPECT_EQ("ABC", net.pin("s.out").value()->asString());
}

// StringCompare.

TEST(StringCompare, FindsTheFirstInTheSecond) {
    StringNode n("StringCompare");
    n.set("string0", "bc");
    n.set("string1", "abcbc");
    EXPECT_EQ("1", n.text("n.is inside"));
    EXPECT_EQ("[1] 1", n.text("n.position"));
    EXPECT_EQ("0", n.text("n.is equal"));
    n.set("string0", "abcbcd");
    EXPECT_EQ("0", n.text("n.is inside"));
    EXPECT_EQ("[1] -1", n.text("n.position"));
}

// Long texts are searched in windows: what stands across their borders is found too.
TEST(StringCompare, FindsAcrossTheWholeText) {
    constexpr std::size_t border = 65536;
    for (const std::size_t length : {std::size_t(1), std::size_t(2), border, border + 3}) {
        for (const std::size_t at : {std::size_t(0), border - 2, border - 1, border, border + 1,
                                     2 * border - 1, 2 * border + 3, 3 * border}) {
            StringNode n("StringCompare");
            const TM_String wanted = TM_String(length - 1, 'b') + "c";
            n.set("string0", wanted);
            n.set("string1", TM_String(at, 'a') + wanted + TM_String(5, 'c'));
            EXPECT_EQ("[1] " + std::to_string(at), n.text("n.position")) << length;
            n.set("string1", TM_String(at, 'a') + TM_String(length - 1, 'b'));
            EXPECT_EQ("[1] -1", n.text("n.position")) << length << " " << at;
            EXPECT_EQ("0", n.text("n.is inside"));
        }
    }
}

TEST(StringCompare, InterruptedTextsShowNothing) {
    for (const char* output : {"n.position", "n.is inside", "n.is equal"}) {
        StringNode n("StringCompare");
        n.set("string0", "b");
        n.set("string1", TM_String(4000000, 'a'));
        n.manager().setEvaluating(true);
        n.manager().requestInterrupt();
        EXPECT_THROW(n.node("n").update(&n.pin(output)), tidemark::TM_Exception) << output;
        n.manager().clearInterrupt();
        n.manager().setEvaluating(false);
        EXPECT_EQ(0u, n.pin(output).value()->size()) << output;
    }
}

TEST(StringCompare, EmptyStringIsInsideEverything) {
    StringNode n("StringCompare");
    n.set("string1", "a");
    EXPECT_EQ("1", n.text("n.is inside"));
    EXPECT_EQ("[1] 0", n.text("n.position"));
    n.set("string1", "");
    EXPECT_EQ("1", n.text("n.is equal"));
    EXPECT_EQ("[1] 0", n.text("n.position"));
}

TEST(StringCompare, IgnoringCaseComparesLowered) {
    StringNode n("StringCompare");
    n.set("string0", "AbC");
    n.set("string1", "aBc");
    EXPECT_EQ("0", n.text("n.is equal"));
    n.bits("n.ignore case", {true});
    EXPECT_EQ("1", n.text("n.is equal"));
    EXPECT_EQ("[1] 0", n.text("n.position"));
    n.bits("n.ignore case", {true, false});
    EXPECT_EQ("0", n.text("n.is equal")) << "the last element counts";
}

TEST(StringCompare, ShorterArraysRepeat) {
    StringNode n("StringCompare");
    n.strings("n.string0", {"a", "b"});
    n.strings("n.string1", {"a", "a", "b"});
    EXPECT_EQ("101", n.text("n.is equal"));
    EXPECT_EQ("[1] 0,-1,0", n.text("n.position"));
    n.strings("n.string0", {});
    EXPECT_EQ("000", n.text("n.is equal"));
    EXPECT_EQ("111", n.text("n.is inside"));
}

TEST(StringCompare, SearchesLongRepetitiveTextsInTime) {
    StringNode n("StringCompare");
    n.set("string0", TM_String(5000000, 'a') + "b");
    n.set("string1", TM_String(10000000, 'a'));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ("[1] -1", n.text("n.position"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

// StringSplit.

TEST(StringSplit, CutsAtTheSeparator) {
    StringNode n("StringSplit");
    n.set("separator", "-");
    n.set("in", "Hi-Sluice-user");
    EXPECT_EQ("Hi|Sluice|user", n.list("n.array"));
    n.set("in", "a--b");
    EXPECT_EQ("a||b", n.list("n.array"));
    n.set("in", "-a-");
    EXPECT_EQ("|a|", n.list("n.array"));
    n.set("in", "none");
    EXPECT_EQ("none", n.list("n.array"));
    n.set("in", "");
    EXPECT_EQ("", n.list("n.array"));
    EXPECT_EQ(1u, n.pin("n.array").value()->size());
}

TEST(StringSplit, WithoutSeparatorEveryCharacterIsAPiece) {
    StringNode n("StringSplit");
    n.set("in", "abc");
    EXPECT_EQ("a|b|c", n.list("n.array"));
    n.set("in", "");
    EXPECT_EQ("", n.list("n.array"));
    EXPECT_EQ(0u, n.pin("n.array").value()->size());
    n.set("in", "xy");
    n.strings("n.separator", {});
    EXPECT_EQ("x|y", n.list("n.array"));
}

TEST(StringSplit, TakesTheFirstStrings) {
    StringNode n("StringSplit");
    n.strings("n.in", {"a,b", "c,d"});
    n.strings("n.separator", {",", "too long"});
    EXPECT_EQ("a|b", n.list("n.array"));
}

TEST(StringSplit, LongSeparatorIsAnErrorAndKeepsTheOutput) {
    StringNode n("StringSplit");
    n.set("separator", "-");
    n.set("in", "a-b");
    EXPECT_EQ("a|b", n.list("n.array"));
    n.set("separator", "--");
    EXPECT_EQ("a|b", n.list("n.array"));
    EXPECT_TRUE(n.pin("n.array").isClean());
    EXPECT_EQ("[error] Separator must be empty or one character long\n", n.messages());
}

TEST(StringSplit, LongTexts) {
    StringNode n("StringSplit");
    n.set("separator", ",");
    TM_String text(10000000, 'x');
    for (std::size_t i = 999; i < text.size(); i += 1000) text[i] = ',';
    n.set("in", text);
    n.refresh("n.array");
    EXPECT_EQ(10001u, n.pin("n.array").value()->size());
    EXPECT_EQ(TM_String(999, 'x'), n.as<StringAttribute>("n.array").strings().valueAt(5000));
}

TEST(StringSplit, ElementLimitEndsTheRun) {
    StringNode n("StringSplit");
    n.set("in", TM_String(1000, 'x'));
    tidemark::limits::set({.maxElements = 100});
    EXPECT_THROW(n.refresh("n.array"), std::bad_alloc);
    tidemark::limits::set({});
    EXPECT_NO_THROW(n.refresh("n.array"));
}

// StringSubString.

TEST(StringSubString, CopiesTheStretch) {
    StringNode n("StringSubString");
    n.set("in", "abcdef");
    n.numbers("n.first", {int32_t(1)});
    n.numbers("n.size", {int32_t(3)});
    EXPECT_EQ("bcd", n.text("n.out"));
    n.numbers("n.size", {int32_t(-1)});
    EXPECT_EQ("bcdef", n.text("n.out"));
    n.numbers("n.size", {int32_t(0)});
    EXPECT_EQ("", n.text("n.out"));
    n.numbers("n.size", {int32_t(5)});
    EXPECT_EQ("bcdef", n.text("n.out"));
    EXPECT_EQ("", n.messages());
}

TEST(StringSubString, ReadsPositionsPerString) {
    StringNode n("StringSubString");
    n.strings("n.in", {"abc", "def", "ghi"});
    n.numbers("n.first", {int32_t(0), int32_t(1)});
    n.numbers("n.size", {int32_t(1), int32_t(-5)});
    EXPECT_EQ("a|ef|hi", n.list("n.out"));
}

TEST(StringSubString, OutOfRangeIsReportedAndSkipsTheElement) {
    StringNode n("StringSubString");
    n.strings("n.in", {"abc", "def", "ghi", "jkl"});
    n.numbers("n.first", {int32_t(0), int32_t(3), int32_t(-1), int32_t(2)});
    n.numbers("n.size", {int32_t(2)});
    EXPECT_EQ("ab|||", n.list("n.out"));
    EXPECT_EQ("[error] Input 'first' at position 1 is out of range: 3\n"
              "[error] Input 'first' at position 2 is out of range: -1\n"
              "[error] Input 'size' at position 3 is out of range: 2\n",
              n.messages());
    n.numbers("n.first", {int32_t(1), int32_t(9)});
    n.strings("n.in", {"xyz", "uvw"});
    EXPECT_EQ("yz|", n.list("n.out")) << "a skipped element stays as it was";
}

TEST(StringSubString, SkippedElementsKeepWhatTheyHeld) {
    StringNode n("StringSubString");
    n.set("in", "abc");
    n.numbers("n.size", {int32_t(-1)});
    EXPECT_EQ("abc", n.text("n.out"));
    n.numbers("n.first", {int32_t(5)});
    EXPECT_EQ("abc", n.text("n.out"));
}

TEST(StringSubString, ExtremeNumbers) {
    StringNode n("StringSubString");
    n.set("in", "abc");
    n.numbers("n.first", {int32_t(2)});
    n.numbers("n.size", {int32_t(2147483647)});
    EXPECT_EQ("", n.text("n.out"));
    n.numbers("n.first", {int32_t(-2147483647 - 1)});
    n.numbers("n.size", {int32_t(-2147483647 - 1)});
    EXPECT_EQ("", n.text("n.out"));
    EXPECT_EQ("[error] Input 'size' at position 0 is out of range: 2147483647\n"
              "[error] Input 'first' at position 0 is out of range: -2147483648\n",
              n.messages());
    n.set("in", "");
    n.numbers("n.first", {int32_t(0)});
    EXPECT_EQ("", n.text("n.out"));
    EXPECT_NE(TM_String::npos,
              n.messages().find("[error] Input 'first' at position 0 is out of range: 0\n"));
}

// StringConcatenate and StringConcat2.

TEST(StringConcatenate, JoinsTheArray) {
    StringNode n("StringConcatenate");
    n.strings("n.array", {"Hi", "Sluice", "user"});
    n.strings("n.separator", {"-SL-", "unused"});
    EXPECT_EQ("Hi-SL-Sluice-SL-user", n.text("n.out"));
    n.strings("n.array", {"%s%n", "%d"});
    n.set("separator", "%");
    EXPECT_EQ("%s%n%%d", n.text("n.out"));
    n.strings("n.array", {});
    EXPECT_EQ("", n.text("n.out"));
    EXPECT_EQ(1u, n.pin("n.out").value()->size());
    n.strings("n.array", {"one"});
    EXPECT_EQ("one", n.text("n.out"));
}

TEST(StringConcatenate, MemoryLimitEndsTheRun) {
    StringNode n("StringConcatenate");
    n.as<StringAttribute>("n.array").ownStrings().setSize(2000);
    n.set("separator", TM_String(1 << 20, 'x'));
    tidemark::limits::set({.maxMemory = uint64_t(1) << 30});
    EXPECT_THROW(n.refresh("n.out"), std::bad_alloc);
    tidemark::limits::set({});
}

TEST(StringConcat2, JoinsEachPair) {
    StringNode n("StringConcat2");
    n.set("left", "Hi");
    n.set("right", "Sluice");
    n.set("separator", "-SL-");
    EXPECT_EQ("Hi-SL-Sluice", n.text("n.out"));
    n.strings("n.left", {"a", "b", "c"});
    n.strings("n.right", {"1", "2"});
    n.set("separator", "");
    EXPECT_EQ("a1|b2|c2", n.list("n.out"));
    n.strings("n.right", {});
    EXPECT_EQ("", n.list("n.out"));
    EXPECT_EQ(0u, n.pin("n.out").value()->size());
}

// StringFilePathCompose.

class Compose : public StringNode {
public:
    Compose() : StringNode("StringFilePathCompose") {
        set("folder", "/shots");
        set("name", "name");
        set("extension", "ext");
        numbers("n.padding", {int32_t(4)});
        numbers("n.frame", {int32_t(7)});
    }
    TM_String path() { return list("n.file path"); }
    TM_String pathInOrder(int32_t order) {
        as<EnumAttribute>("n.extension order").ownEnum().setKey(order);
        pin("n.extension order").valueChanged();
        return path();
    }
};

TEST(StringFilePathCompose, PutsTheFrameWhereTheOrderSays) {
    Compose n;
    EXPECT_EQ("/shots/name_0007.ext", n.path());
    EXPECT_EQ("/shots/name_0007.ext", n.pathInOrder(0));
    EXPECT_EQ("/shots/name.0007.ext", n.pathInOrder(1));
    EXPECT_EQ("/shots/name0007.ext", n.pathInOrder(2));
    EXPECT_EQ("/shots/name-0007.ext", n.pathInOrder(3));
}

TEST(StringFilePathCompose, OffersThreeOrders) {
    Compose n;
    const auto& options = n.as<EnumAttribute>("n.extension order").ownEnum().options();
    ASSERT_EQ(3u, options.size());
    EXPECT_EQ("name_#.ext", options.at(0));
    EXPECT_EQ("name.#.ext", options.at(1));
    EXPECT_EQ("name#.ext", options.at(2));
}

TEST(StringFilePathCompose, AnyOtherOrderLeavesTheFormat) {
    Compose n;
    EXPECT_EQ("/shots/name_0007.ext", n.pathInOrder(4));
    EXPECT_EQ("/shots/name_0007.ext", n.pathInOrder(-1));
    n.as<EnumAttribute>("n.extension order").ownEnum().refKeys() = {1, 99, 2};
    n.numbers("n.frame", {int32_t(1), int32_t(2), int32_t(3)});
    EXPECT_EQ("/shots/name.0001.ext|/shots/name.0002.ext|/shots/name0003.ext", n.path());
}

TEST(StringFilePathCompose, OrderMayComeFromAnIntegerOrAString) {
    Compose n;
    n.add("Integer", "i");
    n.add("String", "s");
    n.numbers("i.in", {int32_t(3)});
    ASSERT_TRUE(n.link("i.integer", "n.extension order"));
    EXPECT_EQ("/shots/name-0007.ext", n.path());
    n.pin("n.extension order").disconnectSource();
    n.strings("s.in", {"name.#.ext"});
    ASSERT_TRUE(n.link("s.out", "n.extension order"));
    EXPECT_EQ("/shots/name.0007.ext", n.path());
    n.strings("s.in", {"no such order"});
    EXPECT_EQ("/shots/name_0007.ext", n.path());
}

TEST(StringFilePathCompose, NamesAndFramesDriveTheCount) {
    Compose n;
    n.strings("n.name", {"a", "b"});
    n.numbers("n.frame", {int32_t(1), int32_t(2), int32_t(3)});
    n.strings("n.extension", {"x", "y"});
    EXPECT_EQ("/shots/a_0001.x|/shots/b_0002.y|/shots/b_0003.y", n.path());
    n.numbers<int32_t>("n.frame", {});
    EXPECT_EQ("/shots/a_0000.x|/shots/b_0000.y", n.path());
    n.strings("n.name", {});
    EXPECT_EQ("", n.path());
    n.numbers("n.frame", {int32_t(5)});
    n.strings("n.folder", {"one", "two"});
    EXPECT_EQ("one/_0005.x", n.path()) << "folders do not count";
}

TEST(StringFilePathCompose, FolderAlwaysGetsASeparator) {
    Compose n;
    n.set("folder", "/shots/");
    EXPECT_EQ("/shots//name_0007.ext", n.path());
    n.set("folder", "");
    EXPECT_EQ("/name_0007.ext", n.path());
}

TEST(StringFilePathCompose, PaddingIsReadOnceAndKeptInBounds) {
    Compose n;
    n.numbers("n.padding", {int32_t(0)});
    EXPECT_EQ("/shots/name_7.ext", n.path());
    n.numbers("n.padding", {int32_t(-3)});
    EXPECT_EQ("/shots/name_7.ext", n.path());
    n.numbers("n.padding", {int32_t(2147483647)});
    EXPECT_EQ("/shots/name_" + TM_String(63, '0') + "7.ext", n.path());
    n.numbers("n.padding", {int32_t(2), int32_t(5)});
    n.numbers("n.frame", {int32_t(1), int32_t(-2), int32_t(12345)});
    EXPECT_EQ("/shots/name_01.ext|/shots/name_-2.ext|/shots/name_12345.ext", n.path());
    n.numbers<int32_t>("n.padding", {});
    EXPECT_EQ("/shots/name_1.ext|/shots/name_-2.ext|/shots/name_12345.ext", n.path());
}

TEST(StringFilePathCompose, FreshNodePadsToFourDigits) {
    StringNode n("StringFilePathCompose");
    EXPECT_EQ("/_0000.", n.text("n.file path"));
}

TEST(StringFilePathCompose, PercentSignsAreText) {
    Compose n;
    n.set("folder", "%n%s%999999999d");
    n.set("name", "%n%s%%");
    n.set("extension", "%n");
    EXPECT_EQ("%n%s%999999999d/%n%s%%_0007.%n", n.path());
}

TEST(StringFilePathCompose, LongNames) {
    Compose n;
    n.set("name", TM_String(10000000, 'x'));
    n.refresh("n.file path");
    const TM_String& path = n.as<StringAttribute>("n.file path").firstString();
    EXPECT_EQ(10000000u + 7 + 9, path.size());
    EXPECT_EQ("x_0007.ext", path.substr(path.size() - 10));
}

// Numbers.

TEST(IntegerToString, PadsWithZeros) {
    StringNode n("IntegerToString");
    EXPECT_EQ("0", n.text("n.string"));
    n.numbers("n.integer", {int32_t(-7)});
    n.numbers("n.padding", {int32_t(3)});
    EXPECT_EQ("-07", n.text("n.string"));
    n.numbers("n.padding", {int32_t(12)});
    EXPECT_EQ("-00000007", n.text("n.string")) << "at most nine";
    n.numbers("n.integer", {int32_t(1), int32_t(22), int32_t(333)});
    n.numbers("n.padding", {int32_t(1), int32_t(3)});
    EXPECT_EQ("1|022|333", n.list("n.string"));
    n.numbers("n.integer", {int32_t(-2147483647 - 1)});
    EXPECT_EQ("-2147483648", n.text("n.string"));
    n.numbers<int32_t>("n.integer", {});
    EXPECT_EQ("", n.list("n.string"));
    EXPECT_EQ(0u, n.pin("n.string").value()->size());
}

TEST(IntegerToString, NegativePaddingAlignsLeft) {
    StringNode n("IntegerToString");
    n.numbers("n.integer", {int32_t(42)});
    n.numbers("n.padding", {int32_t(-5)});
    EXPECT_EQ("42   ", n.text("n.string"));
    n.numbers("n.padding", {int32_t(-2147483647 - 1)});
    EXPECT_EQ("42" + TM_String(4094, ' '), n.text("n.string"));
}

TEST(RealToString, FieldIsAtLeastNineWide) {
    StringNode n("RealToString");
    n.numbers("n.real", {1.5f});
    n.numbers("n.decimal places", {int32_t(2)});
    EXPECT_EQ("     1.50", n.text("n.string"));
    n.numbers("n.decimal places", {int32_t(0)});
    EXPECT_EQ("        2", n.text("n.string"));
    n.numbers("n.real", {-0.1f, 123456789.0f});
    n.numbers("n.decimal places", {int32_t(3)});
    EXPECT_EQ("   -0.100|123456792.000", n.list("n.string"));
    n.numbers("n.decimal places", {int32_t(-4)});
    EXPECT_EQ("       -0|123456792", n.list("n.string"));
    n.numbers("n.real", {0.1f});
    n.numbers("n.decimal places", {int32_t(1000000000)});
    EXPECT_EQ("0.100000001", n.text("n.string")) << "at most nine places";
}

TEST(RealToString, DoesNotDependOnTheLocale) {
    StringNode n("RealToString");
    n.numbers("n.real", {1.5f});
    n.numbers("n.decimal places", {int32_t(2)});
    ASSERT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8"));
    const TM_String text = n.text("n.string");
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ("     1.50", text);
}

// StringReplace.

TEST(StringReplace, ReplacesFromLeftToRightOnce) {
    StringNode n("StringReplace");
    n.strings("n.string", {"aaa", "banana", "", "x"});
    n.set("before", "aa");
    n.set("after", "a");
    EXPECT_EQ("aa|banana||x", n.list("n.result"));
    n.set("before", "a");
    n.set("after", "aa");
    EXPECT_EQ("aaaaaa|baanaanaa||x", n.list("n.result"));
    n.set("before", "an");
    n.set("after", "");
    EXPECT_EQ("aaa|ba||x", n.list("n.result"));
    n.set("before", "A");
    EXPECT_EQ("aaa|banana||x", n.list("n.result")) << "case sensitive";
    EXPECT_EQ("aaa\nbanana\n\nx", n.text("n.string"));
}

TEST(StringReplace, TakesTheFirstStrings) {
    StringNode n("StringReplace");
    n.set("string", "abc");
    n.strings("n.before", {"b", "a"});
    n.strings("n.after", {"-", "+"});
    EXPECT_EQ("a-c", n.text("n.result"));
}

TEST(StringReplace, EmptyBeforeIsAnError) {
    StringNode n("StringReplace");
    n.set("string", "abc");
    n.set("after", "x");
    EXPECT_EQ("abc", n.text("n.result"));
    EXPECT_TRUE(n.pin("n.result").isClean());
    EXPECT_EQ("[error] 'before' string cannot be empty'\n", n.messages());
}

TEST(StringReplace, PassedThroughItWorksInPlace) {
    LogicNet net;
    net.add("String", "s");
    net.add("StringReplace", "n");
    net.strings("s.in", {"a.b.c"});
    net.strings("n.before", {"."});
    net.strings("n.after", {"/"});
    ASSERT_TRUE(net.link("s.out", "n.string"));
    net.pin("n.string").addPassThrough(&net.pin("n.result"));
    net.refresh("n.result");
    EXPECT_EQ("a/b/c", net.pin("s.out").value()->asString());
}

TEST(StringReplace, LongRepetitiveTextsTakeLinearTime) {
    StringNode n("StringReplace");
    n.set("string", TM_String(10000000, 'a'));
    n.set("before", TM_String(5000000, 'a') + "b");
    n.set("after", "x");
    const auto begin = std::chrono::steady_clock::now();
    n.refresh("n.result");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_EQ(10000000u, n.as<StringAttribute>("n.result").firstString().size());
}

TEST(StringReplace, GrowthBeyondTheMemoryLimitEndsTheRun) {
    StringNode n("StringReplace");
    n.set("string", TM_String(100000, 'a'));
    n.set("before", "a");
    n.set("after", TM_String(100000, 'b'));
    tidemark::limits::set({.maxMemory = uint64_t(1) << 28});
    EXPECT_THROW(n.refresh("n.result"), std::bad_alloc);
    tidemark::limits::set({});
}

TEST(StringReplace, LongWorkAnswersInterrupts) {
    StringNode n("StringReplace");
    n.set("string", TM_String(4000000, 'a'));
    n.set("before", "a");
    n.set("after", "b");
    n.manager().setEvaluating(true);
    n.manager().requestInterrupt();
    EXPECT_THROW(n.node("n").update(&n.pin("n.result")), tidemark::TM_Exception);
    n.manager().clearInterrupt();
    n.manager().setEvaluating(false);
}

} // namespace
