// SPDX-License-Identifier: Apache-2.0
// From a file or a text to a property tree, whatever the bytes are.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/text.h"
#include "core/types.h"
#include "graph/property_tree_fwd.h"
#include "persistence/packed_xml.h"

namespace tidemark::sluice::graph {

/// Reads a whole regular file; anything else, such as a folder, a pipe or a device, is refused.
Optional<XmlProblem> readRegularFile(const TM_String& path, std::string& bytes);

/// Loads, checks and packs a file (`isFile`) or a text.
Optional<XmlProblem> loadXml(bool isFile, const TM_String& pathOrText, PackedXml& document);

/// Hands pieces of packed documents to the property tree's parser; one object serves many pieces.
class XmlTreeParser {
public:
    XmlTreeParser();
    ~XmlTreeParser();

    /// Replaces `tree` by the elements of `packed`, which are its children. The text comes from a
    /// `PackedXml`: nothing else protects the parser.
    Optional<XmlProblem> parse(std::string_view packed, PropertyTree& tree);

private:
    struct Stream;
    std::unique_ptr<Stream> stream_;
};

/// Loads a document and makes it a tree as a whole.
Optional<XmlProblem> loadTree(bool isFile, const TM_String& pathOrText, PropertyTree& tree);

/// Posts id 2263: `file` (empty for a text), what is wrong, and the line.
void reportXmlProblem(const TM_String& file, const XmlProblem& problem);

/// What to say of a failed system call.
TM_String systemErrorText(int error);

} // namespace tidemark::sluice::graph
