// SPDX-License-Identifier: Apache-2.0
// Loops and kernels: an iteration, an element, a copy of the body, beside their floors.
#include <benchmark/benchmark.h>

#include <boost/property_tree/ptree.hpp>

#include "core/numeric.h"
#include "graph/scene_manager.h"
#include "networks.h"

namespace {

using benchmark::State;
using tidemark::TM_String;
using namespace tidemark::sluice::graph;

void perItem(State& state, int64_t items) {
    state.counters["per_item"] =
        benchmark::Counter(static_cast<double>(items) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// A compound C with an iterator, and a row of Adds from the value at its wall to its output:
/// S > C.x > A0 > A1 > ... > C.y > E. Each Add adds the iterator's index.
class LoopScene {
public:
    LoopScene(const char* iterator, int bodyNodes) {
        NodeBase* compound = add("Compound", "C", scene.getRootNode());
        add("Real", "S", scene.getRootNode());
        add("Evaluator", "E", scene.getRootNode());
        add("CompoundInterface", "IO", compound);
        add(iterator, "L", compound);
        wall(GraphNodePin::outputFlag, "y");
        wall(GraphNodePin::inputFlag, "x");
        connect("S.real", "C.x");
        const bool isKernel = TM_String(iterator) == "Kernel";
        const TM_String index = isKernel ? "C.L.index" : "C.L.current index";
        TM_String end = "C.IO.x";
        if (isKernel) {
            add("Real", "R", compound);
            connect("C.IO.x", "C.L.array");
            end = "C.R.real";
        }
        for (int i = 0; i < bodyNodes; ++i) {
            const TM_String name = "A" + std::to_string(i);
            add("Add", name, compound);
            connect(end, "C." + name + ".in0");
            connect(index, "C." + name + ".in1");
            end = "C." + name + ".result";
        }
        connect(end, "C.IO.y");
        connect("C.y", "E.evaluate");
    }
    NodeBase* add(const char* type, const TM_String& name, GraphNodeBase* owner) {
        NodeBase* node = SceneManager::instance().getNodeFactoryFromType(type)->createNode();
        scene.addNodeToGraph(node);
        node->setNodeOwner(owner);
        node->setName(name);
        return node;
    }
    void connect(const TM_String& from, const TM_String& to) {
        if (!scene.connect("root." + from, "root." + to)) throw std::runtime_error(from + ">" + to);
    }
    void wall(const PinFlags& flag, const TM_String& name,
              const TM_String& interfaceName = "C.IO") {
        GraphNodePin* inner = nullptr;
        GraphNodePin* outer = nullptr;
        scene.addCompoundInterfacePin(flag, scene.getNodePtrByFullName("root." + interfaceName),
                                      inner, outer);
        inner->setName(name);
        outer->setName(name);
    }
    void set(const TM_String& pin, int value) { scene.setPinIntValue("root." + pin, value); }
    void fill(uint32_t elements) {
        auto* pin = static_cast<Pin*>(scene.getPinPtrByFullName("root.S.in"));
        auto& number = static_cast<weft::NumericAttribute*>(pin->getWeftAttribute())->ownNumeric();
        number.resize(elements);
        pin->getWeftAttribute()->valueChanged();
    }
    void run(State& state) {
        scene.run();
        if (scene.lastOutcome() != RunOutcome::finished) state.SkipWithError("the run failed");
    }

    SL_GraphScene scene;
};

constexpr int bodyNodes = 5;

void floorOfIterations(State& state) {
    bench::Floor floor(bodyNodes);
    float value = 0.0f;
    for (auto _ : state) {
        for (int64_t i = 0; i < state.range(0); ++i) {
            benchmark::DoNotOptimize(floor.setAndCompute(value += 1.0f));
        }
    }
    perItem(state, state.range(0));
}
BENCHMARK(floorOfIterations)->Arg(100000)->Unit(benchmark::kMillisecond);

void forIterations(State& state, bool monitoring) {
    LoopScene loop("For", bodyNodes);
    loop.scene.networkManager().setMonitoring(monitoring);
    loop.set("C.L.stop", static_cast<int>(state.range(0)));
    for (auto _ : state) loop.run(state);
    perItem(state, state.range(0));
    loop.scene.networkManager().setMonitoring(true);
}
BENCHMARK_CAPTURE(forIterations, unmonitored, false)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(forIterations, monitored, true)->Arg(100000)->Unit(benchmark::kMillisecond);

// Two loops, one inside the other, around the same body.
void nestedFor(State& state) {
    LoopScene loop("For", 1);
    SL_GraphScene& scene = loop.scene;
    scene.networkManager().setMonitoring(false);
    NodeBase* outer = static_cast<NodeBase*>(scene.getNodePtrByFullName("root.C"));
    NodeBase* inner = loop.add("Compound", "D", outer);
    loop.add("CompoundInterface", "IO", inner);
    loop.add("For", "L", inner);
    loop.wall(GraphNodePin::outputFlag, "y", "C.D.IO");
    loop.wall(GraphNodePin::inputFlag, "x", "C.D.IO");
    loop.connect("C.A0.result", "C.D.x");
    TM_String end = "C.D.IO.x";
    for (int i = 0; i < bodyNodes; ++i) {
        const TM_String name = "B" + std::to_string(i);
        loop.add("Add", name, inner);
        loop.connect(end, "C.D." + name + ".in0");
        loop.connect("C.D.L.current index", "C.D." + name + ".in1");
        end = "C.D." + name + ".result";
    }
    loop.connect(end, "C.D.IO.y");
    loop.wall(GraphNodePin::outputFlag, "z");
    loop.connect("C.D.y", "C.IO.z");
    loop.add("Evaluator", "E2", scene.getRootNode());
    loop.connect("C.z", "E2.evaluate");
    const int each = static_cast<int>(state.range(0));
    loop.set("C.L.stop", each);
    loop.set("C.D.L.stop", each);
    for (auto _ : state) loop.run(state);
    perItem(state, int64_t(each) * each);
}
BENCHMARK(nestedFor)->Arg(1000)->Unit(benchmark::kMillisecond);

// Elements and threads; the clock, because the work is done on other threads.
void kernelElements(State& state) {
    LoopScene loop("Kernel", bodyNodes);
    loop.fill(static_cast<uint32_t>(state.range(0)));
    loop.set("C.L.threads", static_cast<int>(state.range(1)));
    for (auto _ : state) loop.run(state);
    perItem(state, state.range(0));
}
BENCHMARK(kernelElements)
    ->Args({1000000, 1})
    ->Args({1000000, 2})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

// One element per thread: what is left is the copies.
void kernelCopies(State& state) {
    LoopScene loop("Kernel", static_cast<int>(state.range(0)));
    loop.fill(static_cast<uint32_t>(state.range(1)));
    loop.set("C.L.threads", static_cast<int>(state.range(1)));
    for (auto _ : state) loop.run(state);
    perItem(state, state.range(1));
}
BENCHMARK(kernelCopies)
    ->Args({100, 1})
    ->Args({100, 8})
    ->Args({100, 64})
    ->Args({1000, 8})
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

void copyTree(State& state) {
    LoopScene loop("Kernel", static_cast<int>(state.range(0)));
    PropertyTree tree;
    loop.scene.write_toBoostPropertyTree(tree);
    for (auto _ : state) {
        PropertyTree copy(tree);
        benchmark::DoNotOptimize(copy.size());
    }
}
BENCHMARK(copyTree)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

} // namespace
