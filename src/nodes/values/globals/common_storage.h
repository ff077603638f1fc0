// SPDX-License-Identifier: Apache-2.0
// Global variables: values with a name that every graph of the process can read. One map of names
// for each element type, whose word ("Num", "String") also stands in the names of its node types.
//
//     CommonStorage& globals = CommonStorage::instance();
//     globals.store("Num", "height", *in, false);             // the value itself, not a copy
//     const GlobalVariable found = globals.find("Num", "height");
//     if (found.value) out->show(found.value.get());
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <type_traits>
#include <vector>

#include "graph/graph_scene.h"
#include "nodes/values/copies/created_objects.h"

namespace weft {

/// Keeps one variable: a node of the storage's own network with one attribute, which shows the
/// variable's value. An input, because outputs purge what they show when their node goes.
class SLUICE_API GlobalHolder : public Node {
public:
    GlobalHolder(NetworkManager* manager, const TM_String& name) : Node(manager, name, nullptr) {}

    Attribute& attribute() const { return *inputAttributeAt(0); }
    /// Fills the attribute's own value with a deep copy of `value`, which is of the same class.
    /// Throws what ends a run of `running` that is interrupted.
    virtual void copyValue(const Value& value, const NetworkManager& running) {
        (void)running;
        attribute().value()->copyFrom(&value);
    }
    /// True when the holder made objects for itself, which die with it.
    virtual bool ownsObjects() const { return false; }
    /// Frees them; nobody refers to them afterwards. Before the holder goes.
    virtual void freeObjects() {}
};

template <typename Attr>
class BaseNode : public GlobalHolder {
public:
    BaseNode(NetworkManager* manager, const TM_String& name) : GlobalHolder(manager, name) {
        appendClass<"BaseNode">();
        addInput<Attr>("value", "The value of the variable.");
    }
};

/// Of a type whose values hold pointers; a copy owns the objects that it points to.
template <HoldsObjects Attr>
class BaseNode<Attr> : public GlobalHolder {
public:
    BaseNode(NetworkManager* manager, const TM_String& name) : GlobalHolder(manager, name) {
        appendClass<"BaseNode">();
        attribute_ = addInput<Attr>("value", "The value of the variable.");
    }

    void copyValue(const Value& value, const NetworkManager& running) override {
        objects_.copyAll(static_cast<const PointerValueBase&>(value), attribute_->ownPointers(),
                         running);
    }
    bool ownsObjects() const override { return !objects_.isEmpty(); }
    void freeObjects() override { objects_.freeAll(nullptr, true); }

private:
    Attr* attribute_;
    CreatedObjects<Attr> objects_;
};

/// What a reader gets: a reference of its own on the value, and the types that it may have.
struct GlobalVariable {
    struct Release {
        void operator()(Value* value) const { value->release(); }
    };
    std::unique_ptr<Value, Release> value; ///< null when there is no variable of that name
    SpecializationList allowed;
};

/// The variables of the process, made on first use. They outlive the graphs that set them and go
/// when the process ends; whoever comes later still finds an empty storage.
///
/// All operations may be called from any thread. Values stored by a kernel's thread are always
/// copies, and what such a thread reads is copied once more, so threads of one kernel can set and
/// read variables without harm; whose value counts is up to their order. A value stored by
/// reference is shared like one behind a connection: graphs that use it run on one thread at a
/// time.
class SLUICE_API CommonStorage final : public tidemark::sluice::graph::CommonAttributes {
public:
    static CommonStorage& instance();

    /// Makes the value that `in` shows, or with `copies` a deep copy of it, the variable `name` of
    /// the element type `element`, in place of one of that name. Answers the value stored; null,
    /// and nothing is stored, when `in` shows none or one of another class. `copies` is taken as
    /// set on a kernel's thread. Throws `CopyFailure` when there is no memory for the copy.
    template <typename Attr>
    GlobalVariable store(const TM_String& element, const TM_String& name, const Attr& in,
                         bool copies) {
        return storeIn(makeHolder(&makeNode<Attr>, name), element, in, copies);
    }
    GlobalVariable find(const TM_String& element, const TM_String& name) const;
    /// In the order of the map: by bytes.
    Array<TM_String> names(const TM_String& element) const;
    /// Forgets all variables. Not while a kernel runs.
    void removeAll();

    void visitAttributes(const std::function<void(Attribute&)>& visit) override;

private:
    using Variables = std::map<TM_String, GlobalHolder*>;
    using MakeNode = GlobalHolder* (*)(NetworkManager*, const TM_String& name);
    struct AtExit;

    CommonStorage();

    template <typename Attr>
    static GlobalHolder* makeNode(NetworkManager* manager, const TM_String& name) {
        return new BaseNode<Attr>(manager, name);
    }
    GlobalHolder* makeHolder(MakeNode make, const TM_String& name);
    GlobalVariable storeIn(GlobalHolder* holder, const TM_String& element, const Attribute& in,
                           bool copies);
    static GlobalVariable variableOf(const GlobalHolder& holder);
    void fill(GlobalHolder& holder, const Attribute& in, Value& value, bool copies);
    void insert(const TM_String& element, GlobalHolder* holder, bool fromKernel);
    void discard(const std::vector<GlobalHolder*>& holders);

    mutable std::mutex mutex_; // of everything below, and of the holders
    NetworkManager network_;
    std::map<TM_String, Variables> types_;
    // Replaced by a kernel's thread while others may still use the objects of their copies.
    std::vector<GlobalHolder*> retired_;
};

} // namespace weft
