// SPDX-License-Identifier: Apache-2.0
// Writes elements as the property tree's own writer does with encoding "utf-8" and an indent of 4
// blanks, byte for byte, but piece by piece, and so that everything reads back as it was: control
// characters become character references, and text that is not UTF-8 is refused.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/export.h"
#include "core/text.h"
#include "core/types.h"
#include "graph/property_tree_fwd.h"

namespace tidemark::sluice::graph {

class SLUICE_API XmlWriter {
public:
    /// Takes finished pieces of the document; false ends the writing.
    using Sink = std::function<bool(std::string_view piece)>;

    /// Begins with the declaration.
    explicit XmlWriter(Sink sink);

    /// Begins an element; what follows is its content until `close`.
    void open(const char* name);
    void close();
    /// An element with text alone.
    void leaf(std::string_view name, std::string_view text);
    /// The children of `tree`, each with all that is below.
    void children(const PropertyTree& tree);

    /// Hands out the rest; true when all was taken and every text could be written.
    bool finish();

    /// A text was no UTF-8. Nothing is handed out any more.
    bool hasBadText() const { return badText_; }
    bool hasFailed() const { return failed_; }

private:
    struct Open {
        const char* name;
        bool hasContent;
    };

    void element(std::string_view name, const PropertyTree& tree);
    void beginChild();
    void indent();
    void tag(std::string_view name, std::string_view before, std::string_view after);
    void text(std::string_view text);
    void flush(std::size_t limit);

    Sink sink_;
    std::string out_;
    std::vector<Open> open_;
    std::size_t depth_ = 0;
    bool badText_ = false;
    bool failed_ = false;
};

/// Where in `tree` the first text lies that is not UTF-8, for a report: 'the "value" of pin "in" of
/// node "Path_01"'. Empty when all is well.
SLUICE_API TM_String findBadText(const PropertyTree& tree);

} // namespace tidemark::sluice::graph
