// SPDX-License-Identifier: Apache-2.0
// Checking and packing the text of an XML document, in place and in one pass.
#include "persistence/packed_xml.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <vector>

#include "persistence/xml_encoding.h"

namespace tidemark::sluice::graph {

namespace {

constexpr unsigned usualDepth = 1024;
constexpr unsigned highestDepth = 2048;
std::atomic<unsigned> depthLimit{usualDepth};

constexpr std::string_view cdataOpening = "<![CDATA[";
constexpr std::string_view cdataClosing = "]]>";

constexpr std::array<bool, 256> membersOf(std::string_view characters) {
    std::array<bool, 256> members{};
    for (const char c : characters) members[static_cast<unsigned char>(c)] = true;
    return members;
}

// The document is looked at byte by byte: tests are single look-ups.
constexpr std::array<bool, 256> blanks = membersOf(" \n\t\r");
constexpr std::array<bool, 256> nameEnds = membersOf(std::string_view(" \n\t\r/><?!=&\"'\0", 14));

bool isBlank(char c) { return blanks[static_cast<unsigned char>(c)]; }
bool isNameCharacter(char c) { return !nameEnds[static_cast<unsigned char>(c)]; }

long lineBreaks(const char* begin, const char* end) { return std::count(begin, end, '\n'); }

bool begins(const char* text, std::string_view word) {
    return std::strncmp(text, word.data(), word.size()) == 0;
}

int digitOf(char c, int base) {
    if (c >= '0' && c <= '9') return c - '0';
    if (base == 16 && c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (base == 16 && c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Whether the text behind "&#" is a reference to a character that exists.
bool isReference(const char* text) {
    const int base = *text == 'x' ? 16 : 10;
    if (base == 16) ++text;
    constexpr unsigned last = 0x10ffff;
    unsigned code = 0;
    const char* const first = text;
    for (; digitOf(*text, base) >= 0 && code <= last; ++text) {
        code = code * static_cast<unsigned>(base) + static_cast<unsigned>(digitOf(*text, base));
    }
    const bool isSurrogate = code >= 0xd800 && code <= 0xdfff;
    return text != first && *text == ';' && code <= last && !isSurrogate;
}

} // namespace

unsigned maximumXmlDepth() { return depthLimit; }
void setMaximumXmlDepth(unsigned levels) { depthLimit = std::clamp(levels, 1u, highestDepth); }

// Reads at `in_` and writes at `out_`, which never overtakes it. The bytes end with a zero that
// stands nowhere before.
class XmlPacker {
public:
    explicit XmlPacker(PackedXml& target)
        : target_(target), begin_(target.bytes_.data()), in_(begin_), out_(begin_), token_(begin_) {
        in_ += byteOrderMarkLength(target.bytes_);
    }

    Optional<XmlProblem> run() {
        try {
            document();
        } catch (const Refusal& refusal) {
            const long line =
                droppedLines_ + lineBreaks(begin_, out_) + lineBreaks(token_, in_) + 1;
            return XmlProblem{refusal.message, line};
        }
        target_.bytes_.resize(static_cast<std::size_t>(out_ - begin_));
        target_.bytes_.shrink_to_fit();
        return {};
    }

private:
    struct Refusal {
        TM_String message;
    };
    // An element whose closing tag has not come yet. Offsets are those of the packed text.
    struct Open {
        std::size_t begin;
        std::size_t nameSize;
        std::size_t content;
        bool hasText = false;
        bool hasElements = false;
        bool hasChildren = false;
        PackedXml::Range children{};
    };

    [[noreturn]] void refuse(const char* where, TM_String message) {
        in_ = const_cast<char*>(where);
        throw Refusal{std::move(message)};
    }
    std::size_t offset() const { return static_cast<std::size_t>(out_ - begin_); }
    std::string_view nameOf(const Open& element) const {
        return {begin_ + element.begin + 1, element.nameSize};
    }

    void document() {
        while (*in_) {
            token_ = in_;
            if (*in_ == '<') {
                markup();
            } else {
                characters();
            }
        }
        token_ = in_;
        if (!open_.empty()) refuse(in_, "unexpected end of data");
        if (out_ == begin_) refuse(in_, "no element: the document is empty");
    }

    void drop(const char* end) {
        droppedLines_ += lineBreaks(token_, end);
        in_ = const_cast<char*>(end);
    }
    void keep(const char* end) {
        const auto size = static_cast<std::size_t>(end - in_);
        if (out_ != in_) std::memmove(out_, in_, size);
        out_ += size;
        in_ += size;
        token_ = in_;
    }
    void put(std::string_view text) { out_ += text.copy(out_, text.size()); }

    // Blanks are kept only where they may turn out to be the whole text of an element.
    void characters() {
        const char* const end = in_ + std::strcspn(in_, "<");
        const char* const solid = std::find_if_not(const_cast<const char*>(in_), end, isBlank);
        if (open_.empty() && solid != end) refuse(solid, "expected <");
        if (open_.empty() || (solid == end && open_.back().hasElements)) return drop(end);
        checkReferences(solid, end);
        open_.back().hasText |= solid != end;
        keep(end);
    }

    void checkReferences(const char* text, const char* end) {
        while ((text = static_cast<const char*>(
                    std::memchr(text, '&', static_cast<std::size_t>(end - text))))) {
            ++text;
            if (*text == '#' && !isReference(text + 1)) {
                refuse(text, "invalid numeric character entity");
            }
        }
    }

    void markup() {
        if (in_[1] == '/') return closingTag();
        if (in_[1] == '?') return dropThrough(in_ + 2, "?>");
        if (in_[1] != '!') return openingTag();
        if (begins(in_, "<!--")) return dropThrough(in_ + 4, "-->");
        if (begins(in_, cdataOpening)) return cdata();
        if (begins(in_, "<!DOCTYPE")) return documentType();
        dropThrough(in_ + 2, ">");
    }

    void dropThrough(const char* from, const char* closing) {
        const char* const end = std::strstr(from, closing);
        if (!end) refuse(from + std::strlen(from), "unexpected end of data");
        drop(end + std::strlen(closing));
    }

    void cdata() {
        if (open_.empty()) refuse(in_, "expected an element");
        const char* const end = std::strstr(in_ + cdataOpening.size(), cdataClosing.data());
        if (!end) refuse(in_ + std::strlen(in_), "unexpected end of data");
        open_.back().hasText = true;
        keep(end + cdataClosing.size());
    }

    void documentType() {
        int depth = 0;
        const char* at = in_;
        for (; *at && (*at != '>' || depth > 0); ++at) {
            if (*at == '[') ++depth;
            if (*at == ']') --depth;
        }
        if (!*at) refuse(at, "unexpected end of data");
        drop(at + 1);
    }

    // Attributes are no part of graph files: they are checked and left out.
    void openingTag() {
        const char* nameEnd = in_ + 1;
        while (isNameCharacter(*nameEnd)) ++nameEnd;
        if (nameEnd == in_ + 1) refuse(nameEnd, "expected element name");
        const char* end = afterAttributes(nameEnd);
        const bool isEmpty = *end == '/';
        if (isEmpty) ++end;
        if (*end != '>') refuse(end, "expected >");
        if (open_.size() >= maximumXmlDepth()) {
            refuse(in_, "elements are nested deeper than " + std::to_string(maximumXmlDepth()) +
                            " levels");
        }
        if (!open_.empty()) enterChild(open_.back());

        Open element{offset(), static_cast<std::size_t>(nameEnd - in_) - 1, 0};
        keep(nameEnd);
        drop(end + 1);
        put(isEmpty ? "/>" : ">");
        element.content = offset();
        if (isEmpty) return noteElement(element, {});
        open_.push_back(element);
    }

    const char* afterAttributes(const char* at) {
        at = afterBlanks(at);
        while (isNameCharacter(*at)) {
            while (isNameCharacter(*at)) ++at;
            at = afterBlanks(at);
            if (*at != '=') refuse(at, "expected =");
            at = afterBlanks(at + 1);
            const char quote = *at;
            if (quote != '"' && quote != '\'') refuse(at, "expected ' or \"");
            const char* const close = std::strchr(at + 1, quote);
            if (!close) refuse(at + std::strlen(at), "expected ' or \"");
            at = afterBlanks(close + 1);
        }
        return at;
    }

    static const char* afterBlanks(const char* at) {
        while (isBlank(*at)) ++at;
        return at;
    }

    // What stood before the first child was a line break and an indent.
    void enterChild(Open& parent) {
        if (!parent.hasElements && !parent.hasText) {
            droppedLines_ += lineBreaks(begin_ + parent.content, out_);
            out_ = begin_ + parent.content;
        }
        parent.hasElements = true;
    }

    void closingTag() {
        const char* const name = in_ + 2;
        const char* nameEnd = name;
        while (isNameCharacter(*nameEnd)) ++nameEnd;
        if (open_.empty()) refuse(in_, "closing tag without an element");
        if (!*nameEnd) refuse(nameEnd, "unexpected end of data");
        const Open element = open_.back();
        const std::string_view given(name, static_cast<std::size_t>(nameEnd - name));
        if (given != nameOf(element)) {
            refuse(in_, "closing tag \"" + TM_String(given.substr(0, 40)) + "\" where \"" +
                            TM_String(nameOf(element).substr(0, 40)) + "\" is open");
        }
        const char* const end = afterBlanks(nameEnd);
        if (*end != '>') refuse(end, "expected >");
        open_.pop_back();
        const PackedXml::Range content{element.content, offset()};
        keep(nameEnd);
        drop(end + 1);
        put(">");
        noteElement(element, content);
    }

    void noteElement(const Open& element, const PackedXml::Range& content) {
        const std::string_view name = nameOf(element);
        if (open_.empty()) {
            sceneIsOver_ |= name == "scene";
            return;
        }
        Open& parent = open_.back();
        const bool isInScene = open_.size() == 1 && !sceneIsOver_ && nameOf(parent) == "scene";
        if (name == "nodes" && !parent.hasChildren) {
            parent.hasChildren = true;
            parent.children = content;
            if (isInScene) {
                target_.hasNodes_ = true;
                target_.nodes_ = content;
            }
        } else if (name == "connections" && isInScene && !target_.hasConnections_) {
            target_.hasConnections_ = true;
            target_.connections_ = content;
        } else if (name == "node" && offset() - element.begin >= PackedXml::bigElement) {
            const PackedXml::Range whole{element.begin, offset()};
            target_.bigNodes_.emplace(element.begin, PackedXml::BigNode{whole, element.children});
        }
    }

    PackedXml& target_;
    char* begin_;
    char* in_;
    char* out_;
    const char* token_; // where reading stands, as far as lines are not counted yet
    long droppedLines_ = 0;
    bool sceneIsOver_ = false;
    std::vector<Open> open_;
};

Optional<XmlProblem> PackedXml::pack(std::string&& bytes) {
    *this = PackedXml();
    bytes_ = std::move(bytes);
    if (Optional<XmlProblem> problem = findEncodingProblem(bytes_)) return problem;
    return XmlPacker(*this).run();
}

const PackedXml::BigNode* PackedXml::bigNodeAt(std::size_t offset) const {
    const auto found = bigNodes_.find(offset);
    return found == bigNodes_.end() ? nullptr : &found->second;
}

std::size_t PackedXml::textEnd(std::size_t offset) const {
    return std::min(bytes_.find('<', offset), bytes_.size());
}

std::size_t PackedXml::elementEnd(std::size_t offset) const {
    if (const BigNode* big = bigNodeAt(offset)) return big->whole.end;
    const std::string_view text = bytes_;
    std::size_t depth = 0;
    std::size_t at = offset;
    while (at < text.size()) {
        if (text.substr(at, cdataOpening.size()) == cdataOpening) {
            at = text.find(cdataClosing, at) + cdataClosing.size();
        } else {
            const std::size_t end = text.find('>', at);
            if (text[at + 1] == '/') {
                --depth;
            } else if (text[end - 1] != '/') {
                ++depth;
            }
            at = end + 1;
        }
        if (depth == 0) return at;
        at = textEnd(at);
    }
    return text.size();
}

} // namespace tidemark::sluice::graph
