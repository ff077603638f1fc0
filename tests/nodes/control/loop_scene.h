// SPDX-License-Identifier: Apache-2.0
// A compound with a loop, as most tests of loop nodes need it.
#pragma once

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "control_scene.h"

namespace control_tests {

/// A number in, the same number out; the test sees every update and may do something of its own.
class Tap : public weft::Node {
public:
    Tap(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<"Tap">();
        in = addInput<weft::NumericAttribute>("in");
        out = addOutput<weft::NumericAttribute>("out");
        setAttributeAllowedSpecialization(in, "Integer");
        setAttributeAllowedSpecialization(out, "Integer");
        setAttributeAffect(in, out);
    }
    void update(weft::Attribute*) override {
        in->pull();
        const int32_t number = in->numeric().value<int32_t>();
        seen.push_back(number);
        if (onUpdate) onUpdate(number);
        if (weft::Numeric* target = out->numericTarget()) target->setValue<int32_t>(number);
    }
    using Node::setUpdateEnabled;

    weft::NumericAttribute* in;
    weft::NumericAttribute* out;
    std::vector<int32_t> seen;
    std::function<void(int32_t)> onUpdate;
};

/// True from a number on.
class AtLeast : public weft::Node {
public:
    AtLeast(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<"AtLeast">();
        in = addInput<weft::NumericAttribute>("in");
        reached = addOutput<weft::BitArrayAttribute>("reached");
        setAttributeAllowedSpecialization(in, "Integer");
        setAttributeAffect(in, reached);
    }
    void update(weft::Attribute*) override {
        in->pull();
        reached->ownBits().setBit(0, in->numeric().value<int32_t>() >= limit);
    }

    weft::NumericAttribute* in;
    weft::BitArrayAttribute* reached;
    int32_t limit = 2;
};

/// S > C.x, and in C: IO.x > A.in0, F.current index > A.in1, A.result > IO.y; C.y > E. S is 10 and
/// F counts from 0 to 3.
class LoopScene : public ControlScene {
public:
    LoopScene() {
        add("Integer", "S");
        Node* compound = add("Compound", "C");
        add("CompoundInterface", "IO", compound);
        add("For", "F", compound);
        add("Add", "A", compound);
        add("Evaluator", "E");
        wall("C.IO", false, "y");
        wall("C.IO", true, "x");
        link("S.integer", "C.x");
        link("C.IO.x", "C.A.in0");
        link("C.F.current index", "C.A.in1");
        link("C.A.result", "C.IO.y");
        link("C.y", "E.evaluate");
        set("S.in", 10);
        count(0, 4, 1);
    }
    void set(const TM_String& path, int value) { pin(path)->setIntValue(value); }
    void count(int start, int stop, int step, const TM_String& loop = "C.F") {
        set(loop + ".start", start);
        set(loop + ".stop", stop);
        set(loop + ".step", step);
    }
    template <typename Logic>
    Logic* logic(const char* type, const TM_String& name, const TM_String& owner) {
        Node* above = owner.empty() ? nullptr : node(owner);
        return static_cast<Logic*>(enter(new GraphNodeOf<Logic>(type), name, above)->getCoreNode());
    }
    /// A node in C that sees every index, and feeds an output of C of its own.
    Tap* tapIndex() {
        Tap* tap = logic<Tap>("Tap", "T", "C");
        link("C.F.current index", "C.T.in");
        wall("C.IO", false, "t");
        link("C.T.out", "C.IO.t");
        return tap;
    }
    /// Runs the scene; how often each node was updated, in order of names.
    std::string updateCounts() {
        std::map<std::string, int> counts;
        std::istringstream updates(updatesOfRun());
        for (std::string line; std::getline(updates >> std::ws, line, ',');) {
            ++counts[line.substr(0, line.find('.'))];
        }
        std::string text;
        for (const auto& [name, count] : counts) {
            text += (text.empty() ? "" : ", ") + name + " " + std::to_string(count);
        }
        return text;
    }
    int ask() {
        scene.run();
        return integer("E.evaluate");
    }
};

} // namespace control_tests
