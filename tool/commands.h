// SPDX-License-Identifier: Apache-2.0
// The sub-commands: each takes its parsed options and gives the exit status.
#pragma once

#include <string>
#include <vector>

#include "tool/session.h"

namespace tidemark::tool {

struct NodesOptions {
    std::string category; ///< empty: all
    std::string search;   ///< empty: all
    bool json = false;
};
int listNodes(const NodesOptions& options);

struct DescribeOptions {
    std::string type;
    bool json = false;
    bool html = false;
    bool wiki = false;
};
int describeType(const DescribeOptions& options);

struct ReferenceOptions {
    std::string folder;
};
int writeReference(const ReferenceOptions& options);

struct CheckOptions {
    std::string graph;
    FailLevel failLevel;
    bool json = false;
};
int checkGraph(const CheckOptions& options);

struct ConvertOptions {
    std::string in;
    std::string out;
};
int convertGraph(const ConvertOptions& options);

struct DrawOptions {
    std::string graph;
    std::string out;    ///< empty: standard output
    std::string format; ///< empty: by the ending of `out`
    bool runs = false;
};
int drawGraph(const DrawOptions& options);

struct DiffOptions {
    std::string a;
    std::string b;
    bool json = false;
    bool ignoresLayout = false;
};
int diffGraphs(const DiffOptions& options);

/// One sub-command's words for the completion scripts.
struct CommandWords {
    std::string name;
    std::string help;
    /// Option names with their help; those that take a value end in "=".
    std::vector<std::pair<std::string, std::string>> options;
};
struct CompletionOptions {
    std::string shell;  ///< "bash" or "zsh"; empty with `pinsOf`
    std::string pinsOf; ///< a graph whose pins to list instead
    bool outputsOnly = false;
};
int completion(const CompletionOptions& options, const std::vector<CommandWords>& commands);

} // namespace tidemark::tool
