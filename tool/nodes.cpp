// SPDX-License-Identifier: Apache-2.0
// `sluice nodes`: the registered node types.
#include <algorithm>

#include "graph/scene_manager.h"
#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/library.h"
#include "tool/node_json.h"

namespace tidemark::tool {

namespace {

using sluice::graph::NodeFactory;
using sluice::graph::SceneManager;

/// Whether `category` is `wanted` or lies below it; letter case ignored.
bool isWithin(const std::string& category, const std::string& wanted) {
    const std::string lower = text::toLower(category);
    const std::string begin = text::toLower(wanted);
    return lower == begin || lower.compare(0, begin.size() + 1, begin + ".") == 0;
}

bool hasCategory(const Json& node, const std::string& wanted) {
    const Json& categories = node["allowedCategories"];
    return wanted.empty() || std::any_of(categories.begin(), categories.end(), [&](const Json& c) {
               return isWithin(c.get<std::string>(), wanted);
           });
}

bool holdsWord(const Json& node, const std::string& word) {
    if (word.empty()) return true;
    const std::string lower = text::toLower(word);
    const auto holds = [&lower](const Json& field) {
        return text::toLower(field.get<std::string>()).find(lower) != std::string::npos;
    };
    return holds(node["type"]) || holds(node["category"]) || holds(node["description"]);
}

void hintAtCategory(const std::string& wanted) {
    Array<TM_String> known;
    for (const auto& entry : SceneManager::instance().getMapLongCategoryToFactories()) {
        known.append(entry.first);
    }
    const TM_String nearest = text::nearest(wanted, known);
    if (!nearest.empty() && !isWithin(nearest, wanted)) {
        console::line("nothing found; did you mean the category \"" + nearest + "\"?");
    }
}

void printTable(const Json& nodes) {
    std::size_t typeWidth = 0;
    std::size_t categoryWidth = 0;
    for (const Json& node : nodes) {
        typeWidth = std::max(typeWidth, node["type"].get_ref<const Json::string_t&>().size());
        categoryWidth =
            std::max(categoryWidth, node["category"].get_ref<const Json::string_t&>().size());
    }
    for (const Json& node : nodes) {
        std::string line = node["type"];
        line.resize(typeWidth + 2, ' ');
        line += node["category"].get<std::string>();
        line.resize(typeWidth + 2 + categoryWidth + 2, ' ');
        line += firstLine(node["description"]);
        line.erase(line.find_last_not_of(' ') + 1);
        console::out(line + "\n");
    }
}

} // namespace

int listNodes(const NodesOptions& options) {
    host::StandaloneHost host;
    bridge::setHost(&host);
    registerLibraries();
    TypeExplorer explorer;
    Json nodes = Json::array();
    for (NodeFactory* factory : SceneManager::instance().getArrNodeFactory()) {
        Json node = explorer.describe(*factory);
        if (hasCategory(node, options.category) && holdsWord(node, options.search)) {
            nodes.push_back(std::move(node));
        }
    }
    printReports(host);
    if (nodes.empty() && !options.category.empty()) hintAtCategory(options.category);
    if (options.json) {
        console::out(document({{"schema", "sluice.nodes/1"}, {"nodes", std::move(nodes)}}));
    } else {
        printTable(nodes);
    }
    return console::leave(exitDone);
}

} // namespace tidemark::tool
