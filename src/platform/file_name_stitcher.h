// SPDX-License-Identifier: Apache-2.0
// Names of numbered files: where the frame number stands between the name and the extension.
//
//     char format[FileNameStitcher::formatCapacity];
//     FileNameStitcher::instance().setFormatStr(format, FrameExtensionOrder::nameUnderscoreFrame,
//     4);
//     // "%s_%04i.%s": name, frame, extension
#pragma once

#include <cstddef>

#include "core/export.h"

namespace tidemark {

/// Written with # for the frame number.
enum class FrameExtensionOrder : int {
    nameUnderscoreFrame = 0, ///< name_#.ext
    nameDotFrame = 1,        ///< name.#.ext
    nameFrame = 2,           ///< name#.ext
    nameDashFrame = 3,       ///< name-#.ext
};

/// Makes the printf formats of numbered file names. Has no state; may be used from any thread.
class SLUICE_API FileNameStitcher {
public:
    /// Bytes that `setFormatStr` may write, the terminating zero included.
    static constexpr std::size_t formatCapacity = 32;
    /// Wider paddings are taken as this.
    static constexpr unsigned mostPadding = 64;

    static FileNameStitcher& instance();

    /// Writes a format of three slots into `format`: the name as a string, the frame as an integer
    /// with at least `padding` digits (0: as many as it has), the extension as a string. An order
    /// that is none of the four leaves `format` as it is. Nothing of a user's text gets into it.
    void setFormatStr(char* format, const FrameExtensionOrder& order, const unsigned& padding);
};

} // namespace tidemark
