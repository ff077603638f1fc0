// SPDX-License-Identifier: Apache-2.0
// The installed host, the host that does nothing, and the callback centre.
#include "bridge/host.h"

#include <gtest/gtest.h>

namespace {

using tidemark::Array;
using tidemark::TM_String;
using tidemark::bridge::CCallbackCenter;
using tidemark::bridge::Host;

struct RecordingHost : Host {
    void post(int id, const Array<TM_String>& arguments) override {
        ids.append(id);
        last = arguments;
    }
    void message(const TM_String& line) override { messages.append(line); }
    void stopSimulation() override { ++stops; }

    Array<int> ids;
    Array<TM_String> last;
    Array<TM_String> messages;
    int stops = 0;
};

struct Installed {
    explicit Installed(Host* host) { tidemark::bridge::setHost(host); }
    ~Installed() { tidemark::bridge::setHost(nullptr); }
};

TEST(Host, WithoutOneThereIsASilentHost) {
    Host& silent = tidemark::bridge::host();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    silent.post(2255, {"Nothing"});
    silent.message("a line");
    silent.print("a line");
    silent.stopSimulation();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Host, SilentHostAnswersLikeAnApplicationWithoutScene) {
    Host& silent = tidemark::bridge::host();
    EXPECT_GE(silent.numberOfThreads(), 1);
    EXPECT_TRUE(silent.allowsSleep());
    EXPECT_FALSE(silent.prefersCurvedConnections());
    EXPECT_EQ(silent.graphLibraryPath(), "");
    EXPECT_TRUE(silent.compatibleClasses().empty());
    EXPECT_TRUE(silent.mayRead("/etc/hostname"));
    EXPECT_TRUE(silent.mayWrite("/tmp/any"));
}

TEST(Host, InstalledHostIsUsedUntilItIsTakenAway) {
    RecordingHost recording;
    {
        const Installed installed(&recording);
        EXPECT_EQ(&tidemark::bridge::host(), &recording);
    }
    EXPECT_NE(&tidemark::bridge::host(), &recording);
}

TEST(CallbackCenter, PostsNumbersWithTheirArguments) {
    RecordingHost recording;
    const Installed installed(&recording);
    CCallbackCenter& center = CCallbackCenter::Instance();
    center.Post(2083);
    EXPECT_EQ(recording.last, Array<TM_String>());
    center.Post(2262, "text");
    EXPECT_EQ(recording.last, (Array<TM_String>{"text"}));
    center.Post(2275, "type", "category");
    EXPECT_EQ(recording.last, (Array<TM_String>{"type", "category"}));
    center.Post(2263, Array<TM_String>{"file", "message", "3"});
    EXPECT_EQ(recording.last, (Array<TM_String>{"file", "message", "3"}));
    EXPECT_EQ(recording.ids, (Array<int>{2083, 2262, 2275, 2263}));
}

TEST(CallbackCenter, HandsMessagesAndStopsOn) {
    RecordingHost recording;
    const Installed installed(&recording);
    CCallbackCenter::Instance().Message("a line");
    CCallbackCenter::Instance().StopSimulation();
    EXPECT_EQ(recording.messages, (Array<TM_String>{"a line"}));
    EXPECT_EQ(recording.stops, 1);
}

TEST(CallbackCenter, WithoutAHostNothingHappens) {
    CCallbackCenter::Instance().Post(2083);
    CCallbackCenter::Instance().StopSimulation();
    EXPECT_TRUE(tidemark::bridge::host().allowsSleep());
}

} // namespace
