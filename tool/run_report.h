// SPDX-License-Identifier: Apache-2.0
// What a run says about its graph: pins, messages, order of pulls.
#pragma once

#include <string>
#include <vector>

#include "tool/json.h"
#include "tool/session.h"

namespace tidemark::tool {

/// One message of a node or of the scene ("scene").
struct NodeMessage {
    std::string node; ///< full name
    tidemark::graph::Message message;
};

/// The messages of the scene and of all nodes but `hidden`, in the order of the node tree.
std::vector<NodeMessage> collectMessages(const sluice::graph::SL_GraphScene& scene,
                                         const sluice::graph::Node* hidden);

/// Drops all of them.
void clearMessages(sluice::graph::SL_GraphScene& scene);

/// Lets scene and nodes keep messages up to `level` at least.
void keepMessagesUpTo(sluice::graph::SL_GraphScene& scene, int level);

/// Prints those up to `verbosity` on stderr.
void printMessages(const std::vector<NodeMessage>& messages, int verbosity);

/// [{"node", "level", "text", "detail"}], those up to `verbosity`.
Json messagesJson(const std::vector<NodeMessage>& messages, int verbosity);

/// [{"pin", "type", "size", "value"}]; throws `UsageError` for an unknown pin.
Json pinsJson(const sluice::graph::SL_GraphScene& scene, const std::vector<std::string>& pins);

/// A line per pin on stdout, "PIN = VALUE", behind `prefix`.
void printPins(const Json& pins, const std::string& prefix);

} // namespace tidemark::tool
