// SPDX-License-Identifier: Apache-2.0
// Records of scenes in binary streams.
#include "persistence/scene_stream.h"

#include <boost/property_tree/ptree.hpp>
#include <limits>

#include "persistence/tree_access.h"
#include "persistence/xml_document.h"

namespace tidemark::sluice::graph {

using platform::FileStream;
using platform::FileStreamEndian;
using platform::FileStreamRaw;
using platform::FileStreamRawBuffered;

namespace {

uint32_t readLength(FileStream& stream) {
    uint32_t length = 0;
    stream.readBytes(&length, sizeof(length));
    return length;
}
uint32_t readLength(FileStreamEndian& stream) { return stream.ReadUInt(); }

void writeLength(FileStream& stream, uint32_t length) {
    stream.writeBytes(&length, sizeof(length));
}
void writeLength(FileStreamEndian& stream, uint32_t length) { stream.WriteUInt(length); }

template <typename Stream>
Stream& writeRecord(Stream& stream, SL_GraphScene& scene) {
    TM_String text;
    if (!scene.write_XML_toString(text)) throw SceneStreamError("the scene has no text form");
    if (text.size() >= std::numeric_limits<uint32_t>::max()) {
        throw SceneStreamError("the scene's text is too long for a record");
    }
    writeLength(stream, static_cast<uint32_t>(text.size() + 1));
    stream.writeBytes(text.c_str(), text.size() + 1);
    return stream;
}

template <typename Stream>
Stream& readRecord(Stream& stream, SL_GraphScene& scene) {
    const uint32_t length = readLength(stream);
    // Before memory is taken: the length may be anything.
    if (length > stream.bytesLeft()) {
        throw SceneStreamError("\"" + stream.path() + "\": the record of a scene is said to have " +
                               std::to_string(length) + " bytes, and the file has " +
                               std::to_string(stream.bytesLeft()));
    }
    std::string record(length, '\0');
    stream.readBytes(record.data(), record.size());
    readSceneRecord(std::move(record), scene);
    return stream;
}

// Latest first, so that children go before their owners.
void removeImported(SL_GraphScene& scene) {
    const Array<NodeBase*> made = scene.getArrImportedNodes();
    for (uint32_t i = made.size(); i > 0; --i) scene.removeNodeFromGraph(made[i - 1]);
}

// Throws when an interrupt or a limit ends the reading. A list of connections may be missing.
void readContent(const PropertyTree& document, const PropertyTree& content, SL_GraphScene& scene) {
    const bool isWhole = scene.readNodes_fromBoostPropertyTree(document, nullptr, true) &&
                         (scene.readConnections_fromBoostPropertyTree(document) ||
                          !tree::child(content, "connections"));
    if (!isWhole) throw SceneStreamError("the reading of the scene was ended");
}

} // namespace

void readSceneRecord(std::string record, SL_GraphScene& scene) {
    if (record.empty() || record.back() != '\0') {
        throw SceneStreamError("the record of a scene does not end with a zero");
    }
    record.pop_back();
    PropertyTree document;
    if (const Optional<XmlProblem> problem = loadTree(false, record, document)) {
        throw SceneStreamError("the record of a scene is damaged: " + problem->message + " (line " +
                               std::to_string(problem->line) + ")");
    }
    const PropertyTree* content = tree::child(document, "scene");
    if (!content || !tree::child(*content, "nodes")) {
        throw SceneStreamError("the record holds no scene");
    }
    try {
        readContent(document, *content, scene);
    } catch (...) { // also when memory ran out
        removeImported(scene);
        throw;
    }
}

FileStreamRaw& operator<<(FileStreamRaw& stream, SL_GraphScene& scene) {
    return writeRecord(stream, scene);
}
FileStreamRawBuffered& operator<<(FileStreamRawBuffered& stream, SL_GraphScene& scene) {
    return writeRecord(stream, scene);
}
FileStreamEndian& operator<<(FileStreamEndian& stream, SL_GraphScene& scene) {
    return writeRecord(stream, scene);
}

FileStreamRaw& operator>>(FileStreamRaw& stream, SL_GraphScene& scene) {
    return readRecord(stream, scene);
}
FileStreamRawBuffered& operator>>(FileStreamRawBuffered& stream, SL_GraphScene& scene) {
    return readRecord(stream, scene);
}
FileStreamEndian& operator>>(FileStreamEndian& stream, SL_GraphScene& scene) {
    return readRecord(stream, scene);
}

} // namespace tidemark::sluice::graph
