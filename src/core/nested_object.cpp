// SPDX-License-Identifier: Apache-2.0
// Names and children of logic objects.
#include "core/nested_object.h"

#include <algorithm>

#include "core/callbacks.h"
#include "core/network_manager.h"
#include "core/node.h"

namespace weft {

namespace {

std::size_t finalDigits(const TM_String& name) {
    std::size_t first = name.size();
    while (first > 0 && name[first - 1] >= '0' && name[first - 1] <= '9') --first;
    return name.size() - first;
}

// `digits` plus one, at least two digits wide. In text, because a name may hold any number.
TM_String incremented(TM_String digits) {
    std::size_t at = digits.size();
    while (at > 0 && digits[at - 1] == '9') digits[--at] = '0';
    if (at == 0) {
        digits.insert(0, 1, '1');
    } else {
        ++digits[at - 1];
    }
    const std::size_t significant = std::min(digits.find_first_not_of('0'), digits.size() - 1);
    digits.erase(0, significant);
    return digits.size() < 2 ? "0" + digits : digits;
}

} // namespace

NestedObject::NestedObject(NetworkManager* manager, Node* parent)
    : Object(manager), parent_(parent) {}

void NestedObject::renameTo(const TM_String& name) {
    TM_String unique = uniqueName(name);
    if (parent_) {
        parent_->renameChild(*this, std::move(unique));
    } else {
        name_ = std::move(unique);
    }
    const NetworkManager* manager = networkManager();
    if (Callbacks::_objectRenamedCallback && manager && manager->monitoring() && !isDeleted()) {
        Callbacks::_objectRenamedCallback(this, name_);
    }
}

TM_String NestedObject::fullName() const {
    Array<const NestedObject*> path;
    for (const NestedObject* step = this; step; step = step->parent_) path.append(step);
    TM_String joined = path.back()->name_;
    for (uint32_t i = path.size() - 1; i > 0; --i) joined += "." + path[i - 1]->name_;
    return joined;
}

TM_String NestedObject::uniqueName(const TM_String& name) const {
    return parent_ ? parent_->freeChildName(name, const_cast<NestedObject&>(*this)) : name;
}

TM_String NestedObject::nextName(const TM_String& name) {
    const std::size_t count = finalDigits(name);
    if (count == 0) return name + "01";
    const TM_String digits = name.substr(name.size() - count);
    return tidemark::text::replaceAll(name, digits, "") + incremented(digits);
}

Array<TM_String> NestedObject::typeNames() const {
    Array<TM_String> names;
    for (const ClassChain* link = classChain_; link; link = link->base) {
        names.append(TM_String(link->name));
    }
    std::reverse(names.begin(), names.end());
    return names;
}

bool NestedObject::hasSameTypeNames(const NestedObject& other) const {
    const ClassChain* a = classChain_;
    const ClassChain* b = other.classChain_;
    while (a && b && a != b) {
        if (a->name != b->name) return false;
        a = a->base;
        b = b->base;
    }
    return a == b;
}

SmallList<NestedObject*>& NestedObject::childList() {
    static SmallList<NestedObject*> none;
    return none;
}

void NestedObject::addChild(NestedObject* child) {
    SmallList<NestedObject*>& list = childList();
    if (&list == &NestedObject::childList()) return;
    // The list may be long: it is searched only for a child that can stand in it.
    const bool isOthers = child->parent_ && child->parent_ != this;
    if (child->holders_ > (isOthers ? 1 : 0) && list.contains(child)) return;
    // On its way from another parent, which looks it up under its place there.
    if (child->holders_ > 0 && isOthers) child->parent_->childRemoving(*child);
    child->childOrder_ = list.empty() ? 0 : list.back()->childOrder_ + 1;
    list.append(child);
    ++child->holders_;
    child->retain();
    childAdded(*child);
}

void NestedObject::removeChild(NestedObject* child) {
    SmallList<NestedObject*>& list = childList();
    const int64_t index = list.indexOf(child);
    if (index < 0) return;
    childRemoving(*child);
    list.removeAt(static_cast<uint32_t>(index));
    --child->holders_;
    child->release();
}

} // namespace weft
