// SPDX-License-Identifier: Apache-2.0
// Reading and writing whole scenes.
#include "persistence/scene_files.h"

#include <boost/property_tree/ptree.hpp>
#include <exception>

#include "persistence/graph_parsing_helper.h"
#include "persistence/scene_reader.h"
#include "persistence/scene_writer.h"

namespace tidemark::sluice::graph {

namespace {

// The document without its nodes and connections.
std::string withoutLists(const PackedXml& document) {
    std::string text(document.text());
    const PackedXml::Range& a = document.nodes();
    const PackedXml::Range& b = document.connections();
    const PackedXml::Range& later = a.begin > b.begin ? a : b;
    const PackedXml::Range& earlier = a.begin > b.begin ? b : a;
    text.erase(later.begin, later.size());
    text.erase(earlier.begin, earlier.size());
    return text;
}

Optional<XmlProblem> readLists(const PackedXml& document, SL_GraphScene& scene,
                               const TM_String* file) {
    SceneReader reader(scene);
    if (file) reader.setFile(*file);
    reader.readNodes(document, true);
    if (!reader.isEnded()) reader.readConnections(document);
    if (reader.problem()) return reader.problem();
    if (!document.hasNodes()) return XmlProblem{"no graph: there is no element scene.nodes", 0};
    return {};
}

Optional<XmlProblem> readDocument(bool isFile, const TM_String& pathOrText, SL_GraphScene& scene,
                                  GraphLayout* layout) {
    PackedXml document;
    if (Optional<XmlProblem> problem = loadXml(isFile, pathOrText, document)) return problem;
    const Optional<XmlProblem> problem = readLists(document, scene, isFile ? &pathOrText : nullptr);
    if (layout) {
        PropertyTree rest;
        if (Optional<XmlProblem> bad = XmlTreeParser().parse(withoutLists(document), rest)) {
            return bad;
        }
        GraphParsingHelper::readLayoutOf(rest, scene, *layout);
    }
    return problem;
}

} // namespace

bool readScene(bool isFile, const TM_String& pathOrText, SL_GraphScene& scene,
               GraphLayout* layout) {
    Optional<XmlProblem> problem;
    try {
        problem = readDocument(isFile, pathOrText, scene, layout);
    } catch (const std::exception& error) {
        problem = XmlProblem{TM_String("the reading was ended: ") + error.what(), 0};
    }
    if (problem) reportXmlProblem(isFile ? pathOrText : TM_String(), *problem);
    return !problem && !scene.networkManager().isInterrupted();
}

bool writeScene(bool toFile, const TM_String& path, const SL_GraphScene& scene,
                const GraphLayout* layout, TM_String& out) {
    Optional<XmlProblem> problem;
    try {
        SceneWriter writer(scene, layout);
        problem = toFile ? writer.toFile(path) : writer.toText(out);
    } catch (const std::exception& error) {
        problem = XmlProblem{TM_String("cannot be written: ") + error.what(), 0};
    }
    if (problem) reportXmlProblem(toFile ? path : TM_String(), *problem);
    return !problem;
}

TM_String relativeName(const TM_String& fullName, const TM_String& above) {
    const bool isBelow = fullName.compare(0, above.size(), above) == 0 &&
                         (fullName.size() == above.size() || fullName[above.size()] == '.');
    return isBelow ? "root" + fullName.substr(above.size()) : fullName;
}

} // namespace tidemark::sluice::graph
