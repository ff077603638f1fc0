// SPDX-License-Identifier: Apache-2.0
// The signal handler and the state it reads: lock-free atomics only.
#include "tool/interrupts.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>

#include "graph/graph_scene.h"
#include "tool/exit_status.h"

namespace tidemark::tool {

namespace {

std::atomic<int> signalCount{0};
std::atomic<sluice::graph::SL_GraphScene*> runningScene{nullptr};
std::atomic<bool> isWriting{false};

static_assert(std::atomic<sluice::graph::SL_GraphScene*>::is_always_lock_free);

void onSignal(int) {
    if (signalCount.fetch_add(1) > 0) _exit(exitInterrupt);
    if (sluice::graph::SL_GraphScene* scene = runningScene.load()) {
        scene->requestInterrupt();
    } else if (!isWriting) {
        _exit(exitInterrupt);
    }
}

} // namespace

void watchSignals() {
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool wasSignalled() { return signalCount != 0; }

RunSection::RunSection(sluice::graph::SL_GraphScene& scene) { runningScene = &scene; }
RunSection::~RunSection() { runningScene = nullptr; }

WriteSection::WriteSection() { isWriting = true; }
WriteSection::~WriteSection() { isWriting = false; }

} // namespace tidemark::tool
