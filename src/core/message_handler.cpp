// SPDX-License-Identifier: Apache-2.0
// The message list and the printable form of a message.
#include "core/message_handler.h"

#include <algorithm>
#include <string>

namespace tidemark::graph {

TM_String messageLevelName(int level) {
    switch (level) {
    case messageLevelCritical:
        return "critical";
    case messageLevelError:
        return "error";
    case messageLevelWarning:
        return "warning";
    case messageLevelInfo:
        return "info";
    case messageLevelDebug:
        return "debug";
    default:
        return std::to_string(level);
    }
}

TM_String Message::asString() const {
    TM_String line = "[" + messageLevelName(level) + "] " + text;
    if (!detail.empty()) line += " - " + detail;
    return line;
}

void MessageHandler::push(int level, const TM_String& text, const TM_String& detail) {
    if (isLevelAllowed(level)) messages_.append(Message{level, text, detail});
}

void MessageHandler::pushError(const TM_String& text, const TM_String& detail) {
    push(messageLevelError, text, detail);
}

bool MessageHandler::hasWarnings() const {
    return std::any_of(messages_.begin(), messages_.end(),
                       [](const Message& m) { return m.level == messageLevelWarning; });
}

bool MessageHandler::hasErrorsOrCriticals() const {
    return std::any_of(messages_.begin(), messages_.end(), [](const Message& m) {
        return m.level == messageLevelCritical || m.level == messageLevelError;
    });
}

} // namespace tidemark::graph
