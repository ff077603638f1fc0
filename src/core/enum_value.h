// SPDX-License-Identifier: Apache-2.0
// Choices from a list of options, and the port that carries them.
//
//     order_ = addInput<EnumAttribute>("order", "Which way round.");
//     order_->setOptions({"ascending", "descending"});
//     ...
//     if (order_->enumValue(0) == 1) reverse();
#pragma once

#include <initializer_list>
#include <map>

#include "core/attribute.h"

namespace weft {

/// An array of chosen keys, and the label of every key that may be chosen. A fresh value has chosen
/// key 0 and has no options.
class SLUICE_API Enum : public Value {
public:
    static const ValueKind kind;
    using Options = std::map<int32_t, TM_String>;

    /// Answer of look-ups that find nothing.
    static constexpr int32_t noKey = -1;

    explicit Enum(NetworkManager* manager);

    // Value.

    uint32_t size() const override { return keys_.size(); }
    /// Keys and options.
    void copyFrom(const Value* other) override;
    /// `[{0:"first label",1:"second label",},` and the chosen keys, separated by commas.
    TM_String asString() const override;
    /// Reads what `asString` writes; any other text changes nothing.
    void fromString(const TM_String& text) override;
    /// Key 0 alone is chosen; the options stay, they belong to the declaration of the port.
    void purge() override;
    uint64_t estimatedSize() const override;
    void pin(bool pinned) override { keys_.pin(pinned); }
    bool isPinned() const override { return keys_.isPinned(); }

    const Array<int32_t>& keys() const { return keys_; }
    Array<int32_t>& refKeys() { return keys_; }
    /// Chosen key `index`; beyond the end the last one, `noKey` when nothing is chosen.
    int32_t keyAt(uint32_t index) const;
    /// Makes `key` the only chosen one.
    void setKey(int32_t key);

    /// In the order of the keys.
    const Options& options() const { return options_; }
    void setOption(int32_t key, const TM_String& label) { options_[key] = label; }
    /// Empty for a key that is no option.
    TM_String label(int32_t key) const;
    /// The key of the first option with this label, or `noKey`.
    int32_t keyOf(std::string_view label) const;

private:
    Options options_;
    Array<int32_t> keys_;
    int32_t inlineKey_ = 0; // what `keys_` begins on
};

/// A list port. Unconnected, or connected to another list, it is a list; connected to integers or
/// strings it takes its keys from there. It may be "List", "Integer" or "String".
class SLUICE_API EnumAttribute : public Attribute {
public:
    EnumAttribute(NetworkManager* manager, const TM_String& name, Node* parent);

    /// The chosen key number `index`, to be asked after a pull: of the list, the connected integer,
    /// or the key whose label is the connected string. Shorter arrays repeat their last element.
    /// `Enum::noKey` for an unknown label and while a connected source has no single type.
    int32_t enumValue(uint32_t index) const;

    /// Declares the options 0, 1, 2, ... with these labels.
    void setOptions(std::initializer_list<const char*> labels);
    /// The attribute's own choice and options.
    Enum& ownEnum() const { return *static_cast<Enum*>(value()); }
};

} // namespace weft
