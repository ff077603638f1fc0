// SPDX-License-Identifier: Apache-2.0
// The options of `sluice run`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tool/frames.h"
#include "tool/progress.h"
#include "tool/session.h"

namespace tidemark::tool {

struct RunOptions {
    std::string graph;
    std::vector<std::string> settings; ///< "PIN=VALUE", "PIN:TYPE=VALUE", in order
    std::string settingFile;
    std::vector<std::string> getPins;
    std::vector<std::string> pullPins;
    std::optional<Frames> frames;
    bool keepsGoing = false;
    int threads = 0;
    std::string saveFile;
    bool json = false;
    bool profile = false;
    std::string traceFile;
    int verbosity = tidemark::graph::messageLevelWarning;
    FailLevel failLevel;
    ProgressMode progress = ProgressMode::automatic;
    bool dryRun = false;
    double timeoutSeconds = 0.0; ///< 0: none
    uint64_t maxMemory = 0;      ///< bytes, 0: none
    uint64_t maxElements = 0;    ///< 0: none
    bool noSleep = false;
    std::string root;
    bool noWrite = false;
    bool trust = false;
};

/// "100", "64K", "10M", "2G", in bytes. Throws `UsageError`.
uint64_t parseBytes(const std::string& text);

/// "critical", "error", "warning". Throws `UsageError`.
FailLevel parseFailLevel(const std::string& text);

/// "auto", "plain", "json", "none". Throws `UsageError`.
ProgressMode parseProgress(const std::string& text);

/// Runs the graph as the options say; the exit status.
int runGraph(const RunOptions& options);

} // namespace tidemark::tool
