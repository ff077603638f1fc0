// SPDX-License-Identifier: Apache-2.0
// The loop over the elements of an array, split over threads. Nodes rarely call it themselves:
// element_map.h applies a function to whole arrays on top of it.
//
//     forEachElement(node, count, nanoseconds, [&](uint32_t first, uint32_t length) {
//         for (uint32_t i = first; i < first + length; ++i) out[i] = work(in[i]);
//     });
//
// The elements are dealt out in waves. One wave has as many records as there are threads, all of
// the same length; what is left over makes the next wave. 10 elements on 4 threads: four records of
// 2, then two of 1. Every record gets a thread of its own, made for this call and joined in order
// before the next wave begins. Results do not depend on the number of threads as long as the work
// writes nothing but its own elements.
#pragma once

#include <cstdint>
#include <vector>

#include "core/node.h"

namespace tidemark::sluice::graph {

/// One thread's part of a loop.
struct ElementRecord {
    uint32_t first;
    uint32_t count;
    uint32_t thread; ///< its index in the wave
    friend bool operator==(const ElementRecord&, const ElementRecord&) = default;
};

/// The waves of `count` elements on `threads` threads (less than 1 counts as 1). With one thread,
/// or one element, a single record.
SLUICE_API std::vector<std::vector<ElementRecord>> elementWaves(uint32_t count, int threads);

/// The records of the elements `first` to `last` inclusive in one wave: `count / threads` each,
/// and the rest with the last thread; records without elements are left out. For loops whose
/// threads must know from the start what all of them will do.
SLUICE_API std::vector<ElementRecord> rangeRecords(uint32_t first, uint32_t last, int threads);

/// Making, starting and joining a thread costs 20 to 50 microseconds; below this much work a record
/// is run on the calling thread instead, in its place in the order. `threads/smallSin` in
/// bench/values_bench.cpp measures the break-even: 90 microseconds of work take 112 on two threads,
/// 180 take 164. Costs of elements are rough and rather too high, hence the margin.
constexpr double worthThreadNanoseconds = 120'000;

/// True: every record gets its thread, however small. For tests.
SLUICE_API void setThreadForEveryRecord(bool always);

/// What a loop does: the elements `first` to `first + count - 1`, on some thread. Long records are
/// run in several pieces so that an interrupt is answered in between; the pieces of one record
/// follow each other.
class ElementWork {
public:
    virtual void run(uint32_t first, uint32_t count) = 0;

protected:
    ~ElementWork() = default;
};

/// Runs `work` over `count` elements on the threads that `node` may use. `nanoseconds` is roughly
/// what one element costs. An exception in `work`, or an interrupt of the run, ends its record; the
/// others of the wave are joined, and the one of the earliest record is thrown here.
SLUICE_API void runElements(const weft::Node& node, uint32_t count, double nanoseconds,
                            ElementWork& work);

/// The same for `rangeRecords`.
SLUICE_API void runRange(const weft::Node& node, uint32_t first, uint32_t last, double nanoseconds,
                         ElementWork& work);

template <typename Function>
class ElementFunction final : public ElementWork {
public:
    explicit ElementFunction(Function& function) : function_(function) {}
    void run(uint32_t first, uint32_t count) override { function_(first, count); }

private:
    Function& function_;
};

template <typename Function>
void forEachElement(const weft::Node& node, uint32_t count, double nanoseconds, Function function) {
    ElementFunction<Function> work(function);
    runElements(node, count, nanoseconds, work);
}

template <typename Function>
void forEachInRange(const weft::Node& node, uint32_t first, uint32_t last, double nanoseconds,
                    Function function) {
    ElementFunction<Function> work(function);
    runRange(node, first, last, nanoseconds, work);
}

} // namespace tidemark::sluice::graph
