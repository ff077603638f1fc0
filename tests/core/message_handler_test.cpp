// SPDX-License-Identifier: Apache-2.0
// Tests of messages and of the handler that keeps them.
#include "core/message_handler.h"

#include <gtest/gtest.h>

using namespace tidemark::graph;

TEST(Message, PrintsLevelTextAndDetail) {
    EXPECT_EQ((Message{1, "a", "b"}.asString()), "[critical] a - b");
    EXPECT_EQ((Message{2, "a", ""}.asString()), "[error] a");
    EXPECT_EQ((Message{3, "a", "b"}.asString()), "[warning] a - b");
    EXPECT_EQ((Message{4, "", ""}.asString()), "[info] ");
    EXPECT_EQ((Message{5, "a", "b"}.asString()), "[debug] a - b");
    EXPECT_EQ((Message{9, "a", "b"}.asString()), "[9] a - b");
}

TEST(MessageHandler, KeepsUpToItsVerbosity) {
    MessageHandler handler;
    EXPECT_EQ(handler.verbosityLevel(), 3);
    for (int level = 1; level <= 5; ++level) handler.push(level, "m", "");
    ASSERT_EQ(handler.messages().size(), 3u);
    EXPECT_EQ(handler.messages()[2].level, 3);
    EXPECT_TRUE(handler.isLevelAllowed(3));
    EXPECT_FALSE(handler.isLevelAllowed(4));

    handler.setVerbosityLevel(5);
    handler.push(5, "now", "");
    EXPECT_EQ(handler.messages().size(), 4u);
    handler.setVerbosityLevel(0);
    handler.pushError("dropped", "");
    EXPECT_EQ(handler.messages().size(), 4u);
}

TEST(MessageHandler, AnswersBySeriousness) {
    MessageHandler handler(5);
    EXPECT_TRUE(handler.isEmpty());
    handler.push(4, "i", "");
    EXPECT_FALSE(handler.isEmpty());
    EXPECT_FALSE(handler.hasWarnings());
    EXPECT_FALSE(handler.hasErrorsOrCriticals());
    handler.push(3, "w", "");
    EXPECT_TRUE(handler.hasWarnings());
    EXPECT_FALSE(handler.hasErrorsOrCriticals());
    handler.clear();
    EXPECT_TRUE(handler.isEmpty());
    handler.pushError("e", "d");
    EXPECT_EQ(handler.messages()[0], (Message{2, "e", "d"}));
    EXPECT_FALSE(handler.hasWarnings());
    EXPECT_TRUE(handler.hasErrorsOrCriticals());
    handler.clear();
    handler.push(1, "c", "");
    EXPECT_TRUE(handler.hasErrorsOrCriticals());
    EXPECT_EQ(handler.verbosityLevel(), 5);
}

TEST(MessageHandler, CopiesAreIndependent) {
    MessageHandler handler;
    handler.pushError("one", "");
    MessageHandler copy = handler;
    copy.pushError("two", "");
    EXPECT_EQ(handler.messages().size(), 1u);
    EXPECT_EQ(copy.messages().size(), 2u);
}
