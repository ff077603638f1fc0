// SPDX-License-Identifier: Apache-2.0
// Evaluators that the program adds for the length of a run, and what a run would pull first.
#pragma once

#include <string>
#include <vector>

#include "graph/graph_scene.h"

namespace tidemark::tool {

/// For its lifetime, an additional evaluator, last in the scene, is wired to some outputs. Neither
/// the evaluator nor its wires are there when the scene is written afterwards.
class TemporaryPulls {
public:
    explicit TemporaryPulls(sluice::graph::SL_GraphScene& scene) : scene_(scene) {}
    ~TemporaryPulls() { remove(); }
    TemporaryPulls(const TemporaryPulls&) = delete;
    TemporaryPulls& operator=(const TemporaryPulls&) = delete;

    /// Throws `UsageError` when there is no such output.
    void add(const std::string& pinName);
    void remove();

    /// Null before the first `add`.
    const sluice::graph::Node* evaluator() const { return evaluator_; }

private:
    sluice::graph::Pin& freeInput();

    sluice::graph::SL_GraphScene& scene_;
    sluice::graph::Node* evaluator_ = nullptr;
};

/// The nodes that the evaluators of a run reach, in the order in which they are pulled first when
/// everything has to be computed and every node pulls all its inputs in order.
std::vector<sluice::graph::Node*> pullOrder(const sluice::graph::SL_GraphScene& scene);

} // namespace tidemark::tool
