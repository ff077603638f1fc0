// SPDX-License-Identifier: Apache-2.0
// Tests of a node's messages: levels, what is kept, what the host hears, and what is thrown.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/exceptions.h"
#include "core/node.h"
#include "support/net.h"
#include "support/recording_host.h"
#include "test_nodes.h"

using namespace weft;
using support::Net;
using support::RecordingHost;
using test_nodes::ScriptNode;
using tidemark::graph::Message;
using tidemark::sluice::graph::GenericGraphException;

namespace {

using Lines = std::vector<std::string>;

} // namespace

TEST(NodeMessages, StartWithTheirLevels) {
    Net net;
    Node* node = net.add<Node>("N");
    EXPECT_EQ(node->refMessages().verbosityLevel(), 3);
    EXPECT_EQ(node->getMessagePanelVerbosityLevel(), 2);
    EXPECT_TRUE(node->isVerbosityLevelAllowed(1));
    EXPECT_TRUE(node->isVerbosityLevelAllowed(3));
    EXPECT_FALSE(node->isVerbosityLevelAllowed(4));
}

TEST(NodeMessages, EachFunctionHasItsLevel) {
    Net net;
    Node* node = net.add<Node>("N");
    node->refMessages().setVerbosityLevel(5);
    node->pushCriticalNoException("c", "1");
    node->pushError("e", "2");
    node->pushWarning("w", "3");
    node->pushInfo("i", "4");
    node->pushDebug("d", "5");
    const auto& kept = node->getMessages().messages();
    ASSERT_EQ(kept.size(), 5u);
    EXPECT_EQ(kept[0], (Message{1, "c", "1"}));
    EXPECT_EQ(kept[1], (Message{2, "e", "2"}));
    EXPECT_EQ(kept[2], (Message{3, "w", "3"}));
    EXPECT_EQ(kept[3], (Message{4, "i", "4"}));
    EXPECT_EQ(kept[4], (Message{5, "d", "5"}));
}

TEST(NodeMessages, FilteredLevelsDoNothing) {
    const RecordingHost host{};
    Net net;
    Node* node = net.add<Node>("N");
    node->setMessagePanelVerbosityLevel(5);
    node->refMessages().setVerbosityLevel(1);
    node->pushError("e");
    EXPECT_TRUE(node->getMessages().isEmpty());
    EXPECT_EQ(host.posts, Lines{});
}

TEST(NodeMessages, PanelLevelDecidesWhatTheHostHears) {
    RecordingHost host;
    Net net;
    Node* node = net.add<Node>("N");
    node->pushError("an error");
    node->pushWarning("a warning");
    EXPECT_EQ(host.posts, Lines{"2286|[N] an error"});
    EXPECT_EQ(node->getMessages().messages().size(), 2u);
    node->setMessagePanelVerbosityLevel(3);
    node->pushWarning("a warning", "with detail");
    EXPECT_EQ(host.posts.back(), "2286|[N] a warning - with detail");
}

TEST(NodeMessages, LevelsFromFourOnGoToTheOtherLine) {
    RecordingHost host;
    Net net;
    Node* node = net.add<Node>("N");
    node->refMessages().setVerbosityLevel(5);
    node->setMessagePanelVerbosityLevel(5);
    for (int level = 1; level <= 6; ++level) node->pushMessage(level, "t", "");
    EXPECT_EQ(host.posts,
              (Lines{"2286|[N] t", "2286|[N] t", "2286|[N] t", "49|[N] t", "49|[N] t"}));
}

TEST(NodeMessages, PanelLevelMayBeAnyNumber) {
    Net net;
    Node* node = net.add<Node>("N");
    for (const int level : {0, -1, 5, 1000, -70000}) {
        node->setMessagePanelVerbosityLevel(level);
        EXPECT_EQ(node->getMessagePanelVerbosityLevel(), level);
    }
}

TEST(NodeMessages, FormattedDetail) {
    RecordingHost host;
    Net net;
    Node* node = net.add<Node>("N");
    node->pushMessageFormatted(2, "text", "%d of %s", 3, "four");
    EXPECT_EQ(node->getMessages().messages()[0], (Message{2, "text", "3 of four"}));
    EXPECT_EQ(host.posts, Lines{"2286|[N] text - 3 of four"});
}

TEST(NodeMessages, CriticalAlwaysThrowsWithTheFullName) {
    RecordingHost host;
    Net net;
    auto* outer = net.add<ScriptNode>("outer");
    auto* inner = new ScriptNode(&net.manager, "inner", outer);
    outer->addNode(inner);
    try {
        inner->pushCritical("it stops", "because");
        FAIL() << "nothing was thrown";
    } catch (const GenericGraphException& stopped) {
        EXPECT_EQ(stopped.message(), "[root.outer.inner] it stops - because");
        EXPECT_STREQ(stopped.what(), "[root.outer.inner] it stops - because");
        EXPECT_EQ(stopped.code(), 0x80010001u);
        EXPECT_FALSE(stopped.isQuiet());
    }
    ASSERT_EQ(inner->getMessages().messages().size(), 1u);
    EXPECT_EQ(inner->getMessages().messages()[0], (Message{1, "it stops", "because"}));
    EXPECT_EQ(host.posts, Lines{"2286|[inner] it stops - because"});
    inner->refMessages().setVerbosityLevel(0);
    EXPECT_THROW(inner->pushCritical("it stops"), GenericGraphException);
    EXPECT_EQ(inner->getMessages().messages().size(), 1u);
    EXPECT_EQ(host.posts.size(), 1u);
}

TEST(NodeMessages, CriticalWithAnExceptionOfTheCaller) {
    Net net;
    Node* node = net.add<Node>("N");
    const tidemark::sluice::graph::CancelGraphException own("own words", 7, true);
    try {
        node->pushCritical("text", own, "detail");
        FAIL() << "nothing was thrown";
    } catch (const tidemark::sluice::graph::CancelGraphException& stopped) {
        EXPECT_EQ(stopped.message(), "own words");
        EXPECT_EQ(stopped.code(), 7u);
        EXPECT_TRUE(stopped.isQuiet());
    }
    EXPECT_EQ(node->getMessages().messages()[0], (Message{1, "text", "detail"}));
}

TEST(NodeMessages, NameInTheLineIsThatOfTheMoment) {
    RecordingHost host;
    Net net;
    Node* node = net.add<Node>("N");
    node->pushError("one");
    node->setName("M");
    node->pushError("two");
    EXPECT_EQ(host.posts, (Lines{"2286|[N] one", "2286|[M] two"}));
}

TEST(CheckSpecialization, AnswersTrueForExactlyOneType) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    Attribute* a = node->in("a");
    EXPECT_FALSE(node->checkSpecialization(a));
    ASSERT_EQ(node->getMessages().messages().size(), 1u);
    EXPECT_EQ(node->getMessages().messages()[0], (Message{2, "input 'a' not specialized", ""}));
    node->setAttributeAllowedSpecializations(a, SpecializationList{});
    EXPECT_FALSE(node->checkSpecialization(a));
    node->setAttributeAllowedSpecialization(a, "Real");
    EXPECT_TRUE(node->checkSpecialization(a));
    EXPECT_EQ(node->getMessages().messages().size(), 2u);
}

TEST(CheckSpecialization, IsSilentWhereErrorsAreFiltered) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    node->refMessages().setVerbosityLevel(1);
    EXPECT_FALSE(node->checkSpecialization(node->in("a")));
    EXPECT_TRUE(node->getMessages().isEmpty());
}
