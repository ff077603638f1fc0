// SPDX-License-Identifier: Apache-2.0
// The numbers of keys, read and written.
#include <array>

#include "core/bit_array.h"
#include "graph/define_node.h"
#include "nodes/values/arrays/array_elements.h"
#include "nodes/values/curves/curve_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::KeyAttribute;
using weft::NetworkManager;
using weft::NumericAttribute;

namespace {

// A real property of keys: its pin, and where it is.
struct Property {
    const char* name;
    const char* help;
    double (PointInfo::*read)() const;
    void (PointInfo::*write)(double);
};

// In the order of the pins; the type stands behind the first two.
constexpr std::array properties = {
    Property{"x", "The x coordinate of the key. It is the time value, in seconds.", &PointInfo::x,
             &PointInfo::setX},
    Property{"y", "The y coordinate of the key. It is the value at position x.", &PointInfo::y,
             &PointInfo::setY},
    Property{"ease from", "The Ease From value. To smooth the way the curve arrives at this key.",
             &PointInfo::easeFrom, &PointInfo::setEaseFrom},
    Property{"ease to", "The Ease From value. To smooth the way the curve exits this key.",
             &PointInfo::easeTo, &PointInfo::setEaseTo},
    Property{"incoming",
             "The Incoming value. For Bezier type keys, it changes the angle of the tangent at the "
             "left of the key.",
             &PointInfo::incoming, &PointInfo::setIncoming},
    Property{"outgoing",
             "The Outgoing value. For Bezier type keys, it changes the angle of the tangent at the "
             "right of the key.",
             &PointInfo::outgoing, &PointInfo::setOutgoing},
    Property{"t", "The Tension of a TCB key.", &PointInfo::tension, &PointInfo::setTension},
    Property{"c", "The Continuity of a TCB key.", &PointInfo::continuity,
             &PointInfo::setContinuity},
    Property{"b", "The Bias of a TCB key.", &PointInfo::bias, &PointInfo::setBias},
};
constexpr std::size_t propertiesBeforeType = 2;
constexpr const char* typeHelp = "The type of the key. 'linear', 'tcb', 'bezier' or 'step'.";
constexpr const char* unifyHelp =
    "True to unify the tangent at both sides of the key in Bezier and TCB mode.";

using Pins = std::array<NumericAttribute*, properties.size()>;

} // namespace

class GetKeyProperties : public weft::Node {
public:
    GetKeyProperties(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetKeyProperties">();
        describe("This node returns all the input'key' properties.");
        key_ = addInput<KeyAttribute>("key", "The keys to examine.");
        for (std::size_t p = 0; p < properties.size(); ++p) {
            if (p == propertiesBeforeType) type_ = addOutput<NumericAttribute>("type", typeHelp);
            reals_[p] = addOutput<NumericAttribute>(properties[p].name, properties[p].help);
            setAttributeAllowedSpecialization(reals_[p], "Real");
        }
        setAttributeAllowedSpecialization(type_, "Integer");
        unify_ = addOutput<BitArrayAttribute>("unify tan", unifyHelp);
        setAttributeAffectsAllOutputs(key_);
    }

    void update(Attribute* attribute) override {
        key_->pull();
        for (uint32_t i = 0; i < key_->pointers().size(); ++i) {
            if (!key_->keyAt(i)) reportNullElement(*this, i);
        }
        for (std::size_t p = 0; p < properties.size(); ++p) {
            writeNumbers<float>(*reals_[p], attribute, [p](const PointInfo& key) {
                return static_cast<float>((key.*properties[p].read)());
            });
        }
        writeNumbers<int32_t>(*type_, attribute, [](const PointInfo& key) { return key.type(); });
        writeUnify(attribute);
    }

private:
    // Calls `write` with index and key of every element that is not null.
    template <typename Write>
    void forEachKey(Write write) {
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < key_->pointers().size(); ++i) {
            if (const PointInfo* key = key_->keyAt(i)) write(i, *key);
            meter.add(1);
        }
    }
    void written(Attribute& out) {
        out.valueChanged();
        setAttributeIsClean(&out, true);
    }

    // Null keys leave their entries as they were, here and below.
    template <typename T, typename Read>
    void writeNumbers(NumericAttribute& out, const Attribute* asked, Read read) {
        weft::Numeric* target = out.numericTarget();
        if (!target || !isWritten(out, asked)) return;
        writeElements<T>(*target, {}, [&](Array<T>& numbers) {
            numbers.resize(key_->pointers().size());
            forEachKey([&](uint32_t i, const PointInfo& key) { numbers[i] = read(key); });
        });
        written(out);
    }

    void writeUnify(const Attribute* asked) {
        weft::BitArrayValue* target = unify_->bitsTarget();
        if (!target || !isWritten(*unify_, asked)) return;
        const UnfinishedOutput unfinished(target, {});
        target->resize(key_->pointers().size(), false);
        forEachKey(
            [&](uint32_t i, const PointInfo& key) { target->setBit(i, key.unifiesTangents()); });
        written(*unify_);
    }

    KeyAttribute* key_;
    Pins reals_;
    NumericAttribute* type_;
    BitArrayAttribute* unify_;
};

