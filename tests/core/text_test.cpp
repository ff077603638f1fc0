// SPDX-License-Identifier: Apache-2.0
// Tests of the text helpers, also under a locale whose decimal sign is a comma.
#include "core/text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

using namespace tidemark;

namespace {

// A process locale with a decimal comma while it lives; the test run provides one.
class CommaLocale {
public:
    CommaLocale() : before_(std::setlocale(LC_ALL, nullptr)) {
        found = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    }
    ~CommaLocale() { std::setlocale(LC_ALL, before_.c_str()); }

    bool found = false;

private:
    std::string before_;
};

} // namespace

TEST(TextFormat, IsPrintf) {
    EXPECT_EQ(text::format("%s_%02d", "Add", 1), "Add_01");
    EXPECT_EQ(text::format("%f,%f", 1.5, -2.0), "1.500000,-2.000000");
    EXPECT_EQ(text::format("%%"), "%");
    EXPECT_EQ(text::format("%s", ""), "");
}

TEST(TextFormat, LongResultsAreWhole) {
    for (const std::size_t length : {254u, 255u, 256u, 257u, 100000u}) {
        const std::string word(length, 'x');
        EXPECT_EQ(text::format("<%s>", word.c_str()), "<" + word + ">");
    }
}

TEST(TextNumbers, ADecimalCommaOfTheProcessChangesNothing) {
    const CommaLocale locale;
    ASSERT_TRUE(locale.found) << "LOCPATH must name a folder that holds de_DE.UTF-8";
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(text::format("%f", 0.5), "0.500000");
    EXPECT_EQ(text::toDouble("2.75"), 2.75);
    EXPECT_EQ(text::toDouble("2,75"), 2.0);
    EXPECT_EQ(text::toFloat("2.75"), 2.75f);
    EXPECT_EQ(text::shortest(0.1), "0.1");
    EXPECT_EQ(text::general(0.125, 2), "0.12");
}

TEST(TextToDouble, ReadsTheNumberThatBeginsTheText) {
    EXPECT_EQ(text::toDouble("  \t\n-1.5e2xyz"), -150.0);
    EXPECT_EQ(text::toDouble("+3"), 3.0);
    EXPECT_EQ(text::toDouble(".5"), 0.5);
    EXPECT_EQ(text::toDouble("5."), 5.0);
    EXPECT_EQ(text::toDouble("0x1p4"), 16.0);
    EXPECT_EQ(text::toDouble("1e"), 1.0);
    EXPECT_EQ(text::toDouble("1 2"), 1.0);
    EXPECT_TRUE(std::signbit(text::toDouble("-0")));
    EXPECT_EQ(text::toDouble(std::string_view()), 0.0);
}

TEST(TextToDouble, WithoutANumberIsZero) {
    for (const char* word : {"", " ", "abc", "-", ".", "e5", "- 1", "++1"}) {
        EXPECT_EQ(text::toDouble(word), 0.0) << word;
    }
}

