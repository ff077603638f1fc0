// SPDX-License-Identifier: Apache-2.0
// The message texts and the filling in of their arguments.
#include "host/message_table.h"

#include <string_view>

#include "bridge/host.h"

namespace tidemark::host {

namespace {

namespace message = bridge::message;

// %1 to %9 stand for the arguments. A part in braces is left out when it names an empty one.
struct Entry {
    int id;
    std::string_view text;
};

constexpr Entry table[] = {
    {message::panelDetail, "%1"},
    {message::outOfMemory, "Out of memory: the run was ended"},
    {message::unknownNodeType,
     "{%4: }Unknown node type \"%1\"{ of node \"%2\"}: skipped{ (did you mean \"%3\"?)}"},
    {message::interfaceAtRoot, "Interface node{ \"%1\"} outside of a compound: skipped"},
    {message::unknownConnectionPin,
     "{%3: }Connection to a pin that does not exist, \"%1\": skipped{ (did you mean \"%2\"?)}"},
    {message::unknownPin, "No pin \"%1\": skipped{ (did you mean \"%2\"?)}"},
    {message::runException, "The run was ended: %1"},
    {message::xmlError, "{%1: }%2{ (line %3)}"},
    {message::unknownPinType, "Pin \"%1\": values of type \"%2\" can not be read"},
    {message::badLayoutValueOf, "Layout of \"%1\": bad value of \"%2\""},
    {message::badLayoutValue, "Layout: bad value of \"%1\""},
    {message::duplicateNodeType,
     "Node type \"%1\" exists already{, in category \"%2\"}: not registered again"},
    {message::panelLine, "%1"},
};

bool isPlaceholder(std::string_view text, std::size_t at) {
    return text[at] == '%' && at + 1 < text.size() && text[at + 1] >= '1' && text[at + 1] <= '9';
}

TM_String argumentAt(std::string_view text, std::size_t at, const Array<TM_String>& arguments) {
    const auto index = static_cast<uint32_t>(text[at + 1] - '1');
    return index < arguments.size() ? arguments[index] : TM_String();
}

bool namesAnEmptyArgument(std::string_view part, const Array<TM_String>& arguments) {
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (isPlaceholder(part, i) && argumentAt(part, i, arguments).empty()) return true;
    }
    return false;
}

void fill(std::string_view text, const Array<TM_String>& arguments, TM_String& out) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isPlaceholder(text, i)) {
            out += argumentAt(text, i, arguments);
            ++i;
        } else if (text[i] == '{') {
            const std::size_t end = text.find('}', i);
            const std::string_view part = text.substr(i + 1, end - i - 1);
            if (!namesAnEmptyArgument(part, arguments)) fill(part, arguments, out);
            i = end;
        } else {
            out += text[i];
        }
    }
}

} // namespace

TM_String messageText(int id, const Array<TM_String>& arguments) {
    TM_String out;
    for (const Entry& entry : table) {
        if (entry.id != id) continue;
        Array<TM_String> known(arguments);
        // A line of 0 stands for none.
        if (id == message::xmlError && known.size() > 2 && known[2] == "0") known[2].clear();
        fill(entry.text, known, out);
        return out;
    }
    out = "Message " + std::to_string(id);
    for (uint32_t i = 0; i < arguments.size(); ++i) out += (i ? ", " : ": ") + arguments[i];
    return out;
}

Array<int> messageIds() {
    Array<int> ids;
    for (const Entry& entry : table) ids.append(entry.id);
    return ids;
}

} // namespace tidemark::host
