// SPDX-License-Identifier: Apache-2.0
// What the array operations have in common: their pins, and the texts that they report.
#pragma once

#include "core/bit_array.h"
#include "nodes/values/arrays/array_elements.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

using weft::BitArrayAttribute;
using weft::NumericAttribute;

/// Base of the operations on arrays whose ports are of class `Port` or derived from it. Pins of
/// that class are made by a function, so that one operation serves every such class, and are of
/// one type.
template <typename Port>
class ArrayOperation : public weft::Node {
public:
    using MakePort = Port* (*)(weft::NetworkManager*, const TM_String& name, weft::Node* parent);

protected:
    using Access = ArrayPort<Port>;
    using Value = typename Access::Value;

    ArrayOperation(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent,
                   MakePort makePort)
        : Node(manager, name, parent), makePort_(makePort) {}

    // Declaration.

    Port* addArrayInput(const char* name, const char* help) {
        Port* port = joined(makePort_(networkManager(), name, this));
        addInputAttribute(port);
        port->describe(help);
        return port;
    }
    Port* addArrayOutput(const char* name, const char* help) {
        Port* port = joined(makePort_(networkManager(), name, this));
        addOutputAttribute(port);
        port->describe(help);
        return port;
    }
    NumericAttribute* addIntegerInput(const char* name, const char* help, int32_t value) {
        auto* pin = addInput<NumericAttribute>(name, help);
        setAttributeAllowedSpecialization(pin, "Integer");
        setDefault(*pin, value);
        return pin;
    }
    NumericAttribute* addIntegerOutput(const char* name, const char* help) {
        auto* pin = addOutput<NumericAttribute>(name, help);
        setAttributeAllowedSpecialization(pin, "Integer");
        return pin;
    }

    // Computing.

    static const Value& read(const Port* port) { return Access::read(*port); }
    static Value* target(const Port* port) { return Access::target(*port); }
    static std::span<const int32_t> integers(const NumericAttribute* pin) {
        return elementsOf<int32_t>(pin->numeric());
    }
    static int32_t firstInteger(const NumericAttribute* pin) {
        return pin->numeric().template valueAt<int32_t>(0);
    }
    /// True when the array that `output` writes is the one that `input` reads.
    static bool isInPlace(const Port* input, const Port* output) {
        return input->currentValue() == output->writeTarget();
    }
    /// Whether to compute an output beside the array. An operation in place is done once, so it
    /// computes everything.
    static bool isWanted(const weft::Attribute* output, const weft::Attribute* asked,
                         bool inPlace) {
        return inPlace || isNeeded(*output, asked);
    }
    /// To be called for every output that was written.
    void written(weft::Attribute* output) {
        output->valueChanged();
        setAttributeIsClean(output, true);
    }
    /// Integers, one for each of `count` positions.
    template <typename Function>
    void writeIntegers(NumericAttribute* pin, uint64_t count, Function function) {
        weft::Numeric* numbers = pin->numericTarget();
        if (!numbers) return;
        WorkMeter meter(*networkManager());
        writeElements<int32_t>(*numbers, {}, [&](Array<int32_t>& array) {
            sizeForWriting(array, count, meter);
            inPieces(count, meter, [&](uint64_t first, uint64_t end) {
                for (uint64_t i = first; i < end; ++i) {
                    array[i] = function(static_cast<uint32_t>(i));
                }
            });
        });
        written(pin);
    }

    // Messages take long: each of them answers an interrupt.
    void reportIndex(int32_t index) {
        pushError(text::format("index is out of range: %d", index));
        networkManager()->pollInterrupt();
    }
    /// The range of a slice of `count` elements; reports what lies outside and answers false.
    bool findSlice(int64_t count, const NumericAttribute* firstPin, const NumericAttribute* sizePin,
                   uint64_t& first, uint64_t& length) {
        const int64_t from = firstInteger(firstPin);
        const int64_t size = firstInteger(sizePin);
        const int64_t wanted = size < 0 ? count - from : size;
        if (from < 0 || from >= count) {
            reportInput(firstPin, static_cast<int32_t>(from));
            return false;
        }
        if (from + wanted - 1 >= count) {
            reportInput(sizePin, static_cast<int32_t>(size));
            return false;
        }
        first = static_cast<uint64_t>(from);
        length = static_cast<uint64_t>(wanted);
        return true;
    }
    void reportInput(const weft::Attribute* input, int32_t value) {
        pushError(text::format("Input '%s' is out of range: %d", input->name().c_str(), value));
    }

private:
    Port* joined(Port* port) {
        if (first_) addAttributeSpecializationLink(first_, port);
        if (!first_) first_ = port;
        return port;
    }

    MakePort makePort_;
    Port* first_ = nullptr;
};

/// The operation `Operation` for ports of class `Attr`, whose values are of class `Value`.
template <template <typename> typename Operation, typename Attr, typename Value>
class ArrayOf : public Operation<ArrayPortOf<Attr>> {
    using Port = ArrayPortOf<Attr>;
    static_assert(std::is_base_of_v<typename ArrayPort<Port>::Value, Value>);

public:
    ArrayOf(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Operation<Port>(manager, name, parent, makePort) {}

private:
    static Port* makePort(weft::NetworkManager* manager, const TM_String& name,
                          weft::Node* parent) {
        return new Attr(manager, name, parent);
    }
};

} // namespace tidemark::sluice::graph