TEST(TextToDouble, SpecialValuesAndRange) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(text::toDouble("inf"), infinity);
    EXPECT_EQ(text::toDouble("-Infinity"), -infinity);
    EXPECT_TRUE(std::isnan(text::toDouble("nan")));
    EXPECT_TRUE(std::isnan(text::toDouble("NaN(12)")));
    EXPECT_EQ(text::toDouble("1e999"), infinity);
    EXPECT_EQ(text::toDouble("-1e999"), -infinity);
    EXPECT_EQ(text::toDouble("1e-999"), 0.0);
    EXPECT_EQ(text::toFloat("1e39"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(text::toFloat("1e-60"), 0.0f);
}

TEST(TextToDouble, LongDigitsAreReadWhole) {
    const std::string digits = "0." + std::string(200, '0') + "25e201";
    EXPECT_EQ(text::toDouble(digits), 2.5);
}

TEST(TextToDouble, EndsWhereTheViewEnds) {
    const std::string_view view = std::string_view("12.345").substr(0, 4);
    EXPECT_EQ(text::toDouble(view), 12.3);
    EXPECT_EQ(text::toDouble(std::string_view("1\0002", 3)), 1.0);
    EXPECT_EQ(text::toInt32(std::string_view("1234").substr(0, 2)), 12);
}

TEST(TextToInt, ReadsTheNumberThatBeginsTheText) {
    EXPECT_EQ(text::toInt32(" \v\f\r\n\t42abc"), 42);
    EXPECT_EQ(text::toInt32("-7"), -7);
    EXPECT_EQ(text::toInt32("+7"), 7);
    EXPECT_EQ(text::toInt32("3.9"), 3);
    EXPECT_EQ(text::toInt32("0x10"), 0);
    for (const char* word : {"", "-", "+-1", "- 1", "x"}) EXPECT_EQ(text::toInt32(word), 0) << word;
}

TEST(TextToInt, ThirtyTwoBitsKeepTheLowPartOfASaturatedNumber) {
    EXPECT_EQ(text::toInt32("2147483647"), 2147483647);
    EXPECT_EQ(text::toInt32("2147483648"), std::numeric_limits<int32_t>::min());
    EXPECT_EQ(text::toInt32("4294967301"), 5);
    EXPECT_EQ(text::toInt32("99999999999999999999"), -1);
    EXPECT_EQ(text::toInt32("-99999999999999999999"), 0);
}

TEST(TextToInt, SixtyFourBitsSaturate) {
    constexpr int64_t highest = std::numeric_limits<int64_t>::max();
    constexpr int64_t lowest = std::numeric_limits<int64_t>::min();
    EXPECT_EQ(text::toInt64("9223372036854775807"), highest);
    EXPECT_EQ(text::toInt64("9223372036854775808"), highest);
    EXPECT_EQ(text::toInt64("-9223372036854775808"), lowest);
    EXPECT_EQ(text::toInt64("-9223372036854775809"), lowest);
    EXPECT_EQ(text::toInt64(std::string(1000, '9')), highest);
    EXPECT_EQ(text::toInt64("9223372036854775806"), highest - 1);
}

TEST(TextShortest, ReadsBackAsTheSameNumber) {
    EXPECT_EQ(text::shortest(1.0), "1");
    EXPECT_EQ(text::shortest(0.1f), "0.1");
    EXPECT_EQ(text::shortest(-2.5), "-2.5");
    for (const double number : {1.0 / 3.0, 1e300, 5e-324, 123456789.125, -0.0}) {
        EXPECT_EQ(text::toDouble(text::shortest(number)), number);
    }
    for (const float number : {1.0f / 3.0f, 3.4e38f, 1.4e-45f}) {
        EXPECT_EQ(text::toFloat(text::shortest(number)), number);
    }
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(text::shortest(infinity), "inf");
    EXPECT_EQ(text::shortest(-infinity), "-inf");
    EXPECT_EQ(text::shortest(std::nan("")), "nan");
    EXPECT_EQ(text::shortest(-std::nanf("")), "nan");
}

TEST(TextGeneral, KeepsSignificantDigits) {
    EXPECT_EQ(text::general(123456.0, 3), "1.23e+05");
    EXPECT_EQ(text::general(0.5, 9), "0.5");
    EXPECT_EQ(text::general(1e10, 6), "1e+10");
    EXPECT_EQ(text::general(2.0, 0), "2");
}

TEST(TextSplit, KeepsEmptyPieces) {
    EXPECT_EQ(text::split("a,b,,c", ","), (Array<TM_String>{"a", "b", "", "c"}));
    EXPECT_EQ(text::split("", ","), (Array<TM_String>{""}));
    EXPECT_EQ(text::split(",", ","), (Array<TM_String>{"", ""}));
    EXPECT_EQ(text::split("a::b:c", "::"), (Array<TM_String>{"a", "b:c"}));
    EXPECT_EQ(text::split("none", ";"), (Array<TM_String>{"none"}));
    EXPECT_EQ(text::split("ab", ""), (Array<TM_String>{"ab"}));
}

TEST(TextReplaceAll, DoesNotLookInsideWhatItPutIn) {
    EXPECT_EQ(text::replaceAll("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(text::replaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(text::replaceAll("x.y.z", ".", ""), "xyz");
    EXPECT_EQ(text::replaceAll("same", "", "q"), "same");
    EXPECT_EQ(text::replaceAll("", "a", "b"), "");
}

TEST(TextCase, TouchesAsciiLettersOnly) {
    EXPECT_EQ(text::toLower("AZ\xc3\x84[1]"), "az\xc3\x84[1]");
    EXPECT_EQ(text::toUpper("az\xc3\xa4{1}"), "AZ\xc3\xa4{1}");
}

TEST(TextNearest, GivesALikelyMisspellingOrNothing) {
    const Array<TM_String> types{"Add", "ArrayNumSlice", "MeshCube", "MeshPlane", "Sub"};
    EXPECT_EQ(text::nearest("meshcub", types), "MeshCube");
    EXPECT_EQ(text::nearest("ADD", types), "Add");
    EXPECT_EQ(text::nearest("Adx", types), "Add");
    EXPECT_EQ(text::nearest("ArayNumSlise", types), "ArrayNumSlice");
    EXPECT_EQ(text::nearest("Polymorphic", types), "");
    EXPECT_EQ(text::nearest("x", types), "");
    EXPECT_EQ(text::nearest("", types), "");
    EXPECT_EQ(text::nearest("Add", Array<TM_String>()), "");
}

TEST(TextNearest, TheFirstOfEquallyNearWins) {
    EXPECT_EQ(text::nearest("cot", Array<TM_String>{"cat", "cut"}), "cat");
}
