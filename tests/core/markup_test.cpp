// SPDX-License-Identifier: Apache-2.0
// Escaping and cutting of texts for pages and pictures.
#include "core/markup.h"

#include <gtest/gtest.h>

namespace {

using namespace tidemark::text;

TEST(Markup, EscapesWhatMarkupMeans) {
    EXPECT_EQ(escapedMarkup("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c'");
    EXPECT_EQ(escapedMarkup(""), "");
    EXPECT_EQ(escapedMarkup("line\n\ttab"), "line\n\ttab");
}

TEST(Markup, KeepsCharactersOfAnyLength) {
    const char* const text = "\xc3\xa4\xe2\x82\xac\xf0\x9f\x8c\x8a";
    EXPECT_EQ(escapedMarkup(text), text);
}

TEST(Markup, WhatXmlCannotHoldBecomesQuestionMarks) {
    EXPECT_EQ(escapedMarkup("\x01"), "?");
    EXPECT_EQ(escapedMarkup(std::string("a\0b", 3)), "a?b");
    EXPECT_EQ(escapedMarkup("\xff<"), "?&lt;");
    EXPECT_EQ(escapedMarkup("\xc3"), "?") << "half a character";
    EXPECT_EQ(escapedMarkup("\xc0\xaf"), "??") << "longer than it has to be";
    EXPECT_EQ(escapedMarkup("\xed\xa0\x80"), "???") << "half of a pair";
    EXPECT_EQ(escapedMarkup("\xef\xbf\xbf"), "???") << "no character";
}

TEST(Markup, CutsBetweenCharacters) {
    EXPECT_EQ(cutText("abc", 3), "abc");
    EXPECT_EQ(cutText("abcd", 3), "abc...");
    EXPECT_EQ(cutText("ab\xc3\xa4z", 3), "ab...");
}

} // namespace
