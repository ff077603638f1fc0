// SPDX-License-Identifier: Apache-2.0
// Runs the built program as a user would, and gives it graphs to work on.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace sluice_test {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

/// How a program ended and what it wrote.
struct Ended {
    int status = -1; ///< exit status; 128 and the number for an end by a signal
    std::string out;
    std::string err;
    double seconds = 0.0;

    /// Standard output as JSON; a failure of the test when it is not one document.
    Json json() const;
};

/// How to start it.
struct Start {
    Words arguments;
    std::vector<std::pair<std::string, std::string>> environment{}; ///< on top of the test's own
    std::string folder{}; ///< to run in; empty: the test's
    int signal = 0;       ///< sent `signalAfter` seconds after the start; 0: none
    double signalAfter = 0.0;
    int signalCount = 1;       ///< sent in a row, 50 ms apart
    bool terminal = false;     ///< standard error is a terminal
    bool sameTerminal = false; ///< with `terminal`: standard output is that terminal as well
    std::string outFile{};     ///< where standard output goes instead
};

/// Runs the program to its end.
Ended run(const Start& start);
Ended run(std::initializer_list<std::string> arguments);

/// A test with an empty folder of its own, in which the program runs.
class ProgramTest : public testing::Test {
protected:
    ProgramTest();
    ~ProgramTest() override;

    /// Writes a file into the folder; its path.
    std::string file(const std::string& name, const std::string& content) const;
    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    std::string read(const std::string& name) const;
    bool exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

    /// In the test's folder.
    Ended sluice(std::initializer_list<std::string> arguments) const;
    Ended sluice(Start start) const;

    std::filesystem::path folder_;
};

/// A graph file by a few words:
///     GraphText().node("A", "Real", {{"in", "real", "2.5"}}).link("A.real", "E.evaluate")
/// Names are below "root".
class GraphText {
public:
    struct Input {
        std::string name;
        std::string type;
        std::string value;
    };

    GraphText& node(const std::string& name, const std::string& type,
                    std::vector<Input> inputs = {});
    GraphText& link(const std::string& source, const std::string& target);
    std::string text() const;

private:
    std::string nodes_;
    std::string links_;
};

/// A = 2.5 (Real), B = 3 (Integer), Sum = A + B, evaluated by E.
std::string sumGraph();

/// An evaluator that pulls a node sleeping for `milliseconds`.
std::string sleepingGraph(int milliseconds);

} // namespace sluice_test
