// SPDX-License-Identifier: Apache-2.0
// Networks and scenes that the benchmarks run, and the floor that they are held against.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/network_manager.h"
#include "graph/graph_scene.h"
#include "nodes/values/arithmetic.h"
#include "nodes/values/constants.h"

namespace bench {

/// A logic network under a root node of its own. Single numbers of type Real throughout.
class Network {
public:
    Network();
    ~Network();

    weft::RealNode* constant(const char* name);
    /// `in1` holds a Real constant of its own.
    weft::AddNode* add(const char* name);
    void connect(weft::Attribute* source, weft::Attribute* destination);

    weft::NetworkManager manager;

private:
    std::unique_ptr<weft::Node> root_;
};

/// source -> Add -> Add -> ... -> sink; the sink is an input that is pulled.
struct Chain {
    explicit Chain(int length);

    Network network;
    weft::RealNode* source;
    weft::Attribute* sink;
};

/// The least that any lazy evaluation does: a flat list of objects with a dirty flag, a virtual
/// call each, one addition inside.
class Floor {
public:
    explicit Floor(int length);
    ~Floor();
    /// Sets the source, marks everything dirty, computes everything.
    float setAndCompute(float value);
    /// Marks everything dirty.
    void markDirty();

private:
    struct Item;
    struct Add;
    float source_ = 0.0f;
    std::vector<std::unique_ptr<Item>> items_;
};

/// A graph file of `length` Add nodes in a row, fed by a constant and pulled by an evaluator.
std::string chainFile(int length);

/// Writes `text` to a fresh file in the temporary folder and removes it at the end.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& text);
    ~TemporaryFile();
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

} // namespace bench
