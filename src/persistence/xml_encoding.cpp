// SPDX-License-Identifier: Apache-2.0
// Tests of the encoding of graph files.
#include "persistence/xml_encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tidemark::sluice::graph {

namespace {

using Byte = unsigned char;

bool isContinuation(Byte byte) { return (byte & 0xc0) == 0x80; }

// Bytes of the sequence that begins with `first`; 0 when none may.
std::size_t sequenceLength(Byte first) {
    if (first < 0x80) return 1;
    if (first < 0xc2) return 0;
    if (first < 0xe0) return 2;
    if (first < 0xf0) return 3;
    return first < 0xf5 ? 4 : 0;
}

// The second byte rules out overlong forms, surrogates and what lies beyond the last code point.
bool isSecondByteAllowed(Byte first, Byte second) {
    switch (first) {
    case 0xe0:
        return second >= 0xa0;
    case 0xed:
        return second < 0xa0;
    case 0xf0:
        return second >= 0x90;
    case 0xf4:
        return second < 0x90;
    default:
        return true;
    }
}

bool isSequence(const Byte* bytes, std::size_t length) {
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(bytes[i])) return false;
    }
    return length < 2 || isSecondByteAllowed(bytes[0], bytes[1]);
}

// True for eight bytes that are ASCII and not NUL.
bool isPlain(const Byte* bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    constexpr uint64_t ones = 0x0101010101010101u;
    constexpr uint64_t highBits = ones << 7;
    return ((word | (word - ones)) & highBits) == 0;
}

// Offset of the first byte that is NUL, when `stopAtNul`, or that begins no valid sequence.
std::size_t firstBadByte(std::string_view text, bool stopAtNul) {
    const auto* bytes = reinterpret_cast<const Byte*>(text.data());
    std::size_t at = 0;
    while (at < text.size()) {
        if (at + 8 <= text.size() && isPlain(bytes + at)) {
            at += 8;
            continue;
        }
        if (stopAtNul && bytes[at] == 0) break;
        const std::size_t length = sequenceLength(bytes[at]);
        if (length == 0 || at + length > text.size() || !isSequence(bytes + at, length)) break;
        at += length;
    }
    return at;
}

// UTF-16 and UTF-32 show themselves by a mark or by a "<" beside a NUL byte.
bool isWide(std::string_view bytes) {
    using namespace std::string_view_literals;
    for (const std::string_view mark :
         {"\xfe\xff"sv, "\xff\xfe"sv, "\0\0\xfe\xff"sv, "<\0"sv, "\0<"sv, "\0\0\0<"sv}) {
        if (bytes.substr(0, mark.size()) == mark) return true;
    }
    return false;
}

// The encoding that an XML declaration names; empty when it names none.
std::string_view declaredEncoding(std::string_view bytes) {
    bytes.remove_prefix(byteOrderMarkLength(bytes));
    if (bytes.substr(0, 5) != "<?xml") return {};
    const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    const std::size_t word = declaration.find("encoding");
    if (word == std::string_view::npos) return {};
    const std::size_t open = declaration.find_first_of("\"'", word);
    if (open == std::string_view::npos) return {};
    const std::size_t close = declaration.find(declaration[open], open + 1);
    if (close == std::string_view::npos) return {};
    return declaration.substr(open + 1, close - open - 1);
}

bool isReadable(std::string_view encoding) {
    const TM_String name = text::toLower(encoding);
    return name.empty() || name == "utf-8" || name == "utf8" || name == "us-ascii" ||
           name == "ascii";
}

} // namespace

bool isUtf8(std::string_view bytes) { return firstBadByte(bytes, false) == bytes.size(); }

std::size_t byteOrderMarkLength(std::string_view bytes) {
    return bytes.substr(0, 3) == "\xef\xbb\xbf" ? 3 : 0;
}

long lineAt(std::string_view bytes, std::size_t offset) {
    const std::string_view before = bytes.substr(0, offset);
    return 1 + static_cast<long>(std::count(before.begin(), before.end(), '\n'));
}

Optional<XmlProblem> findEncodingProblem(std::string_view bytes) {
    if (isWide(bytes)) return XmlProblem{"encoded as UTF-16 or UTF-32; only UTF-8 is read", 1};
    const std::string_view encoding = declaredEncoding(bytes);
    const std::size_t bad = firstBadByte(bytes, true);
    if (bad < bytes.size() && bytes[bad] == '\0') {
        return XmlProblem{"a NUL byte in the text", lineAt(bytes, bad)};
    }
    if (!isReadable(encoding)) {
        return XmlProblem{"encoding \"" + TM_String(encoding.substr(0, 40)) +
                              "\" is declared; only UTF-8 is read",
                          1};
    }
    if (bad < bytes.size()) return XmlProblem{"bytes that are not UTF-8", lineAt(bytes, bad)};
    return {};
}

} // namespace tidemark::sluice::graph
