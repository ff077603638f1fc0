// SPDX-License-Identifier: Apache-2.0
// Pulling, changing and computing in the logic network, beside their floors.
#include <benchmark/benchmark.h>

#include "networks.h"

namespace {

using bench::Chain;
using bench::Floor;
using bench::Network;
using benchmark::State;

void perItem(State& state, int64_t items) {
    state.counters["per_item"] =
        benchmark::Counter(static_cast<double>(items) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// A pull of an attribute that is clean, with a chain of `range` nodes above it.
void pullClean(State& state) {
    Chain chain(static_cast<int>(state.range(0)));
    chain.sink->pull();
    for (auto _ : state) {
        weft::Attribute* sink = chain.sink;
        benchmark::DoNotOptimize(sink);
        sink->pull();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(pullClean)->Arg(10)->Arg(1000);

void floorSetAndCompute(State& state) {
    Floor floor(static_cast<int>(state.range(0)));
    float value = 0.0f;
    for (auto _ : state) benchmark::DoNotOptimize(floor.setAndCompute(value += 1.0f));
    perItem(state, state.range(0));
}
BENCHMARK(floorSetAndCompute)->Arg(1000)->Arg(10000)->Arg(100000);

void setAndPull(State& state, bool monitoring) {
    Chain chain(static_cast<int>(state.range(0)));
    chain.network.manager.setMonitoring(monitoring);
    weft::Attribute* input = chain.source->inputAttributeAt(0);
    weft::Numeric& number = static_cast<weft::NumericAttribute*>(input)->ownNumeric();
    float value = 0.0f;
    chain.sink->pull();
    for (auto _ : state) {
        number.setValue<float>(value += 1.0f);
        input->valueChanged();
        chain.sink->pull();
    }
    perItem(state, state.range(0));
    const float result =
        static_cast<const weft::Numeric*>(chain.sink->currentValue())->value<float>();
    if (result < value) state.SkipWithError("the chain was not computed");
}
BENCHMARK_CAPTURE(setAndPull, unmonitored, false)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(setAndPull, monitored, true)->Arg(1000)->Arg(100000);

// source -> 10,000 Adds, gathered one by one: g = g + branch.
void fanOut(State& state) {
    const int width = static_cast<int>(state.range(0));
    Network network;
    weft::RealNode* source = network.constant("source");
    weft::Attribute* sum = source->outputAttributeAt(0);
    for (int i = 0; i < width; ++i) {
        weft::AddNode* branch = network.add("Branch");
        network.connect(source->outputAttributeAt(0), branch->inputAttributeAt(0));
        weft::AddNode* gather = network.add("Gather");
        network.connect(sum, gather->inputAttributeAt(0));
        network.connect(branch->outputAttributeAt(0), gather->inputAttributeAt(1));
        sum = gather->outputAttributeAt(0);
    }
    weft::Attribute* sink = network.constant("sink")->inputAttributeAt(0);
    network.connect(sum, sink);
    weft::Attribute* input = source->inputAttributeAt(0);
    weft::Numeric& number = static_cast<weft::NumericAttribute*>(input)->ownNumeric();
    float value = 0.0f;
    for (auto _ : state) {
        number.setValue<float>(value += 1.0f);
        input->valueChanged();
        sink->pull();
    }
    perItem(state, 2 * width);
}
BENCHMARK(fanOut)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// level: a = previous + previous, both inputs from the same output.
void diamonds(State& state) {
    const int levels = static_cast<int>(state.range(0));
    Network network;
    weft::RealNode* source = network.constant("source");
    weft::Attribute* top = source->outputAttributeAt(0);
    for (int i = 0; i < levels; ++i) {
        weft::AddNode* left = network.add("Left");
        weft::AddNode* right = network.add("Right");
        weft::AddNode* join = network.add("Join");
        network.connect(top, left->inputAttributeAt(0));
        network.connect(top, right->inputAttributeAt(0));
        network.connect(left->outputAttributeAt(0), join->inputAttributeAt(0));
        network.connect(right->outputAttributeAt(0), join->inputAttributeAt(1));
        top = join->outputAttributeAt(0);
    }
    weft::Attribute* sink = network.constant("sink")->inputAttributeAt(0);
    network.connect(top, sink);
    weft::Attribute* input = source->inputAttributeAt(0);
    weft::Numeric& number = static_cast<weft::NumericAttribute*>(input)->ownNumeric();
    float value = 0.0f;
    for (auto _ : state) {
        number.setValue<float>(value += 1.0f);
        input->valueChanged();
        sink->pull();
    }
    perItem(state, 3 * levels);
}
BENCHMARK(diamonds)->Arg(10)->Arg(12)->Arg(1000);

void floorMarkDirty(State& state) {
    Floor floor(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        floor.markDirty();
        benchmark::ClobberMemory();
    }
    perItem(state, state.range(0));
}
BENCHMARK(floorMarkDirty)->Arg(1000);

// The setter alone. Making the source clean again is not part of it, but its cost is one store.
void setClean(State& state) {
    const int length = static_cast<int>(state.range(0));
    Chain chain(length);
    weft::Attribute* input = chain.source->inputAttributeAt(0);
    weft::Numeric& number = static_cast<weft::NumericAttribute*>(input)->ownNumeric();
    float value = 0.0f;
    for (auto _ : state) {
        input->setClean(true);
        number.setValue<float>(value += 1.0f);
        input->valueChanged();
    }
    perItem(state, 2 * length + 3); // attributes walked
}
BENCHMARK(setClean)->Arg(1000);

void setDirty(State& state) {
    Chain chain(static_cast<int>(state.range(0)));
    weft::Attribute* input = chain.source->inputAttributeAt(0);
    weft::Numeric& number = static_cast<weft::NumericAttribute*>(input)->ownNumeric();
    float value = 0.0f;
    for (auto _ : state) {
        number.setValue<float>(value += 1.0f);
        input->valueChanged();
    }
}
BENCHMARK(setDirty)->Arg(10)->Arg(10000);

void oneAdd(State& state) {
    Network network;
    weft::AddNode* node = network.add("Add");
    weft::Attribute* in0 = node->inputAttributeAt(0);
    in0->setSpecializationOverride("Real");
    node->outputAttributeAt(0)->setSpecializationOverride("Real");
    weft::Attribute* result = node->outputAttributeAt(0);
    for (auto _ : state) {
        in0->setClean(false);
        node->doUpdate(result);
    }
}
BENCHMARK(oneAdd);

} // namespace
