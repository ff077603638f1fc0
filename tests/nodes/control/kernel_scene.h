// SPDX-License-Identifier: Apache-2.0
// Scenes with a kernel, and node types of the test that its threads' copies can make.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/string_value.h"
#include "graph/node_factory.h"
#include "loop_scene.h"

namespace control_tests {

/// Registered while it lives, so that reading makes nodes of it as well.
template <typename Logic>
class RegisteredType {
public:
    explicit RegisteredType(const char* type) : factory_(new Factory(type)) {
        SceneManager::instance().registerNodeFactory(factory_);
    }
    ~RegisteredType() {
        SceneManager::instance().unregisterNodeFactory(factory_);
        delete factory_;
    }
    RegisteredType(const RegisteredType&) = delete;
    RegisteredType& operator=(const RegisteredType&) = delete;

private:
    class Factory : public tidemark::sluice::graph::NodeFactory {
    public:
        explicit Factory(const char* type) : NodeFactory(type, {"Test"}), type_(type) {}
        tidemark::sluice::graph::NodeBase* createNode() override {
            return prepare(new GraphNodeOf<Logic>(type_));
        }

    private:
        const char* type_;
    };
    Factory* factory_;
};

/// element = array[index]
class GetElement : public weft::Node {
public:
    GetElement(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<"GetElement">();
        array = addInput<weft::NumericAttribute>("array");
        index = addInput<weft::NumericAttribute>("index");
        element = addOutput<weft::NumericAttribute>("element");
        setAttributeAllowedSpecialization(array, "Real");
        setAttributeAllowedSpecialization(index, "Integer");
        setAttributeAllowedSpecialization(element, "Real");
        setAttributeAffectAllOutputsByAllInputs();
    }
    void update(weft::Attribute*) override {
        array->pull();
        index->pull();
        const int32_t place = index->numeric().value<int32_t>();
        element->numericTarget()->setValue<float>(array->numeric().valueAt<float>(place));
    }
    weft::NumericAttribute* array;
    weft::NumericAttribute* index;
    weft::NumericAttribute* element;
};

/// out array = array with one element changed; in place when internally connected.
class SetElement : public weft::Node {
public:
    SetElement(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<"SetElement">();
        array = addInput<weft::NumericAttribute>("array");
        index = addInput<weft::NumericAttribute>("index");
        element = addInput<weft::NumericAttribute>("element");
        out = addOutput<weft::NumericAttribute>("out array");
        for (weft::Attribute* real : {array, element, out}) {
            setAttributeAllowedSpecialization(real, "Real");
        }
        setAttributeAllowedSpecialization(index, "Integer");
        addAttributeAllowedPassThrough(array, out);
        setAttributeAffectAllOutputsByAllInputs();
    }
    void update(weft::Attribute*) override {
        for (weft::Attribute* input : refInputAttributes()) input->pull();
        weft::Numeric* target = out->numericTarget();
        if (target != array->currentValue()) target->copyFrom(array->currentValue());
        const auto place = static_cast<uint32_t>(index->numeric().value<int32_t>());
        if (place >= target->size() && place < 1000) target->resize(place + 1);
        target->setValueAt<float>(place, element->numeric().value<float>());
    }
    weft::NumericAttribute* array;
    weft::NumericAttribute* index;
    weft::NumericAttribute* element;
    weft::NumericAttribute* out;
};

/// result = in, and writes down what every update saw: (thread, number).
class Note : public weft::Node {
public:
    Note(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<"Note">();
        in = addInput<weft::NumericAttribute>("in");
        result = addOutput<weft::NumericAttribute>("result");
        setAttributeAllowedSpecialization(in, "Integer");
        setAttributeAllowedSpecialization(result, "Integer");
        setAttributeAffect(in, result);
    }
    void update(weft::Attribute*) override {
        in->pull();
        const int32_t number = in->numeric().value<int32_t>();
        note(number);
        if (onUpdate) onUpdate(*this, number);
        result->numericTarget()->setValue<int32_t>(number);
    }
    static void note(int32_t number) {
        const std::lock_guard<std::mutex> lock(mutex);
        noted.insert(number);
        ++updates;
    }
    static void forget() {
        noted.clear();
        updates = 0;
        onUpdate = nullptr;
    }
    static inline std::mutex mutex;
    static inline std::multiset<int32_t> noted;
    static inline int updates = 0;
    static inline std::function<void(Note&, int32_t)> onUpdate;

