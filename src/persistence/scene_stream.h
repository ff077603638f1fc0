// SPDX-License-Identifier: Apache-2.0
// Scenes inside an application's own binary files.
//
//     FileStreamRawBuffered stream(path, FileStream::Mode::write);
//     stream << scene;
//
// A record is a length of 32 bits, then so many bytes: the XML text of nodes and connections, as in
// graph files but without a layout, and a terminating zero. The length counts the zero. It has the
// stream's byte order, and the machine's in raw streams.
#pragma once

#include <stdexcept>

#include "graph/graph_scene.h"
#include "platform/file_streams.h"

namespace tidemark::sluice::graph {

/// A record that is none; the text says what is wrong with it.
class SLUICE_API SceneStreamError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Writing. These throw `FileStreamError`, and `SceneStreamError` for a scene that has no text form.

SLUICE_API platform::FileStreamRaw& operator<<(platform::FileStreamRaw& stream,
                                               SL_GraphScene& scene);
SLUICE_API platform::FileStreamRawBuffered& operator<<(platform::FileStreamRawBuffered& stream,
                                                       SL_GraphScene& scene);
SLUICE_API platform::FileStreamEndian& operator<<(platform::FileStreamEndian& stream,
                                                  SL_GraphScene& scene);

// Reading. The record is added to what the scene holds; unknown types and pins are reported to the
// host as with files. A record that is cut off, longer than its file or damaged throws
// `FileStreamError` or `SceneStreamError`; the scene is then as it was.

SLUICE_API platform::FileStreamRaw& operator>>(platform::FileStreamRaw& stream,
                                               SL_GraphScene& scene);
SLUICE_API platform::FileStreamRawBuffered& operator>>(platform::FileStreamRawBuffered& stream,
                                                       SL_GraphScene& scene);
SLUICE_API platform::FileStreamEndian& operator>>(platform::FileStreamEndian& stream,
                                                  SL_GraphScene& scene);

/// What reading does with the bytes of a record, the zero included.
SLUICE_API void readSceneRecord(std::string record, SL_GraphScene& scene);

} // namespace tidemark::sluice::graph
