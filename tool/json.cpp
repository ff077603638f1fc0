// SPDX-License-Identifier: Apache-2.0
// Printing of JSON documents.
#include "tool/json.h"

#include <algorithm>

namespace tidemark::tool {

namespace {

constexpr int allOnOneLine = -1;

std::string plain(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// Levels of lists and objects. The documents are a few levels deep, so recursion is fine.
int depthOf(const Json& json) {
    if (!json.is_structured()) return 0;
    int deepest = 0;
    for (const Json& element : json) deepest = std::max(deepest, depthOf(element));
    return deepest + 1;
}

/// Lists of plain values, and small records inside of lists, such as a pin with its value.
bool belongsOnOneLine(const Json& json, int indent) {
    constexpr int insideAList = 4;
    return depthOf(json) <= (indent >= insideAList ? 3 : 1) && indent != 0;
}

void print(const Json& json, int indent, std::string& out) {
    if (!json.is_structured()) {
        out += plain(json);
        return;
    }
    const bool isObject = json.is_object();
    const bool oneLine = indent == allOnOneLine || belongsOnOneLine(json, indent);
    const int inner = oneLine ? allOnOneLine : indent + 2;
    out += isObject ? '{' : '[';
    bool first = true;
    for (auto element = json.begin(); element != json.end(); ++element) {
        if (!first) out += oneLine ? ", " : ",";
        first = false;
        if (!oneLine) out.append("\n").append(static_cast<std::size_t>(inner), ' ');
        if (isObject) out += plain(Json(element.key())) + ": ";
        print(*element, inner, out);
    }
    if (!oneLine && !first) out.append("\n").append(static_cast<std::size_t>(indent), ' ');
    out += isObject ? '}' : ']';
}

} // namespace

std::string dumped(const Json& json) {
    std::string out;
    print(json, allOnOneLine, out);
    return out;
}

std::string document(const Json& json) {
    std::string out;
    print(json, 0, out);
    return out + "\n";
}

} // namespace tidemark::tool