    weft::NumericAttribute* in;
    weft::NumericAttribute* result;
};

/// text = the number in words of its own, ten letters long.
class Spell : public weft::Node {
public:
    Spell(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<"Spell">();
        in = addInput<weft::NumericAttribute>("in");
        text = addOutput<weft::StringAttribute>("text");
        setAttributeAllowedSpecialization(in, "Integer");
        setAttributeAffect(in, text);
    }
    void update(weft::Attribute*) override {
        in->pull();
        const int32_t number = in->numeric().value<int32_t>();
        text->stringsTarget()->setValue("a text too long to lie in place " +
                                        std::to_string(number));
    }
    weft::NumericAttribute* in;
    weft::StringAttribute* text;
};

/// The types above, registered.
struct KernelTypes {
    RegisteredType<GetElement> get{"GetElement"};
    RegisteredType<SetElement> set{"SetElement"};
    RegisteredType<Note> note{"Note"};
    RegisteredType<Spell> spell{"Spell"};
};

/// S > C.x, and in C: IO.x > K.array; C.y > E, where the test wires IO.y.
class KernelScene : public ControlScene {
public:
    explicit KernelScene(std::vector<float> elements = {1, 2, 3, 4}) {
        Note::forget();
        Node* source = add("Real", "S");
        Node* compound = add("Compound", "C");
        add("CompoundInterface", "IO", compound);
        add("Kernel", "K", compound);
        add("Evaluator", "E");
        wall("C.IO", false, "y");
        wall("C.IO", true, "x");
        link("S.real", "C.x");
        link("C.IO.x", "C.K.array");
        link("C.y", "E.evaluate");
        (void)source;
        setArray(elements);
    }
    void setArray(const std::vector<float>& elements) { fill("S.in", elements); }
    void fill(const TM_String& path, const std::vector<float>& elements) {
        Array<float> array;
        for (const float element : elements) array.append(element);
        static_cast<weft::NumericAttribute*>(at(path))->ownNumeric().setValues<float>(array);
        at(path)->valueChanged();
    }
    void set(const TM_String& path, int value) { pin(path)->setIntValue(value); }
    void split(int threads, int start, int stop) {
        set("C.K.threads", threads);
        set("C.K.start", start);
        set("C.K.stop", stop);
    }
    /// K.index > N.in, N.result > IO.y
    void noteIndices() { noteOutput("index"); }
    void noteOutput(const TM_String& output) {
        add("Note", "N", node("C"));
        link("C.K." + output, "C.N.in");
        link("C.N.result", "C.IO.y");
    }
    std::vector<float> reals(const TM_String& path) {
        const auto* number = weft::valueAs<weft::Numeric>(at(path)->currentValue());
        std::vector<float> list;
        for (uint32_t i = 0; number && i < number->size(); ++i) {
            list.push_back(number->valueAt<float>(i));
        }
        return list;
    }
    std::vector<int32_t> indicesOfRun() {
        Note::forget();
        scene.run();
        return {Note::noted.begin(), Note::noted.end()};
    }

private:
    KernelTypes types_;
};

/// In C: G = array[index] + R (10) > P = SetElement in place, to IO.y.
class AddingKernel : public KernelScene {
public:
    explicit AddingKernel(std::vector<float> elements = {1, 2, 3, 4}) : KernelScene(elements) {
        Node* compound = node("C");
        add("GetElement", "G", compound);
        add("SetElement", "P", compound);
        add("Real", "R", compound);
        add("Add", "A", compound);
        link("C.IO.x", "C.G.array");
        link("C.IO.x", "C.P.array");
        link("C.K.index", "C.G.index");
        link("C.K.index", "C.P.index");
        link("C.G.element", "C.A.in0");
        link("C.R.real", "C.A.in1");
        link("C.A.result", "C.P.element");
        EXPECT_TRUE(pin("C.P.array")->addInternalConnection(pin("C.P.out array")));
        link("C.P.out array", "C.IO.y");
        pin("C.R.in")->setFloatValue(10.0f);
        set("C.K.threads", 3);
    }
};

} // namespace control_tests
