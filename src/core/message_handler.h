// SPDX-License-Identifier: Apache-2.0
// Messages of nodes and scenes, and the list that keeps them up to a chosen level.
#pragma once

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"

namespace tidemark::graph {

/// Levels of a message, most serious first. A level is a plain number wherever it is passed.
constexpr int messageLevelCritical = 1;
constexpr int messageLevelError = 2;
constexpr int messageLevelWarning = 3;
constexpr int messageLevelInfo = 4;
constexpr int messageLevelDebug = 5;

/// "critical", "error", "warning", "info", "debug"; any other level as its number.
SLUICE_API TM_String messageLevelName(int level);

struct SLUICE_API Message {
    int level = messageLevelInfo;
    TM_String text;
    TM_String detail;

    /// "[level] text - detail" with the level's name; without " - detail" when there is none.
    TM_String asString() const;

    friend bool operator==(const Message&, const Message&) = default;
};

/// Keeps the messages whose level does not exceed its verbosity, in the order they came.
/// An empty one holds no memory beyond itself: every node of a large graph has one.
class SLUICE_API MessageHandler {
public:
    explicit MessageHandler(int verbosity = messageLevelWarning) : verbosity_(verbosity) {}

    /// Stores the message when `isLevelAllowed(level)`, otherwise drops it.
    void push(int level, const TM_String& text, const TM_String& detail = TM_String());

    /// `push` with the level of an error.
    void pushError(const TM_String& text, const TM_String& detail = TM_String());

    bool isLevelAllowed(int level) const { return level <= verbosity_; }
    bool isEmpty() const { return messages_.empty(); }

    /// Some stored message has the level of a warning, no other level counts.
    bool hasWarnings() const;

    /// Some stored message is an error or critical.
    bool hasErrorsOrCriticals() const;

    /// Drops all messages and their memory; the verbosity stays.
    void clear() { messages_.reset(); }

    /// Oldest first. Valid until the next push or clear.
    const Array<Message>& messages() const { return messages_; }

    int verbosityLevel() const { return verbosity_; }

    /// Decides over later pushes only.
    void setVerbosityLevel(int verbosity) { verbosity_ = verbosity; }

private:
    Array<Message> messages_;
    int verbosity_;
};

} // namespace tidemark::graph
