// SPDX-License-Identifier: Apache-2.0
// Graph files beyond the scene's own operations: documents as property trees, layouts and their
// text forms, and the small tools that work on trees.
#pragma once

#include <cstdint>

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"
#include "core/types.h"
#include "graph/base/graph_layout.h"
#include "graph/property_tree_fwd.h"

namespace tidemark::graph {
class GraphNodeBase;
}

namespace tidemark::sluice::graph {

class SL_GraphScene;
using tidemark::graph::GraphLayout;

/// Static operations only. A "document" is a tree whose child is the element "scene". Reading
/// operations answer false when the element they are for is missing; parse errors and bad layout
/// values are reported to the host.
class SLUICE_API GraphParsingHelper {
public:
    /// Called while a scene is read from a file or text, about once per hundredth: with the stage,
    /// "nodes" or "connections", and bytes read and in all. Null at start; set it while nothing is
    /// read.
    static void (*readProgress_)(const char* stage, uint64_t done, uint64_t total);

    // Documents. Comments, attributes and the blanks between elements do not enter the tree.

    static bool XML_toPropertyTree(bool isFile, const TM_String& pathOrText, PropertyTree& tree);
    static bool XML_fileToPropertyTree(const TM_String& path, PropertyTree& tree);
    static bool XML_stringToPropertyTree(const TM_String& text, PropertyTree& tree);
    /// Reports nothing.
    static bool XML_stringToPropertyTreeNoError(const TM_String& text, PropertyTree& tree);

    /// Levels of elements beyond which documents are refused; 1,024 at start, at most 2,048.
    static unsigned getMaximumDepth();
    static void setMaximumDepth(unsigned levels);

    // Scenes with their layout, which ends up under the names that the nodes really have.

    static bool read_XML_base_static(const PropertyTree& document, SL_GraphScene& scene,
                                     GraphLayout& layout);
    static bool read_XML_base_static(bool isFile, const TM_String& pathOrText, SL_GraphScene& scene,
                                     GraphLayout& layout);
    /// To the file `path`, or to `out`.
    static bool write_XML_base_static(bool isFile, const TM_String& path,
                                      const SL_GraphScene& scene, const GraphLayout& layout,
                                      TM_String& out);

    // Layouts. What is read is added to what `layout` holds.

    /// True when one of the three lists was there.
    static bool readLayout_XML(const PropertyTree& document, GraphLayout& layout);
    static bool readLayout_XML(const TM_String& path, GraphLayout& layout);
    static bool readLayout_XML_fromString(const TM_String& text, GraphLayout& layout);
    static bool readNodesLayout_fromBoostPropertyTree(const PropertyTree& document,
                                                      GraphLayout& layout);
    static bool readConnectionsLayout_fromBoostPropertyTree(const PropertyTree& document,
                                                            GraphLayout& layout);
    static bool readNotesLayout_fromBoostPropertyTree(const PropertyTree& document,
                                                      GraphLayout& layout);
    /// Replaces `layout` by the document's, with what the scene's reading brought of its own, under
    /// the names that the scene's nodes have after that reading.
    static void readLayoutOf(const PropertyTree& document, const SL_GraphScene& scene,
                             GraphLayout& layout);

    /// Adds "layout" to the element "scene": the layout of the scene's nodes, and the notes.
    static void writeLayout_toBoostPropertyTree(PropertyTree& scene, const SL_GraphScene& graph,
                                                const GraphLayout& layout);
    /// Adds "layout" with all that `layout` holds, its connections included.
    static void writeLayoutBasic_toBoostPropertyTree(PropertyTree& scene,
                                                     const GraphLayout& layout);

    // These add one list to the element "layout".

    /// Of the nodes given and all below them, those that `layout` has a value for. Their names are
    /// full ones for children of the scene's root, and otherwise relative to their owner.
    static void
    writeNodeLayout_toBoostPropertyTree(PropertyTree& element,
                                        const ArrayOfPtr<tidemark::graph::GraphNodeBase>& nodes,
                                        const GraphLayout& layout);
    static void writeNotesLayout_toBoostPropertyTree(PropertyTree& element,
                                                     const GraphLayout& layout);
    static void writeNodesLayoutBasic_toBoostPropertyTree(PropertyTree& element,
                                                          const GraphLayout& layout);
    /// The names alone.
    static void writeConnectionsLayoutBasic_toBoostPropertyTree(PropertyTree& element,
                                                                const GraphLayout& layout);
    static void writeNotesLayoutBasic_toBoostPropertyTree(PropertyTree& element,
                                                          const GraphLayout& layout);

    // Text forms of layout values. Numbers do not depend on the locale.

    static TM_String tuple2_FLOAT_asString(const Tuple2<float, float>& value);
    static Optional<Tuple2<float, float>> convertTo_Tuple2_FLOAT(const TM_String& text);
    static TM_String color4F_asString3(const Color4<float>& color);
    static TM_String color4F_asString4(const Color4<float>& color);
    /// Exactly `count` numbers; alpha is 1 unless `count` is 4.
    static Optional<Color4<float>> convertTo_Color4F(const TM_String& text, int count);
    static TM_String bool_asString(bool value);
    /// "true", "yes", "enable", "enabled", "on", "1" and "false", "no", "disabled", "off", "0".
    static Optional<bool> convertTo_Bool(const TM_String& text);

    // One child of an element. Without value when it is missing, and, with a report that names
    // `context` (may be empty) and `key`, when its text is malformed.

    static Optional<Tuple2<float, float>>
    readTuple2_FLOAT_fromBoostPropertyTree(const PropertyTree& element, const TM_String& key,
                                           const TM_String& context);
    static Optional<bool> readBool_fromBoostPropertyTree(const PropertyTree& element,
                                                         const TM_String& key,
                                                         const TM_String& context);
    static Optional<TM_String> readStr_fromBoostPropertyTree(const PropertyTree& element,
                                                             const TM_String& key,
                                                             const TM_String& context);
    static Optional<Color4<float>> readColor_fromBoostPropertyTree(const PropertyTree& element,
                                                                   const TM_String& key, int count,
                                                                   const TM_String& context);

    // Tools on trees.

    /// The element that lists the document's nodes, inside the root node if it has one.
    static bool getNodesLevelSkippingRoot(const PropertyTree& document, PropertyTree& out);
    /// Whether the document holds one compound and nothing beside it: its name and element.
    static bool hasSingleCompoundAtTop(const PropertyTree& document, TM_String& name,
                                       PropertyTree& out);
    /// In the ends of every "connection" of the tree, at any depth: anywhere in the text, or at its
    /// beginning.
    static void replaceConnectionTextInPtree(PropertyTree& tree, const TM_String& before,
                                             const TM_String& after);
    static void replaceConnectionPrefixTextInPtree(PropertyTree& tree, const TM_String& before,
                                                   const TM_String& after);
};

} // namespace tidemark::sluice::graph
