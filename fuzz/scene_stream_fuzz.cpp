// SPDX-License-Identifier: Apache-2.0
// Reads arbitrary bytes as the record of a scene: it is read or refused, and a refusal leaves the
// scene empty.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "bridge/host.h"
#include "core/limits.h"
#include "persistence/scene_stream.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    limits::Limits limits;
    limits.maxElements = 100000;
    limits.maxMemory = uint64_t(1) << 30;
    limits.maxNodes = 2000;
    limits::set(limits);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SL_GraphScene scene;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    // Half of the records end as records do, so that more than the last byte is tried.
    for (const std::string& record : {bytes, bytes + '\0'}) {
        try {
            readSceneRecord(record, scene);
        } catch (const SceneStreamError&) {
            if (scene.getRootNode()->children().empty()) continue;
            std::fprintf(stderr, "a record that was refused left nodes behind\n");
            std::abort();
        }
        TM_String written;
        scene.write_XML_toString(written);
        scene.clear();
    }
    return 0;
}
