// SPDX-License-Identifier: Apache-2.0
// Loop nodes in name only: they write down what a compound asks of them.
#pragma once

#include <string>
#include <vector>

#include "core/node.h"

namespace control_tests {

using tidemark::TM_String;

template <weft::ClassName kind>
class FakeIterator : public weft::Node {
public:
    FakeIterator(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<kind>();
        start = addInput<weft::PassThroughAttribute>("start");
        index = addOutput<weft::PassThroughAttribute>("index");
        element = addOutput<weft::PassThroughAttribute>("element");
        setAttributeAffectAllOutputsByAllInputs();
    }
    void update(weft::Attribute*) override { ++updates; }
    void iterate(weft::Attribute* attribute) override { iterated.push_back(attribute); }

    weft::Attribute* start;
    weft::Attribute* index;
    weft::Attribute* element;
    int updates = 0;
    std::vector<weft::Attribute*> iterated;
};

using FakeFor = FakeIterator<"For">;
using FakeKernel = FakeIterator<"Kernel">;

/// Derived from a loop node, and therefore none.
class DerivedFor : public FakeFor {
public:
    DerivedFor(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : FakeFor(manager, title, parent) {
        appendClass<"DerivedFor">();
    }
};

/// Passes its inputs to its output in name, and counts how often it is asked.
class Through : public weft::Node {
public:
    Through(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<"Through">();
        in = addInput<weft::PassThroughAttribute>("in");
        in2 = addInput<weft::PassThroughAttribute>("in2");
        out = addOutput<weft::PassThroughAttribute>("out");
        setAttributeAffectAllOutputsByAllInputs();
    }
    void update(weft::Attribute*) override {
        ++updates;
        in->pull();
        in2->pull();
    }

    weft::Attribute* in;
    weft::Attribute* in2;
    weft::Attribute* out;
    int updates = 0;
};

} // namespace control_tests
