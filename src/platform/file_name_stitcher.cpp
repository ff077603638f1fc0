// SPDX-License-Identifier: Apache-2.0
// Formats of numbered file names.
#include "platform/file_name_stitcher.h"

#include <algorithm>
#include <cstdio>

namespace tidemark {

namespace {

const char* separatorOf(FrameExtensionOrder order) {
    switch (order) {
    case FrameExtensionOrder::nameUnderscoreFrame:
        return "_";
    case FrameExtensionOrder::nameDotFrame:
        return ".";
    case FrameExtensionOrder::nameFrame:
        return "";
    case FrameExtensionOrder::nameDashFrame:
        return "-";
    }
    return nullptr;
}

} // namespace

FileNameStitcher& FileNameStitcher::instance() {
    static FileNameStitcher stitcher;
    return stitcher;
}

void FileNameStitcher::setFormatStr(char* format, const FrameExtensionOrder& order,
                                    const unsigned& padding) {
    const char* separator = separatorOf(order);
    if (!separator) return;
    if (padding == 0) {
        std::snprintf(format, formatCapacity, "%%s%s%%i.%%s", separator);
    } else {
        std::snprintf(format, formatCapacity, "%%s%s%%0%ui.%%s", separator,
                      std::min(padding, mostPadding));
    }
}

} // namespace tidemark
