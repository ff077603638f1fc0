// SPDX-License-Identifier: Apache-2.0
// Networks of logic nodes in a few words:
//
//     Net net;
//     net.add<AddNode>("A");
//     net.link("R.real", "A.in0");
//     net.set<float>("R.in", 2.5f);
#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "core/node.h"
#include "core/numeric.h"

namespace support {

using tidemark::TM_String;

/// A root node whose children are addressed by name, attributes as "node.attribute".
class Net {
public:
    Net() : root(new weft::Node(&manager, "root", nullptr)) { root->retain(); }
    ~Net() { root->release(); }
    Net(const Net&) = delete;
    Net& operator=(const Net&) = delete;

    template <typename N, typename... Arguments>
    N* add(const TM_String& name, Arguments&&... arguments) {
        N* node = new N(&manager, name, root, std::forward<Arguments>(arguments)...);
        root->addNode(node);
        return node;
    }

    weft::Node* node(const std::string& name) const {
        weft::Node* found = root->findNode(name);
        if (!found) throw std::invalid_argument("no node " + name);
        return found;
    }

    weft::Attribute* at(const std::string& path) const {
        const std::size_t point = path.find('.');
        weft::Attribute* found = node(path.substr(0, point))->findAttribute(path.substr(point + 1));
        if (!found) throw std::invalid_argument("no attribute " + path);
        return found;
    }

    /// Makes the connection; a refusal fails the test. The answer of `NetworkManager::connect`.
    bool link(const std::string& from, const std::string& to) {
        EXPECT_EQ(refusal(at(from), at(to)), "") << from << " > " << to;
        return manager.connect(at(from), at(to), nullptr);
    }

    /// The reason that `canConnect` gives, empty when it allows the connection.
    TM_String refusal(weft::Attribute* from, weft::Attribute* to) {
        const weft::Retained<weft::ErrorObject> error(new weft::ErrorObject(&manager));
        const bool allowed = manager.canConnect(from, to, error.get());
        EXPECT_EQ(allowed, error->message().empty());
        return error->message();
    }
    TM_String refusal(const std::string& from, const std::string& to) {
        return refusal(at(from), at(to));
    }

    void cut(const std::string& input) { at(input)->disconnectSource(); }

    /// Writes the own number of an attribute as a user does.
    template <typename T>
    void set(const std::string& path, const T& number) {
        static_cast<weft::NumericAttribute*>(at(path))->ownNumeric().setValue<T>(number);
        at(path)->valueChanged();
    }

    /// What a reader of the attribute sees, without pulling it.
    template <typename T>
    T seen(const std::string& path) const {
        return static_cast<weft::NumericAttribute*>(at(path))->numeric().value<T>();
    }

    /// Current type names, separated by blanks.
    std::string types(const std::string& path) const {
        std::string text;
        for (const TM_String& name : at(path)->specializations().names()) {
            text += (text.empty() ? "" : " ") + name;
        }
        return text;
    }

    std::vector<weft::Attribute*> all() const {
        std::vector<weft::Attribute*> found;
        for (const auto entry : manager.objects()) {
            if (!entry.value->isAttributeObject()) continue;
            found.push_back(static_cast<weft::Attribute*>(entry.value));
        }
        return found;
    }

    /// Names of the clean attributes in order of their ids, separated by blanks.
    std::string clean() const { return listed(true); }
    std::string dirty() const { return listed(false); }

    void setAllClean(bool clean) {
        for (weft::Attribute* attribute : all()) attribute->setClean(clean);
    }

    /// "node.attribute", or the name alone without a parent.
    static std::string nameOf(const weft::NestedObject* object) {
        const bool hasOwner = object->isAttributeObject() && object->parent();
        return hasOwner ? object->parent()->name() + "." + object->name() : object->name();
    }

    template <typename List>
    static std::string namesOf(const List& list) {
        std::string text;
        for (const auto* entry : list) text += (text.empty() ? "" : " ") + nameOf(entry);
        return text;
    }

    weft::NetworkManager manager;
    weft::Node* root;

private:
    std::string listed(bool clean) const {
        std::vector<weft::Attribute*> chosen;
        for (weft::Attribute* attribute : all()) {
            if (attribute->isClean() == clean) chosen.push_back(attribute);
        }
        return namesOf(chosen);
    }
};

} // namespace support
