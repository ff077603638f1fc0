// SPDX-License-Identifier: Apache-2.0
// Texts of the host's messages.
#include "host/message_table.h"

#include <gtest/gtest.h>

#include "bridge/host.h"

namespace {

namespace message = tidemark::bridge::message;
using tidemark::Array;
using tidemark::TM_String;
using tidemark::host::messageIds;
using tidemark::host::messageText;

TEST(MessageTable, EveryPostedIdHasAText) {
    const Array<int> expected{message::panelDetail,
                              message::outOfMemory,
                              message::unknownNodeType,
                              message::interfaceAtRoot,
                              message::unknownConnectionPin,
                              message::unknownPin,
                              message::runException,
                              message::xmlError,
                              message::unknownPinType,
                              message::badLayoutValueOf,
                              message::badLayoutValue,
                              message::duplicateNodeType,
                              message::panelLine};
    EXPECT_EQ(messageIds(), expected);
}

TEST(MessageTable, UnknownTypeNamesTypeNodeAndNearestType) {
    EXPECT_EQ(messageText(2255, {"Ad", "root.Ad_01", "Add"}),
              "Unknown node type \"Ad\" of node \"root.Ad_01\": skipped (did you mean \"Add\"?)");
    EXPECT_EQ(messageText(2255, {"Ad", "root.Ad_01", ""}),
              "Unknown node type \"Ad\" of node \"root.Ad_01\": skipped");
    EXPECT_EQ(messageText(2255, {"Ad"}), "Unknown node type \"Ad\": skipped");
}

TEST(MessageTable, MissingPinsNameThePinAndTheNearestOne) {
    EXPECT_EQ(messageText(2261, {"Add_01.in5"}), "No pin \"Add_01.in5\": skipped");
    EXPECT_EQ(messageText(2261, {"Add_01.inn0", "in0"}),
              "No pin \"Add_01.inn0\": skipped (did you mean \"in0\"?)");
    EXPECT_EQ(messageText(2260, {"root.Add_01.sum", "result"}),
              "Connection to a pin that does not exist, \"root.Add_01.sum\": skipped "
              "(did you mean \"result\"?)");
}

TEST(MessageTable, ReadingReportsNameWhatTheySpeakOf) {
    EXPECT_EQ(messageText(2256, {"IO"}), "Interface node \"IO\" outside of a compound: skipped");
    EXPECT_EQ(messageText(2256, {}), "Interface node outside of a compound: skipped");
    EXPECT_EQ(messageText(2264, {"Add_01.in0", "matrix4"}),
              "Pin \"Add_01.in0\": values of type \"matrix4\" can not be read");
    EXPECT_EQ(messageText(2266, {"Add_01", "position"}),
              "Layout of \"Add_01\": bad value of \"position\"");
    EXPECT_EQ(messageText(2267, {"zoom"}), "Layout: bad value of \"zoom\"");
}

TEST(MessageTable, XmlErrorTellsFileLineAndMessage) {
    EXPECT_EQ(messageText(2263, {"g.xml", "expected >", "12"}), "g.xml: expected > (line 12)");
    EXPECT_EQ(messageText(2263, {"", "expected >", ""}), "expected >");
    EXPECT_EQ(messageText(2263, {"g.xml", "a folder, not a file", "0"}),
              "g.xml: a folder, not a file");
}

TEST(MessageTable, RunMessagesCarryTheText) {
    EXPECT_EQ(messageText(2262, {"stopped"}), "The run was ended: stopped");
    EXPECT_EQ(messageText(2083, {}), "Out of memory: the run was ended");
    EXPECT_EQ(messageText(2275, {"Add", "Math"}),
              "Node type \"Add\" exists already, in category \"Math\": not registered again");
    EXPECT_EQ(messageText(2286, {"[Add_01] text - detail"}), "[Add_01] text - detail");
    EXPECT_EQ(messageText(49, {"[Add_01] text"}), "[Add_01] text");
}

TEST(MessageTable, ArgumentsAreTakenAsTheyAre) {
    EXPECT_EQ(messageText(2286, {"100%1 {%2} %s"}), "100%1 {%2} %s");
    EXPECT_EQ(messageText(2255, {"{%3}", "%1"}),
              "Unknown node type \"{%3}\" of node \"%1\": skipped");
}

TEST(MessageTable, UnknownIdShowsNumberAndArguments) {
    EXPECT_EQ(messageText(7, {}), "Message 7");
    EXPECT_EQ(messageText(7, {"a", "b"}), "Message 7: a, b");
}

} // namespace
