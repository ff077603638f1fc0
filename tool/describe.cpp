// SPDX-License-Identifier: Apache-2.0
// `sluice describe`: everything about one node type.
#include "tool/commands.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/library.h"
#include "tool/node_json.h"

namespace tidemark::tool {

namespace {

/// The words of a list, separated by commas.
std::string listed(const Json& words) {
    std::string list;
    for (const Json& word : words) list += (list.empty() ? "" : ", ") + word.get<std::string>();
    return list;
}

/// Every line of `text` behind `indent` blanks.
std::string indented(const std::string& text, std::size_t indent) {
    const std::string blanks(indent, ' ');
    return blanks + text::replaceAll(text, "\n", "\n" + blanks) + "\n";
}

/// Type and value, separated by commas.
std::string byType(const Json& defaults) {
    std::string list;
    for (const auto& [type, value] : defaults.items()) {
        list += (list.empty() ? "" : ", ") + type + " " + dumped(value);
    }
    return list;
}

std::string pinText(const Json& pin) {
    std::string out = "  " + pin["name"].get<std::string>() + "\n";
    const auto line = [&out](const char* label, const std::string& content) {
        if (!content.empty()) out += std::string("      ") + label + ": " + content + "\n";
    };
    const std::string description = pin["description"];
    if (!description.empty()) out += indented(description, 6);
    line("kind", pin["kind"]);
    line("types", listed(pin["allowed"]));
    if (pin["specializations"] != pin["allowed"]) line("now", listed(pin["specializations"]));
    if (pin.contains("options")) line("options", listed(pin["options"]));
    if (!pin["value"].is_null()) line("default", dumped(pin["value"]));
    if (pin.contains("defaults")) line("default", byType(pin["defaults"]));
    return out;
}

std::string pinsText(const char* heading, const Json& pins) {
    std::string out;
    for (const Json& pin : pins) out += pinText(pin);
    return out.empty() ? "" : std::string("\n") + heading + "\n" + out;
}

std::string nodeText(const Json& node) {
    std::string out =
        node["type"].get<std::string>() + "  (" + listed(node["allowedCategories"]) + ")\n";
    const std::string description = node["description"];
    if (!description.empty()) out += "\n" + indented(description, 2);
    if (node["dynamicPins"] == true) out += "\n  Pins can be added.\n";
    return out + pinsText("Inputs", node["inputs"]) + pinsText("Outputs", node["outputs"]);
}

} // namespace

int describeType(const DescribeOptions& options) {
    host::StandaloneHost host;
    bridge::setHost(&host);
    registerLibraries();
    TypeExplorer explorer;
    Json node = explorer.describe(factoryOf(options.type));
    printReports(host);
    if (node["type"] != options.type) {
        console::line("\"" + options.type + "\" is \"" + node["type"].get<std::string>() + "\"");
    }
    if (options.html || options.wiki) {
        console::out(explorer.page(factoryOf(options.type), options.wiki) + "\n");
    } else if (options.json) {
        console::out(document({{"schema", "sluice.describe/1"}, {"node", std::move(node)}}));
    } else {
        console::out(nodeText(node));
    }
    return console::leave(exitDone);
}

} // namespace tidemark::tool
