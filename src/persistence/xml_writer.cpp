// SPDX-License-Identifier: Apache-2.0
// Writing of elements and the escaping of their text.
#include "persistence/xml_writer.h"

#include <boost/property_tree/ptree.hpp>

#include "persistence/tree_access.h"
#include "persistence/xml_encoding.h"

namespace tidemark::sluice::graph {

namespace {

constexpr std::size_t indentPerLevel = 4;
constexpr std::size_t pieceSize = 1 << 20;

bool isBlank(unsigned char c) { return c == ' ' || c == '\t' || c == '\n'; }

// What stands in the file for a character that may not stand there itself. A carriage return would
// be taken for a line break, and other control characters for nothing at all.
std::string_view entityOf(char c) {
    switch (c) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '"':
        return "&quot;";
    case '\'':
        return "&apos;";
    default:
        return {};
    }
}

void appendReference(unsigned char c, std::string& out) {
    out.append("&#").append(std::to_string(static_cast<unsigned>(c))).append(";");
}

// Each byte that is not printable ASCII as \xNN.
TM_String printable(std::string_view text) {
    TM_String result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte > 0x7e) {
            result += text::format("\\x%02x", static_cast<unsigned>(byte));
        } else {
            result += c;
        }
    }
    return result;
}

TM_String describe(const char* kind, const PropertyTree& element) {
    return TM_String(" of ") + kind + " \"" + printable(tree::childText(element, "name")) + "\"";
}

} // namespace

XmlWriter::XmlWriter(Sink sink) : sink_(std::move(sink)) {
    out_ = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
}

void XmlWriter::indent() { out_.append(depth_ * indentPerLevel, ' '); }

void XmlWriter::tag(std::string_view name, std::string_view before, std::string_view after) {
    out_.append(before).append(name).append(after);
}

// An element is begun without its bracket, as an empty one ends otherwise than one with content.
void XmlWriter::beginChild() {
    if (!open_.empty() && !open_.back().hasContent) {
        open_.back().hasContent = true;
        out_ += ">\n";
    }
}

void XmlWriter::open(const char* name) {
    beginChild();
    indent();
    tag(name, "<", "");
    open_.push_back({name, false});
    ++depth_;
}

void XmlWriter::close() {
    const Open element = open_.back();
    open_.pop_back();
    --depth_;
    if (element.hasContent) {
        indent();
        tag(element.name, "</", ">\n");
    } else {
        out_ += "/>\n";
    }
    flush(pieceSize);
}

void XmlWriter::leaf(std::string_view name, std::string_view content) {
    beginChild();
    indent();
    if (content.empty()) {
        tag(name, "<", "/>\n");
    } else {
        tag(name, "<", ">");
        text(content);
        tag(name, "</", ">\n");
    }
    flush(pieceSize);
}

void XmlWriter::children(const PropertyTree& tree) {
    for (const auto& [name, subtree] : tree) {
        beginChild();
        element(name, subtree);
    }
}

void XmlWriter::element(std::string_view name, const PropertyTree& tree) {
    if (tree.empty()) return leaf(name, tree.data());
    indent();
    tag(name, "<", ">\n");
    ++depth_;
    if (!tree.data().empty()) {
        indent();
        text(tree.data());
        out_ += '\n';
    }
    for (const auto& [childName, subtree] : tree) element(childName, subtree);
    --depth_;
    indent();
    tag(name, "</", ">\n");
}

void XmlWriter::text(std::string_view content) {
    std::size_t first = 0;
    unsigned char bits = 0;
    // Text of nothing but blanks would be taken for the layout of the file.
    const bool isAllBlank = content.find_first_not_of(" \t\n") == std::string_view::npos;
    if (isAllBlank) appendReference(static_cast<unsigned char>(content[first++]), out_);
    for (const char c : content.substr(first)) {
        const auto byte = static_cast<unsigned char>(c);
        bits |= byte;
        if (const std::string_view entity = entityOf(c); !entity.empty()) {
            out_ += entity;
        } else if (byte < 0x20 && !isBlank(byte)) {
            appendReference(byte, out_);
        } else {
            out_ += c;
        }
    }
    if ((bits & 0x80) != 0 && !isUtf8(content)) badText_ = failed_ = true;
}

void XmlWriter::flush(std::size_t limit) {
    if (out_.size() < limit) return;
    if (!failed_ && !sink_(out_)) failed_ = true;
    out_.clear();
}

bool XmlWriter::finish() {
    flush(0);
    return !failed_;
}

TM_String findBadText(const PropertyTree& tree) {
    for (const auto& [name, element] : tree) {
        if (!isUtf8(element.data())) return "the \"" + name + "\"";
        TM_String place = findBadText(element);
        if (place.empty()) continue;
        if (name == "input") place += describe("pin", element);
        if (name == "node") place += describe("node", element);
        return place;
    }
    return {};
}

} // namespace tidemark::sluice::graph
