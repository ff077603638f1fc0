// SPDX-License-Identifier: Apache-2.0
// Building, reading, writing and clearing whole scenes, and the program as its user starts it.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <chrono>
#include <cstdio>
#include <fstream>

#include "core/limits.h"
#include "graph/scene_manager.h"
#include "networks.h"

namespace {

using benchmark::State;
using tidemark::TM_String;
using namespace tidemark::sluice::graph;

void perNode(State& state) {
    state.counters["per_node"] = benchmark::Counter(
        static_cast<double>(state.range(0)) * static_cast<double>(state.iterations()),
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

GraphNodeBase* addNode(SL_GraphScene& scene, const char* type, const TM_String& name) {
    NodeBase* node = SceneManager::instance().getNodeFactoryFromType(type)->createNode();
    scene.addNodeToGraph(node);
    node->setNodeOwner(scene.getRootNode());
    node->setName(name);
    return node;
}

// Real -> Add -> Add -> ... -> Evaluator, by calls.
void buildChain(SL_GraphScene& scene, int64_t length) {
    GraphNodeBase* node = addNode(scene, "Real", "Source");
    for (int64_t i = 0; i < length; ++i) {
        GraphNodeBase* next = addNode(scene, "Add", "Add_" + std::to_string(i));
        scene.connect(static_cast<Node*>(node)->getArrOutputPin()[0],
                      static_cast<Node*>(next)->getArrInputPin()[0], false);
        node = next;
    }
    GraphNodeBase* end = addNode(scene, "Evaluator", "End");
    scene.connect(static_cast<Node*>(node)->getArrOutputPin()[0],
                  static_cast<Node*>(end)->getArrInputPin()[0], false);
}

void buildByCalls(State& state) {
    for (auto _ : state) {
        SL_GraphScene scene;
        buildChain(scene, state.range(0));
        state.PauseTiming();
        scene.clear();
        state.ResumeTiming();
    }
    perNode(state);
}
BENCHMARK(buildByCalls)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void clearScene(State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        SL_GraphScene scene;
        buildChain(scene, state.range(0));
        state.ResumeTiming();
        scene.clear();
    }
    perNode(state);
}
BENCHMARK(clearScene)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// What the document model itself needs for the bytes of the file.
void parseTree(State& state) {
    const bench::TemporaryFile file(bench::chainFile(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        boost::property_tree::ptree tree;
        std::ifstream stream(file.path());
        boost::property_tree::read_xml(stream, tree);
        benchmark::DoNotOptimize(tree);
    }
    perNode(state);
}
BENCHMARK(parseTree)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void readFile(State& state) {
    const bench::TemporaryFile file(bench::chainFile(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        SL_GraphScene scene;
        if (!scene.read_XML(file.path())) return state.SkipWithError("not read");
        state.PauseTiming();
        scene.clear();
        state.ResumeTiming();
    }
    perNode(state);
}
BENCHMARK(readFile)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void writeFile(State& state) {
    SL_GraphScene scene;
    buildChain(scene, state.range(0));
    const bench::TemporaryFile file("");
    for (auto _ : state) {
        if (!scene.write_XML(file.path())) return state.SkipWithError("not written");
    }
    perNode(state);
}
BENCHMARK(writeFile)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void runScene(State& state) {
    SL_GraphScene scene;
    buildChain(scene, state.range(0));
    for (auto _ : state) scene.run();
    perNode(state);
}
BENCHMARK(runScene)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// Read, run, save and close, with the memory that a node takes while the scene is open.
void longChain(State& state) {
    const bench::TemporaryFile file(bench::chainFile(static_cast<int>(state.range(0))));
    const bench::TemporaryFile saved("");
    for (auto _ : state) {
        const uint64_t before = tidemark::limits::residentBytes();
        SL_GraphScene scene;
        if (!scene.read_XML(file.path())) return state.SkipWithError("not read");
        scene.run();
        if (scene.lastOutcome() != RunOutcome::finished) return state.SkipWithError("not run");
        const uint64_t bytes = tidemark::limits::residentBytes() - before;
        state.counters["bytes_per_node"] =
            static_cast<double>(bytes) / static_cast<double>(state.range(0));
        if (!scene.write_XML(saved.path())) return state.SkipWithError("not saved");
    }
    perNode(state);
}
BENCHMARK(longChain)->Arg(100000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

// The program: start, load, run, exit.
void program(State& state) {
    const bench::TemporaryFile file(bench::chainFile(static_cast<int>(state.range(0))));
    long peak = 0;
    for (auto _ : state) {
        const char* arguments[] = {SLUICE_PROGRAM, "run", file.path().c_str(), nullptr};
        pid_t child = 0;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", 1, 0);
        if (posix_spawn(&child, SLUICE_PROGRAM, &actions, nullptr,
                        const_cast<char* const*>(arguments), environ) != 0) {
            return state.SkipWithError("not started");
        }
        posix_spawn_file_actions_destroy(&actions);
        int status = 0;
        rusage usage{};
        wait4(child, &status, 0, &usage);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return state.SkipWithError("failed");
        peak = std::max(peak, usage.ru_maxrss);
    }
    state.counters["peak_MB"] = static_cast<double>(peak) / 1024.0;
}
BENCHMARK(program)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
