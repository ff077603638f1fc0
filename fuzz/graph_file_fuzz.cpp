// SPDX-License-Identifier: Apache-2.0
// Reads arbitrary bytes as a graph, runs it, and writes and reads it again: nothing may crash, and
// what was written must read back and be written the same.
#include <signal.h>
#include <sys/time.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "bridge/host.h"
#include "core/limits.h"
#include "graph/graph_scene.h"
#include "persistence/graph_parsing_helper.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;

namespace {

// Nothing sleeps, and nothing but memory is written.
class QuietHost : public bridge::Host {
public:
    bool allowsSleep() const override { return false; }
    bool mayRead(const TM_String&) const override { return false; }
    bool mayWrite(const TM_String&) const override { return false; }
    int numberOfThreads() const override { return 2; }
};

SL_GraphScene* running = nullptr;

void interruptRunning(int) {
    if (running) running->requestInterrupt();
}

// Graphs may compute for ever; the run gets a quarter of a second.
void run(SL_GraphScene& scene) {
    running = &scene;
    const itimerval quarter{{0, 0}, {0, 250000}};
    ::setitimer(ITIMER_REAL, &quarter, nullptr);
    scene.run();
    const itimerval none{};
    ::setitimer(ITIMER_REAL, &none, nullptr);
    running = nullptr;
    scene.networkManager().clearInterrupt();
}

[[noreturn]] void fail(const char* claim, const TM_String& first, const TM_String& second) {
    std::fprintf(stderr, "%s\n--- first\n%s\n--- second\n%s\n", claim, first.c_str(),
                 second.c_str());
    std::abort();
}

// What a file puts below a node that is no compound is read, but not written again.
bool hasUnwrittenNodes(const SL_GraphScene& scene) {
    for (const auto entry : scene.nodesById()) {
        if (!entry.value->isCompound() && !entry.value->children().empty()) return true;
    }
    return false;
}

void checkReadsBack(const TM_String& written, const GraphLayout& layout, bool isWhole) {
    SL_GraphScene scene;
    GraphLayout readLayout;
    TM_String again;
    if (!GraphParsingHelper::read_XML_base_static(false, written, scene, readLayout)) {
        fail("what was written does not read back", written, again);
    }
    GraphParsingHelper::write_XML_base_static(false, {}, scene, layout, again);
    if (isWhole && again != written)
        fail("what was read back is written differently", written, again);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static QuietHost host;
    bridge::setHost(&host);
    limits::Limits limits;
    limits.maxElements = 100000;
    limits.maxMemory = uint64_t(1) << 30;
    limits.maxNodes = 2000;
    limits::set(limits);
    ::signal(SIGALRM, interruptRunning);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const TM_String text(reinterpret_cast<const char*>(data), size);
    SL_GraphScene scene;
    GraphLayout layout;
    GraphParsingHelper::read_XML_base_static(false, text, scene, layout);
    TM_String written;
    if (GraphParsingHelper::write_XML_base_static(false, {}, scene, layout, written)) {
        checkReadsBack(written, layout, !hasUnwrittenNodes(scene));
    }
    run(scene);
    GraphParsingHelper::write_XML_base_static(false, {}, scene, layout, written);
    return 0;
}