class SetKeyProperties : public weft::Node {
public:
    SetKeyProperties(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"SetKeyProperties">();
        describe("This node sets the input 'key' properties. Only the properties related to input "
                 "pins with an input connection are modified for the keys.");
        key_ = addInput<KeyAttribute>("key", "The keys to change.");
        for (std::size_t p = 0; p < properties.size(); ++p) {
            if (p == propertiesBeforeType) type_ = addInput<NumericAttribute>("type", typeHelp);
            reals_[p] = addInput<NumericAttribute>(properties[p].name, properties[p].help);
            setAttributeAllowedSpecialization(reals_[p], "Real");
        }
        setAttributeAllowedSpecialization(type_, "Integer");
        setDefault(*type_, tm_spline::tcb);
        unify_ = addInput<BitArrayAttribute>("unify tan", unifyHelp);
        outKey_ = addOutput<KeyAttribute>("out key", "The changed keys.");
        setAttributeAffectAllOutputsByAllInputs();
        connectInternalAttributes(key_, outKey_);
    }

    void update(Attribute*) override {
        Array<Attribute*> inputs;
        inputAttributes(inputs);
        for (Attribute* input : inputs) input->pull();
        checkSizes(inputs);
        for (uint32_t i = 0; i < key_->pointers().size(); ++i) {
            if (!key_->keyAt(i)) reportNullElement(*this, i);
        }
        for (std::size_t p = 0; p < properties.size(); ++p) {
            forEachKey(*reals_[p], [&](PointInfo& key, uint32_t i) {
                (key.*properties[p].write)(reals_[p]->numeric().valueAt<float>(i));
            });
        }
        forEachKey(*type_, [&](PointInfo& key, uint32_t i) {
            key.setType(type_->numeric().valueAt<int32_t>(i));
        });
        forEachKey(*unify_, [&](PointInfo& key, uint32_t i) {
            key.setUnifiesTangents(unify_->bits().valueAt(i));
        });
        outKey_->valueChanged();
        setAttributeIsClean(outKey_, true);
    }

private:
    void checkSizes(const Array<Attribute*>& inputs) {
        const uint32_t keys = key_->pointers().size();
        for (const Attribute* input : inputs) {
            if (input == key_ || !hasRealSource(*input)) continue;
            const uint32_t size = input->currentValue() ? input->currentValue()->size() : 0;
            if (size == keys) continue;
            pushWarning(text::format("Attributes '%s' and '%s' size differs. (%d, %d)",
                                     key_->name().c_str(), input->name().c_str(),
                                     static_cast<int>(keys), static_cast<int>(size)));
        }
    }

    // Calls `change` with every key and its index, if the property's pin has a source.
    template <typename Change>
    void forEachKey(const Attribute& property, Change change) {
        if (!hasRealSource(property)) return;
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < key_->pointers().size(); ++i) {
            if (PointInfo* key = key_->keyAt(i)) change(*key, i);
            meter.add(1);
        }
    }

    KeyAttribute* key_;
    Pins reals_;
    NumericAttribute* type_;
    BitArrayAttribute* unify_;
    KeyAttribute* outKey_;
};

SLUICE_DEFINE_NODE(GetKeyProperties)
SLUICE_DEFINE_NODE(SetKeyProperties)

} // namespace tidemark::sluice::graph
