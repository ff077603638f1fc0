// SPDX-License-Identifier: Apache-2.0
// The variables of the process: storing, finding and forgetting them.
#include "nodes/values/globals/common_storage.h"

#include <new>
#include <typeinfo>
#include <utility>

namespace weft {

namespace {

using Lock = std::lock_guard<std::mutex>;

} // namespace

struct CommonStorage::AtExit {
    explicit AtExit(CommonStorage& storage) : storage(storage) {}
    ~AtExit() { storage.removeAll(); }
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;
    CommonStorage& storage;
};

// Emptied at the end but never destroyed: static scenes that are younger may still ask it.
CommonStorage& CommonStorage::instance() {
    static CommonStorage* const storage = new CommonStorage;
    static const AtExit atExit(*storage);
    return *storage;
}

CommonStorage::CommonStorage() {
    network_.setMonitoring(false);
    // Values come and go on every thread.
    network_.setShared(true);
    install(this);
}

GlobalHolder* CommonStorage::makeHolder(MakeNode make, const TM_String& name) {
    const Lock lock(mutex_);
    GlobalHolder* const holder = make(&network_, name);
    holder->retain();
    return holder;
}

GlobalVariable CommonStorage::storeIn(GlobalHolder* holder, const TM_String& element,
                                      const Attribute& in, bool copies) {
    const bool fromKernel = in.networkManager()->isPrivate();
    Value* const value = in.currentValue();
    const Value& own = *holder->attribute().value();
    if (!value || typeid(*value) != typeid(own)) {
        discard({holder});
        return {};
    }
    try {
        fill(*holder, in, *value, copies || fromKernel);
        GlobalVariable stored = variableOf(*holder);
        insert(element, holder, fromKernel);
        return stored;
    } catch (...) {
        discard({holder});
        throw;
    }
}

void CommonStorage::fill(GlobalHolder& holder, const Attribute& in, Value& value, bool copies) {
    Attribute& attribute = holder.attribute();
    {
        const Lock lock(mutex_);
        // First, because a change of the list would change the type of a value that is shared.
        if (attribute.allowedSpecializations() != in.allowedSpecializations()) {
            attribute.setAllowedSpecializations(in.allowedSpecializations());
        }
        if (!copies) return attribute.setValue(&value);
    }
    try {
        holder.copyValue(value, *in.networkManager());
    } catch (const std::bad_alloc&) {
        throw CopyFailure{0};
    }
}

GlobalVariable CommonStorage::variableOf(const GlobalHolder& holder) {
    Value* const value = holder.attribute().value();
    value->retain();
    return {std::unique_ptr<Value, GlobalVariable::Release>(value),
            holder.attribute().allowedSpecializations()};
}

void CommonStorage::insert(const TM_String& element, GlobalHolder* holder, bool fromKernel) {
    std::vector<GlobalHolder*> unused;
    {
        const Lock lock(mutex_);
        // Room first: behind this point nothing may fail.
        unused.reserve(1);
        retired_.reserve(retired_.size() + 1);
        GlobalHolder*& place = types_[element][holder->name()];
        GlobalHolder* const replaced = std::exchange(place, holder);
        if (replaced) {
            const bool isInUse = fromKernel && replaced->ownsObjects();
            (isInUse ? retired_ : unused).push_back(replaced);
        }
        if (!fromKernel && !retired_.empty()) {
            retired_.insert(retired_.end(), unused.begin(), unused.end());
            unused.clear();
            unused.swap(retired_);
        }
    }
    discard(unused);
}

// Without the lock: what frees objects looks for references to them here as well.
void CommonStorage::discard(const std::vector<GlobalHolder*>& holders) {
    for (GlobalHolder* holder : holders) holder->freeObjects();
    const Lock lock(mutex_);
    for (GlobalHolder* holder : holders) holder->release();
}

GlobalVariable CommonStorage::find(const TM_String& element, const TM_String& name) const {
    const Lock lock(mutex_);
    const auto type = types_.find(element);
    if (type == types_.end()) return {};
    const auto found = type->second.find(name);
    if (found == type->second.end()) return {};
    return variableOf(*found->second);
}

Array<TM_String> CommonStorage::names(const TM_String& element) const {
    const Lock lock(mutex_);
    Array<TM_String> names;
    const auto type = types_.find(element);
    if (type == types_.end()) return names;
    for (const auto& [name, holder] : type->second) names.append(name);
    return names;
}

void CommonStorage::removeAll() {
    std::vector<GlobalHolder*> holders;
    {
        const Lock lock(mutex_);
        holders.swap(retired_);
        for (const auto& [element, variables] : types_) {
            for (const auto& [name, holder] : variables) holders.push_back(holder);
        }
        types_.clear();
    }
    discard(holders);
}

void CommonStorage::visitAttributes(const std::function<void(Attribute&)>& visit) {
    const Lock lock(mutex_);
    for (const auto& [element, variables] : types_) {
        for (const auto& [name, holder] : variables) visit(holder->attribute());
    }
}

} // namespace weft
