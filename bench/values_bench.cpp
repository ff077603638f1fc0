// SPDX-License-Identifier: Apache-2.0
// The value nodes on large arrays: whole updates, beside Eigen in this program and numpy by
// numpy_peer.py, which pairs the figures of the benchmarks called "values/...".
#include <benchmark/benchmark.h>

#include <random>

#if SLUICE_BENCH_EIGEN
#include <Eigen/Core>
#endif
#if SLUICE_BENCH_MUPARSER
#include <muParser.h>
#endif

#include "core/bit_array.h"
#include "core/numeric.h"
#include "core/pointer_value.h"
#include "core/string_value.h"
#include "graph/graph_scene.h"
#include "graph/node_factory.h"
#include "graph/scene_manager.h"
#include "nodes/values/arrays/element_sets.h"
#include "nodes/values/element_loop.h"
#include "platform/curve.h"

namespace {

using benchmark::State;
using tidemark::TM_String;
using weft::Numeric;
using weft::NumericAttribute;
namespace graph = tidemark::sluice::graph;

constexpr uint32_t million = 1'000'000;

// A node of a registered type in a scene of its own.
class ValueNode {
public:
    explicit ValueNode(const TM_String& type, int threads = 1) {
        graph::NodeBase* made =
            graph::SceneManager::instance().getNodeFactoryFromType(type)->createNode();
        scene_.addNodeToGraph(made);
        node_ = made->getCoreNode();
        node_->setNumberOfThreads(threads);
    }
    weft::Attribute& pin(const TM_String& name) { return *node_->findAttribute(name); }
    Numeric& number(const TM_String& name, const char* type = "Real") {
        weft::Attribute& attribute = pin(name);
        if (!attribute.isSpecialized()) {
            attribute.setSpecializationOverride(type);
            attribute.updateSpecializations(nullptr);
        }
        return *static_cast<Numeric*>(attribute.value());
    }
    void reals(const TM_String& name, uint32_t count, float low = 0.01f, float high = 100.0f) {
        std::mt19937 random(count);
        std::uniform_real_distribution<float> spread(low, high);
        tidemark::Array<float> values;
        values.resize(count);
        for (float& value : values) value = spread(random);
        number(name).setValues(values);
    }
    void integers(const TM_String& name, uint32_t count, uint32_t below) {
        std::mt19937 random(count + 1);
        tidemark::Array<int32_t> values;
        values.resize(count);
        for (int32_t& value : values) value = static_cast<int32_t>(random() % below);
        number(name, "Integer").setValues(values);
    }
    void bits(const TM_String& name, uint32_t count) {
        std::mt19937 random(9);
        auto& value = static_cast<weft::BitArrayAttribute&>(pin(name)).ownBits();
        value.resize(count, false);
        for (uint32_t i = 0; i < (count + 31) / 32; ++i) value.wordData()[i] = random();
    }
    // Changes `input` and asks for `output`, again and again.
    void measure(State& state, const TM_String& input, const TM_String& output) {
        weft::Attribute& in = pin(input);
        weft::Attribute& out = pin(output);
        for (auto _ : state) {
            in.valueChanged();
            out.computeNow();
            benchmark::ClobberMemory();
        }
    }

private:
    graph::SL_GraphScene scene_;
    weft::Node* node_ = nullptr;
};

void bytes(State& state, double perIteration) {
    state.counters["bytes_per_second"] =
        benchmark::Counter(perIteration * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate, benchmark::Counter::OneK::kIs1000);
}

// Two reals to one.

void binaryNode(State& state, const char* type) {
    const auto count = static_cast<uint32_t>(state.range(0));
    ValueNode node(type);
    node.reals("in0", count);
    node.reals("in1", count);
    node.measure(state, "in0", "result");
    bytes(state, 12.0 * count);
}
BENCHMARK_CAPTURE(binaryNode, add, "Add")
    ->Name("values/addNode")
    ->Arg(1000)
    ->Arg(million)
    ->Arg(10 * million);
BENCHMARK_CAPTURE(binaryNode, mul, "Mul")
    ->Name("values/mulNode")
    ->Arg(1000)
    ->Arg(million)
    ->Arg(10 * million);

void repeatedLast(State& state) {
    ValueNode node("Add");
    node.reals("in0", 1000);
    node.reals("in1", 1);
    node.measure(state, "in0", "result");
}
BENCHMARK(repeatedLast)->Name("values/addNodeRepeatedLast");

#if SLUICE_BENCH_EIGEN
void eigenAdd(State& state) {
    const auto count = state.range(0);
    const Eigen::ArrayXf a = Eigen::ArrayXf::Random(count);
    const Eigen::ArrayXf b = Eigen::ArrayXf::Random(count);
    Eigen::ArrayXf out(count);
    for (auto _ : state) {
        out = a + b;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(eigenAdd)->Name("values/eigenAdd")->Arg(1000)->Arg(million)->Arg(10 * million);

void eigenScale(State& state) {
    const Eigen::Array3Xf vectors = Eigen::Array3Xf::Random(3, million);
    const Eigen::ArrayXf factors = Eigen::ArrayXf::Random(million);
    Eigen::Array3Xf out(3, million);
    for (auto _ : state) {
        out = vectors.rowwise() * factors.transpose();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(eigenScale)->Name("values/eigenScaleVectors");
#endif

// The bandwidth of the machine, as in J. McCalpin's STREAM (1995).
void triad(State& state) {
    const std::size_t count = 10 * million;
    std::vector<float> a(count), b(count, 1.0f), c(count, 2.0f);
    for (auto _ : state) {
        float* out = a.data();
        const float* first = b.data();
        const float* second = c.data();
        std::size_t i = 0;
        for (; i + 16 <= count; i += 16) {
            for (std::size_t k = i; k < i + 16; ++k) out[k] = first[k] + 3.0f * second[k];
        }
        benchmark::ClobberMemory();
    }
    bytes(state, 12.0 * static_cast<double>(count));
}
BENCHMARK(triad)->Name("values/triad");

// Functions.

void unaryNode(State& state, const char* type, float low, float high) {
    ValueNode node(type, static_cast<int>(state.range(0)));
    node.reals("in", million, low, high);
    node.measure(state, "in", "result");
}
BENCHMARK_CAPTURE(unaryNode, sin, "Sin", -100.0f, 100.0f)->Name("values/sinNode")->Arg(1);
BENCHMARK_CAPTURE(unaryNode, sqrt, "Sqrt", 0.01f, 100.0f)->Name("values/sqrtNode")->Arg(1);
BENCHMARK_CAPTURE(unaryNode, exp, "Exp", -80.0f, 80.0f)->Name("values/expNode")->Arg(1);
BENCHMARK_CAPTURE(unaryNode, log, "Log", 0.01f, 100.0f)->Name("values/logNode")->Arg(1);
BENCHMARK_CAPTURE(unaryNode, threads, "Sin", -100.0f, 100.0f)
    ->Name("threads/sinNode")
    ->Arg(1)
    ->Arg(2)
    ->UseRealTime();

// From how many elements on a second thread pays: the break-even behind `worthThreadNanoseconds`.
void smallSin(State& state) {
    ValueNode node("Sin", static_cast<int>(state.range(0)));
    node.reals("in", static_cast<uint32_t>(state.range(1)), -100.0f, 100.0f);
    graph::setThreadForEveryRecord(true);
    node.measure(state, "in", "result");
    graph::setThreadForEveryRecord(false);
}
BENCHMARK(smallSin)
    ->Name("threads/smallSin")
    ->UseRealTime()
    ->ArgsProduct({{1, 2}, {30'000, 100'000, 200'000, 400'000}});

void powNode(State& state) {
    ValueNode node("Pow", static_cast<int>(state.range(0)));
    node.reals("base", million);
    node.reals("exponent", million, -2.0f, 2.0f);
    node.measure(state, "base", "result");
}
BENCHMARK(powNode)->Name("values/powNode")->Arg(1);
BENCHMARK(powNode)->Name("threads/powNode")->Arg(1)->Arg(2)->UseRealTime();

void scaleVectors(State& state) {
    ValueNode node("Mul");
    Numeric& vectors = node.number("in0", "Vector3");
    vectors.resize(million);
    for (auto& vector : vectors.refValues<tidemark::Vector3<float>>()) vector = {1, 2, 3};
    node.reals("in1", million);
    node.measure(state, "in0", "result");
}
BENCHMARK(scaleVectors)->Name("values/scaleVectors");

// 100 additions in a row: the cost of each, and the memory of all.
void chainOfAdds(State& state) {
    const auto length = static_cast<int>(state.range(0));
    graph::SL_GraphScene scene;
    std::vector<weft::Node*> nodes;
    for (int i = 0; i < length; ++i) {
        graph::NodeBase* made =
            graph::SceneManager::instance().getNodeFactoryFromType("Add")->createNode();
        scene.addNodeToGraph(made);
        nodes.push_back(made->getCoreNode());
        nodes.back()->setNumberOfThreads(1);
    }
    const auto pin = [&](int i, const char* name) { return nodes[i]->findAttribute(name); };
    pin(0, "in0")->setSpecializationOverride("Real");
    pin(0, "in0")->updateSpecializations(nullptr);
    static_cast<NumericAttribute*>(pin(0, "in0"))->ownNumeric().resize(million);
    for (int i = 0; i < length; ++i) {
        pin(i, "in1")->setSpecializationOverride("Real");
        if (i > 0) scene.networkManager().connect(pin(i - 1, "result"), pin(i, "in0"), nullptr);
        pin(i, "in1")->updateSpecializations(nullptr);
    }
    pin(length - 1, "result")->computeNow();
    for (auto _ : state) {
        pin(0, "in0")->valueChanged();
        pin(length - 1, "result")->computeNow();
    }
    uint64_t held = 0;
    for (const weft::Node* node : nodes) held += node->estimatedSize();
    state.counters["bytes_per_node"] = static_cast<double>(held) / length;
    state.counters["per_node"] =
        benchmark::Counter(static_cast<double>(length) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(chainOfAdds)->Name("chainOfAdds")->Arg(1)->Arg(100);

// Sorting and searching.

void sortReals(State& state) {
    ValueNode node("ArrayNumSort");
    node.reals("array", million);
    node.measure(state, "array", "out array");
}
BENCHMARK(sortReals)->Name("values/sortReals");

void fillWords(ValueNode& node) {
    auto& words = static_cast<weft::StringAttribute&>(node.pin("array")).ownStrings();
    std::mt19937 random(6);
    words.setSize(million);
    for (TM_String& word : words.refValues()) word = "name" + std::to_string(random() % million);
}
void ofStrings(State& state, const char* type) {
    ValueNode node(type);
    fillWords(node);
    node.measure(state, "array", "out array");
}
BENCHMARK_CAPTURE(ofStrings, sort, "ArrayStringSort")->Name("values/sortStrings");
BENCHMARK_CAPTURE(ofStrings, unique, "ArrayStringRemoveRepeatedElements")
    ->Name("values/removeRepeatedStrings");

void removeRepeated(State& state, bool integers) {
    ValueNode node("ArrayNumRemoveRepeatedElements");
    if (integers)
        node.integers("array", million, 100'000);
    else
        node.reals("array", million);
    node.measure(state, "array", "out array");
}
BENCHMARK_CAPTURE(removeRepeated, integers, true)->Name("values/removeRepeatedIntegers");
BENCHMARK_CAPTURE(removeRepeated, reals, false)->Name("values/removeRepeatedReals");

// The part of the work that differs from that of numbers.
void removeRepeatedPointers(State& state) {
    std::mt19937 random(8);
    std::vector<void*> pointers(million);
    for (void*& pointer : pointers) {
        pointer = reinterpret_cast<void*>(static_cast<std::uintptr_t>(random() % 100'000) * 64);
    }
    for (auto _ : state) {
        graph::ElementSet<void*> set(pointers.data(), million);
        uint32_t kept = 0;
        for (uint32_t i = 0; i < million; ++i) kept += set.add(i) == i;
        benchmark::DoNotOptimize(kept);
    }
}
BENCHMARK(removeRepeatedPointers)->Name("values/removeRepeatedPointers");

void findAllIntegers(State& state) {
    ValueNode node("ArrayNumFindAllElementIndices");
    node.integers("array", million, 100'000);
    tidemark::Array<int32_t> wanted;
    for (int32_t i = 0; i < 1000; ++i) wanted.append(i);
    node.number("element", "Integer").setValues(wanted);
    node.measure(state, "array", "index");
}
BENCHMARK(findAllIntegers)->Name("values/findAllIntegers");

// Selecting and joining.

void filterByMask(State& state) {
    ValueNode node("ArrayNumFilterByMask");
    node.reals("array", million);
    node.bits("mask", million);
    node.measure(state, "array", "result");
}
BENCHMARK(filterByMask)->Name("values/filterByMask");

void getByIndex(State& state) {
    ValueNode node("GetArrayNumElement");
    node.reals("array", million);
    node.integers("index", million, million);
    node.measure(state, "array", "element");
}
BENCHMARK(getByIndex)->Name("values/getByIndex");

void concat(State& state) {
    ValueNode node("ArrayNumConcat");
    node.reals("array0", million);
    node.reals("array1", million);
    node.measure(state, "array0", "out array");
}
BENCHMARK(concat)->Name("values/concat");

void slice(State& state) {
    ValueNode node("ArrayNumSlice");
    node.reals("array", million);
    node.number("first", "Integer").setValue<int32_t>(million / 4);
    node.number("size", "Integer").setValue<int32_t>(million / 2);
    node.measure(state, "array", "out array");
}
BENCHMARK(slice)->Name("values/slice");

void reverse(State& state) {
    ValueNode node("ArrayNumReverse");
    node.reals("array", million);
    node.measure(state, "array", "out array");
}
BENCHMARK(reverse)->Name("values/reverse");

// Conditions, beside the mask that they end in.

void conditionFilterBy(State& state) {
    graph::SL_GraphScene scene;
    const auto make = [&](const char* type) {
        graph::NodeBase* made =
            graph::SceneManager::instance().getNodeFactoryFromType(type)->createNode();
        scene.addNodeToGraph(made);
        return made->getCoreNode();
    };
    weft::Node* above = make("ConditionGreaterThanConstant");
    weft::Node* filter = make("ConditionFilterBy");
    auto& limit = static_cast<NumericAttribute&>(*above->findAttribute("value"));
    auto& value = static_cast<NumericAttribute&>(*filter->findAttribute("value"));
    for (NumericAttribute* pin : {&limit, &value}) {
        pin->setSpecializationOverride("Real");
        pin->updateSpecializations(nullptr);
    }
    limit.ownNumeric().setValue<float>(50.0f);
    std::mt19937 random(3);
    std::uniform_real_distribution<float> spread(0.0f, 100.0f);
    tidemark::Array<float> values;
    values.resize(million);
    for (float& number : values) number = spread(random);
    value.ownNumeric().setValues(values);
    scene.networkManager().connect(above->findAttribute("condition"),
                                   filter->findAttribute("condition"), nullptr);
    weft::Attribute* result = filter->findAttribute("result");
    for (auto _ : state) {
        value.valueChanged();
        result->computeNow();
    }
}
BENCHMARK(conditionFilterBy)->Name("values/conditionFilterBy");

// Bits.

constexpr uint32_t hundredMillion = 100 * million;

void bitNode(State& state, const char* type) {
    ValueNode node(type);
    node.bits("in0", hundredMillion);
    node.bits("in1", hundredMillion);
    node.measure(state, "in0", "result");
    bytes(state, 3.0 * hundredMillion / 8);
}
BENCHMARK_CAPTURE(bitNode, and, "BitAnd")->Name("values/bitAnd");
BENCHMARK_CAPTURE(bitNode, xnor, "BitXnor")->Name("values/bitXnor");

void countBits(State& state) {
    ValueNode node("ArrayBitCountTrue");
    node.bits("in", hundredMillion);
    node.measure(state, "in", "count");
    bytes(state, hundredMillion / 8.0);
}
BENCHMARK(countBits)->Name("values/bitCount");

// Curves.

void curveEval(State& state, const char* expression) {
    tidemark::ANIFloatBase curve;
    std::mt19937 random(12);
    for (int i = 0; i < 1000; ++i) {
        const auto type = static_cast<tidemark::tm_spline::interpolationType>(random() % 4);
        curve.refSpline().addPoint({i * 0.1, static_cast<double>(random() % 100), type});
    }
    if (*expression && !curve.setExpression(expression)) return state.SkipWithError("refused");
    ValueNode node("CurveEval");
    static_cast<weft::PointerAttribute&>(node.pin("curve")).ownPointers().setValue(&curve);
    node.reals("time", million, 0.0f, 100.0f);
    node.measure(state, "time", "result");
    state.counters["per_time"] =
        benchmark::Counter(double(million) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
constexpr const char* curveExpression = "sin(t) * 2 + frame / 30";
BENCHMARK_CAPTURE(curveEval, keys, "")->Name("values/curveEval");
BENCHMARK_CAPTURE(curveEval, expression, curveExpression)->Name("values/curveEvalExpression");

#if SLUICE_BENCH_MUPARSER
void muParserAlone(State& state) {
    mu::Parser parser;
    double time = 0.0;
    double frame = 0.0;
    parser.DefineVar("t", &time);
    parser.DefineVar("frame", &frame);
    parser.SetExpr(curveExpression);
    std::vector<float> results(million);
    for (auto _ : state) {
        for (uint32_t i = 0; i < million; ++i) {
            time = i * 1e-4;
            frame = time * 30.0;
            results[i] = static_cast<float>(parser.Eval());
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(muParserAlone)->Name("values/muParserAlone");
#endif

} // namespace
