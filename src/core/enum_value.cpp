// SPDX-License-Identifier: Apache-2.0
// Choices, their text form, and where a list port takes its keys from.
#include "core/enum_value.h"

#include "core/numeric.h"
#include "core/string_value.h"

namespace weft {

namespace text = tidemark::text;

namespace {

constexpr std::string_view opening = "[{";
constexpr std::string_view closing = "},";

// Takes `token` from the front of `rest`; false when it begins otherwise.
bool skip(std::string_view& rest, std::string_view token) {
    if (rest.substr(0, token.size()) != token) return false;
    rest.remove_prefix(token.size());
    return true;
}

// Takes `key:"label",` from the front of `rest`.
bool readOption(std::string_view& rest, Enum::Options& options) {
    const std::size_t colon = rest.find(':');
    if (colon == std::string_view::npos) return false;
    const int32_t key = text::toInt32(rest.substr(0, colon));
    rest.remove_prefix(colon + 1);
    const std::size_t end = rest.find("\",");
    if (!skip(rest, "\"") || end == std::string_view::npos || end == 0) return false;
    options[key] = TM_String(rest.substr(0, end - 1));
    rest.remove_prefix(end + 1);
    return true;
}

} // namespace

const ValueKind Enum::kind{"Enum"};

Enum::Enum(NetworkManager* manager) : Value(manager, kind) { keys_.borrow(&inlineKey_, 1, 1); }

void Enum::copyFrom(const Value* other) {
    const Enum* list = valueAs<Enum>(other);
    if (!list || list == this) return;
    options_ = list->options_;
    keys_ = list->keys_;
}

TM_String Enum::asString() const {
    TM_String out(opening);
    for (const auto& [key, label] : options_) {
        out += std::to_string(key) + ":\"" + label + "\",";
    }
    out += closing;
    for (uint32_t i = 0; i < keys_.size(); ++i) {
        if (i > 0) out += ',';
        out += std::to_string(keys_[i]);
    }
    return out;
}

void Enum::fromString(const TM_String& text) {
    std::string_view rest = text;
    if (!skip(rest, opening)) return;
    Options options;
    while (!skip(rest, closing)) {
        if (!readOption(rest, options)) return;
    }
    Array<int32_t> keys;
    if (!rest.empty()) {
        for (const TM_String& piece : text::split(rest, ",")) keys.append(text::toInt32(piece));
    }
    options_ = std::move(options);
    keys_ = keys;
}

void Enum::purge() {
    keys_.reset();
    inlineKey_ = 0;
    keys_.borrow(&inlineKey_, 1, 1);
}

uint64_t Enum::estimatedSize() const {
    uint64_t bytes = uint64_t(keys_.capacity()) * sizeof(int32_t);
    for (const auto& [key, label] : options_) bytes += sizeof(key) + label.size() + 1;
    return bytes;
}

int32_t Enum::keyAt(uint32_t index) const {
    if (keys_.empty()) return noKey;
    return keys_[index < keys_.size() ? index : keys_.size() - 1];
}

void Enum::setKey(int32_t key) {
    keys_.resize(1);
    keys_[0] = key;
}

TM_String Enum::label(int32_t key) const {
    const auto found = options_.find(key);
    return found == options_.end() ? TM_String() : found->second;
}

int32_t Enum::keyOf(std::string_view label) const {
    for (const auto& [key, own] : options_) {
        if (own == label) return key;
    }
    return noKey;
}

EnumAttribute::EnumAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : Attribute(manager, name, parent) {
    appendClass<"EnumAttribute">();
    initializeValue(new Enum(manager));
    static const SpecializationList types{"List", "Integer", "String"};
    initializeSpecializations(types);
}

int32_t EnumAttribute::enumValue(uint32_t index) const {
    if (source() && !isSpecialized()) return Enum::noKey;
    // The class of the value decides: it is what the one type of a source promises, and a source
    // that breaks the promise has no key.
    if (const Enum* list = valueAs<Enum>(currentValue())) return list->keyAt(index);
    if (const Numeric* number = valueAs<Numeric>(currentValue())) {
        return number->valueAt<int32_t>(index);
    }
    if (const StringValue* strings = valueAs<StringValue>(currentValue())) {
        const Enum* own = valueAs<Enum>(value());
        return own ? own->keyOf(strings->valueAt(index)) : Enum::noKey;
    }
    return Enum::noKey;
}

void EnumAttribute::setOptions(std::initializer_list<const char*> labels) {
    int32_t key = 0;
    for (const char* label : labels) ownEnum().setOption(key++, label);
}

} // namespace weft
