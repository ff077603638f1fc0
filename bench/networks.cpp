// SPDX-License-Identifier: Apache-2.0
// The benchmarks' networks.
#include "networks.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace bench {

using weft::AddNode;
using weft::Attribute;
using weft::RealNode;

Network::Network() : root_(new weft::Node(&manager, "root", nullptr)) {
    root_->retain();
    manager.setMonitoring(false);
}

Network::~Network() { manager.setTearingDown(true); }

RealNode* Network::constant(const char* name) {
    auto* node = new RealNode(&manager, name, root_.get());
    root_->addNode(node);
    return node;
}

AddNode* Network::add(const char* name) {
    auto* node = new AddNode(&manager, name, root_.get());
    root_->addNode(node);
    node->inputAttributeAt(1)->setSpecializationOverride("Real");
    return node;
}

void Network::connect(Attribute* source, Attribute* destination) {
    if (!manager.connect(source, destination, nullptr)) throw std::runtime_error("refused");
}

Chain::Chain(int length) : source(network.constant("source")) {
    Attribute* end = source->outputAttributeAt(0);
    for (int i = 0; i < length; ++i) {
        AddNode* node = network.add("Add");
        network.connect(end, node->inputAttributeAt(0));
        end = node->outputAttributeAt(0);
    }
    sink = network.constant("sink")->inputAttributeAt(0);
    network.connect(end, sink);
}

struct Floor::Item {
    virtual ~Item() = default;
    virtual void compute() = 0;
    bool isDirty = true;
    float value = 0.0f;
};

struct Floor::Add : Item {
    Add(const float& a, float b) : first(a), second(b) {}
    void compute() override {
        if (!isDirty) return;
        value = first + second;
        isDirty = false;
    }
    const float& first;
    float second;
};

Floor::Floor(int length) {
    const float* end = &source_;
    for (int i = 0; i < length; ++i) {
        items_.push_back(std::make_unique<Add>(*end, 1.0f));
        end = &items_.back()->value;
    }
}

Floor::~Floor() = default;

void Floor::markDirty() {
    for (const auto& item : items_) item->isDirty = true;
}

float Floor::setAndCompute(float value) {
    source_ = value;
    markDirty();
    for (const auto& item : items_) item->compute();
    return items_.back()->value;
}

namespace {

void appendNode(std::string& text, const std::string& name, const char* type,
                const std::string& inputs) {
    text += "                <node>\n                    <name>" + name +
            "</name>\n                    <type>" + type +
            "</type>\n                    <inputs>\n" + inputs +
            "                    </inputs>\n                </node>\n";
}

void appendConnection(std::string& text, const std::string& source, const std::string& target) {
    text += "        <connection>\n            <source>root." + source +
            "</source>\n            <target>root." + target + "</target>\n        </connection>\n";
}

std::string input(const char* name, const char* type, const char* value) {
    const std::string indent(24, ' ');
    return indent + "<input>\n" + indent + "    <name>" + name + "</name>\n" + indent +
           "    <type>" + type + "</type>\n" + indent + "    <value>" + value + "</value>\n" +
           indent + "</input>\n";
}

std::string addName(int index) {
    char name[32];
    std::snprintf(name, sizeof(name), "Add_%06d", index);
    return name;
}

} // namespace

std::string chainFile(int length) {
    std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<scene>\n    <nodes>\n"
                       "        <node>\n            <name>root</name>\n            <type/>\n"
                       "            <inputs/>\n            <outputs/>\n            <nodes>\n";
    text.reserve(text.size() + static_cast<std::size_t>(length) * 800);
    appendNode(text, "Source", "Real", input("in", "real", "1.5"));
    for (int i = 0; i < length; ++i) {
        appendNode(text, addName(i), "Add", input("in1", "polymorphic", ""));
    }
    appendNode(text, "Evaluator_01", "Evaluator", "");
    text += "            </nodes>\n        </node>\n    </nodes>\n    <connections>\n";
    std::string end = "Source.real";
    for (int i = 0; i < length; ++i) {
        appendConnection(text, end, addName(i) + ".in0");
        end = addName(i) + ".result";
    }
    appendConnection(text, end, "Evaluator_01.evaluate");
    return text + "    </connections>\n</scene>\n";
}

TemporaryFile::TemporaryFile(const std::string& text) {
    char name[] = "/tmp/sluice-bench-XXXXXX";
    const int file = mkstemp(name);
    if (file < 0) throw std::runtime_error("no temporary file");
    path_ = name;
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(file, text.data() + written, text.size() - written);
        if (count < 0) throw std::runtime_error("cannot write " + path_);
        written += static_cast<std::size_t>(count);
    }
    close(file);
}

TemporaryFile::~TemporaryFile() { unlink(path_.c_str()); }

} // namespace bench
