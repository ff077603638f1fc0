// SPDX-License-Identifier: Apache-2.0
// What it costs to record a run, and to look at a graph with the program.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>

#include "graph/scene_manager.h"
#include "networks.h"
#include "tool/trace.h"
#include "tool/update_recorder.h"

namespace {

using benchmark::State;
using tidemark::TM_String;
using tidemark::tool::UpdateRecorder;
using namespace tidemark::sluice::graph;

void perNode(State& state) {
    state.counters["per_node"] = benchmark::Counter(
        static_cast<double>(state.range(0)) * static_cast<double>(state.iterations()),
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

Node* addNode(SL_GraphScene& scene, const char* type, const TM_String& name) {
    NodeBase* node = SceneManager::instance().getNodeFactoryFromType(type)->createNode();
    scene.addNodeToGraph(node);
    node->setNodeOwner(scene.getRootNode());
    node->setName(name);
    return static_cast<Node*>(node);
}

// sum = sum + constant, `nodes` in all: as many constants as additions.
void buildSums(SL_GraphScene& scene, int64_t nodes) {
    Node* sum = addNode(scene, "Real", "First");
    for (int64_t i = 1; i + 1 < nodes; i += 2) {
        Node* constant = addNode(scene, "Real", "Constant_" + std::to_string(i));
        Node* add = addNode(scene, "Add", "Add_" + std::to_string(i));
        scene.connect(sum->getArrOutputPin()[0], add->getArrInputPin()[0], false);
        scene.connect(constant->getArrOutputPin()[0], add->getArrInputPin()[1], false);
        sum = add;
    }
    Node* end = addNode(scene, "Evaluator", "End");
    scene.connect(sum->getArrOutputPin()[0], end->getArrInputPin()[0], false);
}

enum class Record { nothing, sums, events };

void runSums(State& state, Record record) {
    SL_GraphScene scene;
    buildSums(scene, state.range(0));
    scene.run();
    for (auto _ : state) {
        state.PauseTiming();
        // A recorder of its own for each run: what a single run pays is asked for.
        std::unique_ptr<UpdateRecorder> recorder;
        if (record != Record::nothing) {
            const uint64_t most = record == Record::events ? tidemark::tool::mostTraceEvents : 0;
            recorder = std::make_unique<UpdateRecorder>(scene, most);
        }
        state.ResumeTiming();
        scene.run();
        state.PauseTiming();
        const bool isComplete =
            !recorder || recorder->sums().size() >= static_cast<std::size_t>(state.range(0));
        if (!isComplete) state.SkipWithError("not all nodes were recorded");
        recorder.reset();
        state.ResumeTiming();
    }
    perNode(state);
}
BENCHMARK_CAPTURE(runSums, plain, Record::nothing)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(runSums, profiled, Record::sums)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(runSums, traced, Record::events)->Arg(10000)->Unit(benchmark::kMillisecond);

// False unless the program ends with status 0.
bool runProgram(std::vector<const char*> words) {
    words.insert(words.begin(), SLUICE_PROGRAM);
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", 1, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", 1, 0);
    pid_t child = 0;
    const bool started = posix_spawn(&child, SLUICE_PROGRAM, &actions, nullptr,
                                     const_cast<char* const*>(words.data()), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = 1;
    if (started) waitpid(child, &status, 0);
    return started && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

enum class Look { read, check, diff };

// The read alone is a dry run, which lists one chain of pulls besides.
void look(State& state, Look look) {
    const bench::TemporaryFile file(bench::chainFile(static_cast<int>(state.range(0))));
    const char* path = file.path().c_str();
    std::vector<const char*> words{"run", path, "--dry-run"};
    if (look == Look::check) words = {"check", path};
    if (look == Look::diff) words = {"diff", path, path};
    for (auto _ : state) {
        if (!runProgram(words)) return state.SkipWithError("failed");
    }
    perNode(state);
}
BENCHMARK_CAPTURE(look, read, Look::read)->Arg(50000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(look, check, Look::check)
    ->Arg(50000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(look, diff, Look::diff)->Arg(50000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
