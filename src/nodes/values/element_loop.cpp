// SPDX-License-Identifier: Apache-2.0
// Waves, records, and the threads that run them.
#include "nodes/values/element_loop.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>

#include "core/update_observer.h"
#include "platform/thread.h"

namespace tidemark::sluice::graph {

namespace {

std::atomic<bool> threadForEveryRecord{false};

// Between two questions for an interrupt.
constexpr double pieceNanoseconds = 4'000'000;

void runRecord(const weft::NetworkManager& manager, const ElementRecord& record, double nanoseconds,
               ElementWork& work) {
    // However little an element is said to cost: some inputs cost a hundred times as much.
    constexpr double longestPiece = 1 << 16;
    const double most =
        std::clamp(pieceNanoseconds / std::max(nanoseconds, 0.01), 256.0, longestPiece);
    const auto piece = static_cast<uint32_t>(most);
    uint32_t first = record.first;
    for (uint32_t left = record.count; left > 0;) {
        const uint32_t count = std::min(left, piece);
        work.run(first, count);
        first += count;
        left -= count;
        if (left > 0) manager.pollInterrupt();
    }
}

struct Worker {
    Worker(const weft::NetworkManager& usedManager, const ElementRecord& ownRecord, double cost,
           ElementWork& sharedWork)
        : manager(usedManager), record(ownRecord), nanoseconds(cost), work(sharedWork),
          thread(enter, this) {}

    static void enter(void* self) {
        auto& worker = *static_cast<Worker*>(self);
        try {
            runRecord(worker.manager, worker.record, worker.nanoseconds, worker.work);
        } catch (...) {
            worker.failure = std::current_exception();
        }
    }

    const weft::NetworkManager& manager;
    ElementRecord record;
    double nanoseconds;
    ElementWork& work;
    std::exception_ptr failure;
    platform::Thread thread;
};

void runOnThreads(const weft::NetworkManager& manager, const std::vector<ElementRecord>& wave,
                  double nanoseconds, ElementWork& work) {
    std::vector<std::unique_ptr<Worker>> workers;
    workers.reserve(wave.size());
    for (const ElementRecord& record : wave) {
        workers.push_back(std::make_unique<Worker>(manager, record, nanoseconds, work));
    }
    std::vector<Worker*> left;
    for (const auto& worker : workers) {
        if (!worker->thread.start()) left.push_back(worker.get());
    }
    // The system has no more threads: this one takes their part.
    for (Worker* worker : left) worker->thread.runHere();
    {
        const weft::UpdateObserver::Waiting waiting;
        for (const auto& worker : workers) worker->thread.join();
    }
    for (const auto& worker : workers) {
        if (worker->failure) std::rethrow_exception(worker->failure);
    }
}

void runWave(const weft::NetworkManager& manager, const std::vector<ElementRecord>& wave,
             double nanoseconds, ElementWork& work) {
    const bool isWorthThreads =
        wave.size() > 1 && (threadForEveryRecord.load(std::memory_order_relaxed) ||
                            wave.front().count * nanoseconds >= worthThreadNanoseconds);
    if (isWorthThreads) return runOnThreads(manager, wave, nanoseconds, work);
    for (const ElementRecord& record : wave) runRecord(manager, record, nanoseconds, work);
}

// Whether any record of a loop would be worth a thread, without making the records.
bool isWorthSplitting(uint32_t count, int threads, double nanoseconds) {
    if (count <= 1 || threads <= 1) return false;
    if (threadForEveryRecord.load(std::memory_order_relaxed)) return true;
    const uint32_t chunk = std::max(count / static_cast<uint32_t>(threads), uint32_t(1));
    return chunk * nanoseconds >= worthThreadNanoseconds;
}

} // namespace

void setThreadForEveryRecord(bool always) { threadForEveryRecord = always; }

std::vector<std::vector<ElementRecord>> elementWaves(uint32_t count, int threads) {
    std::vector<std::vector<ElementRecord>> waves;
    if (count == 0) return waves;
    if (count == 1 || threads <= 1) return {{{0, count, 0}}};
    uint32_t start = 0;
    for (uint32_t remaining = count; remaining > 0;) {
        const uint32_t workers = std::min(remaining, static_cast<uint32_t>(threads));
        const uint32_t chunk = remaining / workers;
        std::vector<ElementRecord>& wave = waves.emplace_back();
        wave.reserve(workers);
        for (uint32_t i = 0; i < workers; ++i) wave.push_back({start + i * chunk, chunk, i});
        start += workers * chunk;
        remaining %= workers;
    }
    return waves;
}

std::vector<ElementRecord> rangeRecords(uint32_t first, uint32_t last, int threads) {
    if (last < first) return {};
    const uint32_t count = last - first + 1;
    const auto workers = static_cast<uint32_t>(std::max(threads, 1));
    const uint32_t chunk = count / workers;
    if (chunk == 0) return {{first, count, workers - 1}};
    std::vector<ElementRecord> records;
    for (uint32_t i = 0; i < workers; ++i) records.push_back({first + i * chunk, chunk, i});
    records.back().count += count % workers;
    return records;
}

void runElements(const weft::Node& node, uint32_t count, double nanoseconds, ElementWork& work) {
    if (count == 0) return;
    const weft::NetworkManager& manager = *node.networkManager();
    const int threads = node.getNumberOfThreadsToUse();
    if (!isWorthSplitting(count, threads, nanoseconds)) {
        return runRecord(manager, {0, count, 0}, nanoseconds, work);
    }
    for (const auto& wave : elementWaves(count, threads)) {
        runWave(manager, wave, nanoseconds, work);
    }
}

void runRange(const weft::Node& node, uint32_t first, uint32_t last, double nanoseconds,
              ElementWork& work) {
    const auto records = rangeRecords(first, last, node.getNumberOfThreadsToUse());
    if (!records.empty()) runWave(*node.networkManager(), records, nanoseconds, work);
}

} // namespace tidemark::sluice::graph
