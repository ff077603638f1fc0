// SPDX-License-Identifier: Apache-2.0
// The standalone host: reports, lines, settings, threads.
#include "host/standalone_host.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using tidemark::TM_String;
using tidemark::bridge::CCallbackCenter;
using tidemark::host::FileGate;
using tidemark::host::StandaloneHost;
using Line = StandaloneHost::Line;

class StandaloneHostTest : public testing::Test {
protected:
    StandaloneHostTest() { tidemark::bridge::setHost(&host_); }

    void listen() {
        host_.setSink(
            [this](Line kind, const TM_String& line) { lines_.emplace_back(kind, line); });
    }

    StandaloneHost host_;
    std::vector<std::pair<Line, TM_String>> lines_;
};

TEST_F(StandaloneHostTest, KeepsReportsInOrderUntilTheyAreTaken) {
    CCallbackCenter::Instance().Post(2255, "NoSuchType");
    CCallbackCenter::Instance().Post(2083);
    const auto reports = host_.takeReports();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].id, 2255);
    EXPECT_NE(reports[0].text.find("NoSuchType"), TM_String::npos);
    EXPECT_EQ(reports[1].id, 2083);
    EXPECT_TRUE(host_.takeReports().empty());
}

TEST_F(StandaloneHostTest, LinesGoToTheSinkWithTheirKind) {
    listen();
    CCallbackCenter::Instance().Post(2256);
    CCallbackCenter::Instance().Post(2286, "[Add] text");
    CCallbackCenter::Instance().Post(49, "[Add] more");
    CCallbackCenter::Instance().Message("window");
    host_.print("printed");
    const std::vector<std::pair<Line, TM_String>> expected{
        {Line::report, "Interface node outside of a compound: skipped"},
        {Line::panel, "[Add] text"},
        {Line::panel, "[Add] more"},
        {Line::message, "window"},
        {Line::print, "printed"}};
    EXPECT_EQ(lines_, expected);
}

TEST_F(StandaloneHostTest, WithoutASinkLinesAreDropped) {
    host_.message("window");
    host_.print("printed");
    EXPECT_TRUE(host_.takeReports().empty());
}

TEST_F(StandaloneHostTest, ThreadsMayReportAtTheSameTime) {
    listen();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int k = 0; k < 500; ++k) CCallbackCenter::Instance().Post(2286, "line");
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(host_.takeReports().size(), 2000u);
    EXPECT_EQ(lines_.size(), 2000u);
}

TEST_F(StandaloneHostTest, ZeroThreadsStandForAllProcessors) {
    const int all = static_cast<int>(std::thread::hardware_concurrency());
    host_.setNumberOfThreads(0);
    EXPECT_EQ(host_.numberOfThreads(), all);
    host_.setNumberOfThreads(-3);
    EXPECT_EQ(host_.numberOfThreads(), all);
    host_.setNumberOfThreads(7);
    EXPECT_EQ(host_.numberOfThreads(), 7);
}

TEST_F(StandaloneHostTest, AbsurdNumbersOfThreadsAreCut) {
    host_.setNumberOfThreads(2000000000);
    EXPECT_EQ(host_.numberOfThreads(), 1024);
}

TEST_F(StandaloneHostTest, StopRequestStaysUntilCleared) {
    EXPECT_FALSE(host_.isStopRequested());
    CCallbackCenter::Instance().StopSimulation();
    EXPECT_TRUE(host_.isStopRequested());
    host_.clearStopRequest();
    EXPECT_FALSE(host_.isStopRequested());
}

TEST_F(StandaloneHostTest, HoldsFrameAndSleepSwitch) {
    EXPECT_EQ(host_.currentFrame(), 0);
    host_.setCurrentFrame(-12);
    EXPECT_EQ(host_.currentFrame(), -12);
    EXPECT_TRUE(host_.allowsSleep());
    host_.setAllowsSleep(false);
    EXPECT_FALSE(host_.allowsSleep());
}

TEST_F(StandaloneHostTest, FilesGoThroughTheGate) {
    EXPECT_TRUE(host_.mayWrite("/anywhere"));
    host_.setFileGate(FileGate::confinedTo("/var/empty"));
    EXPECT_FALSE(host_.mayWrite("/anywhere"));
    EXPECT_FALSE(host_.mayRead("/etc/hostname"));
    EXPECT_TRUE(host_.mayRead("/var/empty/x"));
}

TEST(StandaloneHostLife, EndedHostIsNoLongerInstalled) {
    {
        StandaloneHost host;
        tidemark::bridge::setHost(&host);
        EXPECT_EQ(&tidemark::bridge::host(), &host);
    }
    CCallbackCenter::Instance().Post(2083);
    EXPECT_TRUE(tidemark::bridge::host().mayRead("/anywhere"));
}

} // namespace
