// SPDX-License-Identifier: Apache-2.0
// Where the time and the memory of a run went, node by node.
#pragma once

#include <string>
#include <vector>

#include "tool/json.h"
#include "tool/update_recorder.h"

namespace tidemark::tool {

/// One node that computed something.
struct ProfileRow {
    std::string node; ///< full name
    std::string type;
    uint64_t calls;
    double own;      ///< seconds, without what it pulled or waited for
    double total;    ///< seconds
    uint64_t memory; ///< bytes that its values hold
};

/// The rows in falling order of own time, then in order of names. `hidden`, which may be null, is
/// left out.
std::vector<ProfileRow> profileOf(const UpdateRecorder& recorder,
                                  const sluice::graph::SL_GraphScene& scene,
                                  const sluice::graph::Node* hidden);

/// [{"node", "type", "calls", "own", "total", "percent", "memory"}]; `seconds`: of the whole run.
Json profileJson(const std::vector<ProfileRow>& rows, double seconds);

/// A table on stdout of the rows that took most; `outside`: seconds of the run outside of nodes.
void printProfile(const std::vector<ProfileRow>& rows, double seconds, double outside);

} // namespace tidemark::tool
