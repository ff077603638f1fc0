// SPDX-License-Identifier: Apache-2.0
// The text of an XML document, checked once and packed: what the property tree's parser is given.
//
// Checking comes first because the parser trusts its input: it recurses with the nesting, stops at
// a NUL byte and takes any bytes for text. Packing leaves out comments, processing instructions and
// the blanks between elements, so that the tree holds nothing but what a reader asks for, and notes
// where the large lists lie, so that they can be turned into trees piece by piece.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/export.h"
#include "core/text.h"
#include "core/types.h"

namespace tidemark::sluice::graph {

/// Why a document was refused. `line` counts from 1; 0 when no line is to blame.
struct XmlProblem {
    TM_String message;
    long line = 0;
};

/// Nesting depth beyond which documents are refused; 1,024 unless set.
SLUICE_API unsigned maximumXmlDepth();
/// Between 1 and 2,048, whatever is asked for: parser and tree recurse with the nesting.
SLUICE_API void setMaximumXmlDepth(unsigned levels);

class SLUICE_API PackedXml {
public:
    /// Offsets into `text()`; empty when begin and end are equal.
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;

        std::size_t size() const { return end - begin; }
    };

    /// A "node" element of `bigElement` bytes or more, with the content of its first "nodes".
    struct BigNode {
        Range whole;
        Range children;
    };

    /// Takes `bytes` over, whatever the answer. Gives the problem when the bytes are no document.
    Optional<XmlProblem> pack(std::string&& bytes);

    std::string_view text() const { return bytes_; }
    std::string_view text(const Range& range) const {
        return std::string_view(bytes_).substr(range.begin, range.size());
    }

    // Of the first "scene": whether it has "nodes" and "connections", and the contents of the first
    // of each.

    bool hasNodes() const { return hasNodes_; }
    bool hasConnections() const { return hasConnections_; }
    const Range& nodes() const { return nodes_; }
    const Range& connections() const { return connections_; }

    /// Null when the element that begins at `offset` is not big.
    const BigNode* bigNodeAt(std::size_t offset) const;

    /// Where the text that stands at `offset` ends and the next tag begins.
    std::size_t textEnd(std::size_t offset) const;
    /// The end of the element that begins at `offset`.
    std::size_t elementEnd(std::size_t offset) const;

    static constexpr std::size_t bigElement = 64 * 1024;

private:
    friend class XmlPacker;

    std::string bytes_;
    bool hasNodes_ = false;
    bool hasConnections_ = false;
    Range nodes_;
    Range connections_;
    std::unordered_map<std::size_t, BigNode> bigNodes_;
};

} // namespace tidemark::sluice::graph
