// SPDX-License-Identifier: Apache-2.0
// Escaping for XML, by its definition of a character (Extensible Markup Language 1.0, section 2.2).
#include "core/markup.h"

#include <algorithm>
#include <cstdint>

namespace tidemark::text {

namespace {

bool isXmlCharacter(uint32_t code) {
    return code == '\t' || code == '\n' || (code >= 0x20 && code <= 0xd7ff) ||
           (code >= 0xe000 && code <= 0xfffd) || (code >= 0x10000 && code <= 0x10ffff);
}

/// Bytes of the UTF-8 character at `at`; 0 when none that XML can hold stands there.
std::size_t characterLength(std::string_view text, std::size_t at) {
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xc0 ? 0
                               : first < 0xe0 ? 2
                               : first < 0xf0 ? 3
                               : first < 0xf8 ? 4
                                              : 0;
    if (length == 0 || at + length > text.size()) return 0;
    uint32_t code = length == 1 ? first : first & (0x7fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xc0) != 0x80) return 0;
        code = code << 6 | (next & 0x3fu);
    }
    constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000}; // shorter forms must be used
    return code >= least[length] && isXmlCharacter(code) ? length : 0;
}

} // namespace

TM_String escapedMarkup(std::string_view text) {
    TM_String out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = characterLength(text, at);
        const char c = length == 0 ? '?' : text[at];
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            if (length > 1) {
                out += text.substr(at, length);
            } else {
                out += c;
            }
        }
        at += std::max<std::size_t>(length, 1);
    }
    return out;
}

TM_String cutText(std::string_view text, std::size_t most) {
    if (text.size() <= most) return TM_String(text);
    while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xc0) == 0x80) --most;
    return TM_String(text.substr(0, most)) + "...";
}

} // namespace tidemark::text
