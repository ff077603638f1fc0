// SPDX-License-Identifier: Apache-2.0
// Writes down what the network's callback slots are told, in order.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/callbacks.h"
#include "support/net.h"

namespace support {

/// Sets every slot but those of reference counting, and clears all of them at its end. One at a
/// time. `lines` holds a word for the slot and names for its arguments: "clean R.real".
class CallbackLog {
public:
    CallbackLog() {
        current() = this;
        using weft::Attribute;
        using weft::Callbacks;
        using weft::Node;
        Callbacks::_attributeConnectedCallback = [](Attribute* source, Attribute* destination) {
            note("connected", source, destination);
        };
        Callbacks::_attributeDisconnectedCallback = [](Attribute* a) { note("disconnected", a); };
        Callbacks::_attributeDeletedCallback = [](Attribute* a) { note("deleted", a); };
        Callbacks::_attributeSpecializationCallback = [](Attribute* a) { note("types", a); };
        Callbacks::_attributeDirtiedCallback = [](Attribute* a) { note("dirtied", a); };
        Callbacks::_attributeCleanCallback = [](Attribute* a) { note("clean", a); };
        Callbacks::_objectRenamedCallback = [](weft::Object*, const TM_String& name) {
            add("renamed " + name);
        };
        Callbacks::_addNodeCallback = [](Node* parent, Node* node) {
            note("addNode", parent, node);
        };
        Callbacks::_removeNodeCallback = [](Node* parent, Node* node) {
            note("removeNode", parent, node);
        };
        Callbacks::_addInputAttributeCallback = [](Node* node, Attribute* a) {
            add("addInput " + node->name() + " " + a->name());
        };
        Callbacks::_addOutputAttributeCallback = [](Node* node, Attribute* a) {
            add("addOutput " + node->name() + " " + a->name());
        };
        Callbacks::_removeAttributeCallback = [](Node* node, Attribute* a) {
            add("removeAttribute " + node->name() + " " + a->name());
        };
        Callbacks::_deleteItCallback = [](Node* node) { note("deleteIt", node); };
        Callbacks::_connectionChangedCallback = [](Node* node, Attribute* a) {
            add("connectionChanged " + node->name() + " " + a->name());
        };
        Callbacks::_updateCallback = [](Node* node, Attribute* a, double seconds) {
            current()->updateSeconds = seconds;
            add("update " + node->name() + " " + a->name());
        };
    }
    ~CallbackLog() {
        current() = nullptr;
        clearSlots();
    }
    CallbackLog(const CallbackLog&) = delete;
    CallbackLog& operator=(const CallbackLog&) = delete;

    static void clearSlots() {
        using weft::Callbacks;
        Callbacks::_attributeConnectedCallback = nullptr;
        Callbacks::_attributeDisconnectedCallback = nullptr;
        Callbacks::_attributeDeletedCallback = nullptr;
        Callbacks::_attributeSpecializationCallback = nullptr;
        Callbacks::_attributeDirtiedCallback = nullptr;
        Callbacks::_attributeCleanCallback = nullptr;
        Callbacks::_objectRenamedCallback = nullptr;
        Callbacks::_objectRetainCallback = nullptr;
        Callbacks::_objectReleaseCallback = nullptr;
        Callbacks::_addNodeCallback = nullptr;
        Callbacks::_removeNodeCallback = nullptr;
        Callbacks::_addInputAttributeCallback = nullptr;
        Callbacks::_addOutputAttributeCallback = nullptr;
        Callbacks::_removeAttributeCallback = nullptr;
        Callbacks::_deleteItCallback = nullptr;
        Callbacks::_connectionChangedCallback = nullptr;
        Callbacks::_updateCallback = nullptr;
        Callbacks::nobodyListens = nullptr;
        Callbacks::pendingDirtyHooks.clear();
    }

    /// A line of the test's own, such as "update A" from inside a node.
    static void add(std::string line) {
        if (current()) current()->lines.push_back(std::move(line));
    }

    /// The lines that begin with `word`, without it, joined by ", "; and forgets everything.
    std::string take(const std::string& word) {
        std::string text;
        for (const std::string& line : lines) {
            if (line.rfind(word + " ", 0) != 0) continue;
            text += (text.empty() ? "" : ", ") + line.substr(word.size() + 1);
        }
        lines.clear();
        return text;
    }
    /// All lines joined by ", "; and forgets them.
    std::string takeAll() {
        std::string text;
        for (const std::string& line : lines) text += (text.empty() ? "" : ", ") + line;
        lines.clear();
        return text;
    }

    std::vector<std::string> lines;
    double updateSeconds = -1.0;

private:
    static CallbackLog*& current() {
        static CallbackLog* log = nullptr;
        return log;
    }
    static void note(const char* word, weft::NestedObject* a, weft::NestedObject* b = nullptr) {
        add(std::string(word) + " " + Net::nameOf(a) + (b ? " " + Net::nameOf(b) : ""));
    }
};

} // namespace support
