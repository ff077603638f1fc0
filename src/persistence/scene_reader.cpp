// SPDX-License-Identifier: Apache-2.0
// The steps by which elements become nodes and connections.
#include "persistence/scene_reader.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <filesystem>

#include "bridge/host.h"
#include "graph/node_factory.h"
#include "graph/scene_manager.h"
#include "persistence/compound_file.h"
#include "persistence/graph_parsing_helper.h"
#include "persistence/tree_access.h"
#include "persistence/xml_document.h"

namespace tidemark::sluice::graph {

namespace {

namespace message = bridge::message;

// Looking for what was meant compares with every name at hand: not for thousands of reports, nor
// among thousands of siblings.
constexpr unsigned mostSuggestions = 100;
constexpr uint32_t mostCandidates = 1000;

void post(int id, const Array<TM_String>& arguments) {
    bridge::CCallbackCenter::Instance().Post(id, arguments);
}

TM_String fullNameInFile(const TM_String& prefix, const TM_String& name) {
    if (prefix.empty() || (prefix == "root" && name == "root")) return name;
    return prefix + "." + name;
}

const PropertyTree* listOf(const PropertyTree& document, const char* list) {
    const PropertyTree* scene = tree::child(document, "scene");
    return scene ? tree::child(*scene, list) : nullptr;
}

} // namespace

// Nodes.

void SceneReader::clearImported() {
    scene_.refXmlToImportedName().clear();
    scene_.arrImportedNodes_.clear();
    scene_.refXmlImportedLayout().clear();
}

bool SceneReader::isRefused(const TM_String& lowerType, bool atRoot, const TM_String& fullName,
                            const TM_String& type) {
    const bool isInterface = lowerType == "compoundinterface" || lowerType == "inputinterface" ||
                             lowerType == "outputinterface";
    if (!atRoot || !isInterface) return false;
    post(message::interfaceAtRoot, {fullName, type});
    return true;
}

Optional<SceneReader::Begun> SceneReader::beginNode(const PropertyTree& tree,
                                                    const TM_String& prefix, NodeBase* parent) {
    const TM_String& name = tree::childText(tree, "name");
    const TM_String& type = tree::childText(tree, "type");
    Begun begun{nullptr, fullNameInFile(prefix, name)};
    if (type.empty() && (!parent || name == "root")) {
        begun.node = parent ? parent : static_cast<NodeBase*>(scene_.getRootNode());
    } else {
        const TM_String lower = text::toLower(type);
        const bool atRoot = !parent || parent->isRoot();
        if (isRefused(lower, atRoot, begun.fullName, type)) return {};
        // Evaluators inside of compounds are what interface nodes were once called.
        const bool isOldInterface = lower == "evaluator" && !atRoot;
        begun.node =
            makeNode(tree, isOldInterface ? "CompoundInterface" : type, begun, prefix, parent);
        if (!begun.node) return {};
    }
    TM_String nameNow = begun.node->getFullName();
    if (nameNow != begun.fullName) {
        scene_.refXmlToImportedName()[begun.fullName] = std::move(nameNow);
    }
    return begun;
}

NodeBase* SceneReader::makeNode(const PropertyTree& tree, const TM_String& type, const Begun& begun,
                                const TM_String& prefix, NodeBase* parent) {
    if (!mayMakeNode() || isTooDeep(begun.fullName, parent)) return nullptr;
    NodeFactory* const factory = SceneManager::instance().getNodeFactoryFromType(type);
    if (auto* file = dynamic_cast<RefToPathNodeFactory*>(factory)) {
        return makeReference(*file, tree::childText(tree, "name"), begun, prefix, parent);
    }
    NodeBase* const node = factory ? factory->createNode() : nullptr;
    if (node) return makeBuiltIn(tree, node, parent);
    reportUnknownType(type, begun.fullName);
    return nullptr;
}

NodeBase* SceneReader::makeBuiltIn(const PropertyTree& tree, NodeBase* node, NodeBase* parent) {
    ++nodesMade_;
    if (!openFiles_.empty()) ++nodesOfFiles_;
    scene_.addNodeToGraph(node);
    // At once: whoever takes back a reading that an exception ended finds the node here.
    scene_.arrImportedNodes_.append(node);
    node->setNodeOwner(parent ? parent : scene_.getRootNode());
    node->setName(tree::childText(tree, "name"));
    node->forgetPinsOrder();
    node->readInputs_fromBoostPropertyTree(tree);
    node->readOutputs_fromBoostPropertyTree(tree);
    node->setAutoAffects();
    return node;
}

// Compound files.

namespace {

// Files in files; beyond this depth somebody generates them.
constexpr std::size_t mostFilesInFiles = 100;

// Files that name each other twice grow by powers of two. Who sets a limit on nodes chooses it.
constexpr uint64_t mostNodesOfFiles = 250000;

// A graph holds no deeper nodes than a file can: what is read can be written and read again.
std::size_t mostOwners() {
    constexpr unsigned levelsAround = 8; // the lists above the first node, the pins of the last
    constexpr unsigned levelsOfNode = 2;
    const unsigned levels = GraphParsingHelper::getMaximumDepth();
    return levels > levelsAround ? (levels - levelsAround) / levelsOfNode : 0;
}

TM_String canonicalPath(const TM_String& path) {
    std::error_code error;
    const std::filesystem::path found = std::filesystem::weakly_canonical(path, error);
    return error ? path : found.string();
}

} // namespace

void SceneReader::setFile(const TM_String& path) { documentFile_ = canonicalPath(path); }

bool SceneReader::isTooDeep(const TM_String& fullName, const NodeBase* parent) {
    // A document by itself is limited by its loading.
    if (openFiles_.empty()) return false;
    std::size_t owners = 0;
    const std::size_t most = mostOwners();
    const GraphNodeBase* owner = parent;
    while (owner && !owner->isRoot() && owners < most) {
        ++owners;
        owner = owner->getNodeOwner();
    }
    if (owners < most) return false;
    reportXmlProblem(
        filePaths_.back(),
        XmlProblem{"the nodes are nested too deep, node \"" + fullName + "\" is left out", 0});
    return true;
}

bool SceneReader::mayOpen(const RefToPathNodeFactory& factory, const TM_String& fullName) {
    const TM_String path = canonicalPath(factory.getFilePath());
    const auto refuse = [&](const char* what) {
        reportXmlProblem(factory.getFilePath(),
                         XmlProblem{what + (", node \"" + fullName + "\" is left out"), 0});
        return false;
    };
    const bool isOpen = path == documentFile_ ||
                        std::find(openFiles_.begin(), openFiles_.end(), path) != openFiles_.end();
    if (isOpen) return refuse("the file includes itself");
    if (openFiles_.size() >= mostFilesInFiles) return refuse("files include files too deep");
    if (nodesOfFiles_ >= mostNodesOfFiles && limits::current().maxNodes == 0) {
        return refuse("files include files without an end");
    }
    openFiles_.push_back(path);
    filePaths_.push_back(factory.getFilePath());
    return true;
}

NodeBase* SceneReader::makeReference(RefToPathNodeFactory& factory, const TM_String& name,
                                     const Begun& begun, const TM_String& prefix,
                                     NodeBase* parent) {
    if (!mayOpen(factory, begun.fullName)) return nullptr;
    // The file may have changed since the last reading, but not within one.
    if (upToDate_.insert(&factory).second) factory.updatePropertyTree();
    const auto nodes = tree::makeDocument();
    const auto connections = tree::makeDocument();
    const auto layout = tree::makeDocument();
    factory.getCleanPropertyTree(name, begun.fullName, *nodes, *connections, *layout);
    const PropertyTree* list = listOf(*nodes, "nodes");
    const PropertyTree* element = list ? tree::child(*list, "node") : nullptr;
    const Optional<NodeBase*> made =
        element ? readNode(*element, prefix, parent) : Optional<NodeBase*>();
    if (made) {
        (*made)->setNodeOwner(parent ? parent : scene_.getRootNode());
        (*made)->setName(name);
        readConnections(*connections);
        GraphLayout read;
        GraphParsingHelper::readLayout_XML(*layout, read);
        scene_.refXmlImportedLayout().updateWithOther(read);
    }
    openFiles_.pop_back();
    filePaths_.pop_back();
    return made ? *made : nullptr;
}

void SceneReader::endNode(NodeBase* node, bool hadChildren) {
    if (hadChildren) {
        node->reorderInputPins(node->getInputPinsOrder());
        node->reorderOutputPins(node->getOutputPinsOrder());
    }
    if (auto* full = dynamic_cast<Node*>(node)) full->applyInternalConnections();
}

Optional<NodeBase*> SceneReader::readNode(const PropertyTree& tree, const TM_String& prefix,
                                          NodeBase* parent) {
    if (shouldStop()) return {};
    const Optional<Begun> begun = beginNode(tree, prefix, parent);
    if (!begun) return {};
    const PropertyTree* children = tree::child(tree, "nodes");
    if (children) {
        tree::forEach(*children, "node", [&](const PropertyTree& child) {
            readNode(child, begun->fullName, begun->node);
        });
    }
    endNode(begun->node, children != nullptr);
    return begun->node;
}

bool SceneReader::readNodes(const PropertyTree& document, NodeBase* parent, bool clear) {
    const PropertyTree* nodes = listOf(document, "nodes");
    if (!nodes) return false;
    if (clear) clearImported();
    tree::forEach(*nodes, "node",
                  [&](const PropertyTree& node) { readNode(node, "root", parent); });
    return !ended_;
}

// Pieces of a document.

bool SceneReader::parsePiece(std::string_view text, PropertyTree& tree) {
    problem_ = parser_.parse(text, tree);
    if (problem_) ended_ = true;
    return !ended_;
}

// Small siblings go through the parser together, a big one by itself.
template <typename Step>
void SceneReader::forEachPiece(const PackedXml& document, const PackedXml::Range& list, Step step) {
    PackedXml::Range piece{list.begin, list.begin};
    const auto hand = [&](const PackedXml::BigNode* big) {
        if (piece.size() > 0 && !shouldStop()) step(piece, big);
    };
    while (piece.end < list.end && !ended_) {
        const PackedXml::BigNode* big = document.bigNodeAt(piece.end);
        const std::size_t next = document.textEnd(piece.end);
        if (big || next != piece.end) {
            hand(nullptr);
            piece = {next, next};
        }
        piece.end = std::min(document.elementEnd(next), list.end);
        if (!big && piece.size() < PackedXml::bigElement) continue;
        hand(big);
        piece.begin = piece.end;
    }
    hand(nullptr);
}

void SceneReader::readChildren(const PackedXml& document, const PackedXml::Range& list,
                               const TM_String& prefix, NodeBase* parent) {
    forEachPiece(document, list, [&](const PackedXml::Range& piece, const PackedXml::BigNode* big) {
        if (big) return readBigNode(document, *big, prefix, parent);
        PropertyTree nodes;
        if (!parsePiece(document.text(piece), nodes)) return;
        tree::forEach(nodes, "node",
                      [&](const PropertyTree& node) { readNode(node, prefix, parent); });
        advance(piece.size());
    });
}

void SceneReader::readBigNode(const PackedXml& document, const PackedXml::BigNode& element,
                              const TM_String& prefix, NodeBase* parent) {
    // The node as it would be without its children.
    const PackedXml::Range& list = element.children;
    std::string head(document.text({element.whole.begin, element.whole.end}));
    if (list.size() > 0) head.erase(list.begin - element.whole.begin, list.size());
    PropertyTree wrapped;
    if (!parsePiece(head, wrapped)) return;
    advance(head.size());
    const PropertyTree& node = *tree::child(wrapped, "node");
    const Optional<Begun> begun = beginNode(node, prefix, parent);
    if (!begun) return advance(list.size());
    const bool hasChildren = tree::child(node, "nodes") != nullptr;
    wrapped.clear();
    readChildren(document, list, begun->fullName, begun->node);
    endNode(begun->node, hasChildren);
}

bool SceneReader::readNodes(const PackedXml& document, bool clear) {
    total_ = document.nodes().size() + document.connections().size();
    if (!document.hasNodes()) return false;
    if (clear) clearImported();
    stage_ = "nodes";
    readChildren(document, document.nodes(), "root", nullptr);
    return !ended_;
}

bool SceneReader::readConnections(const PackedXml& document) {
    if (!document.hasConnections()) return false;
    scene_.arrImportedConnections_.clear();
    stage_ = "connections";
    forEachPiece(document, document.connections(),
                 [&](const PackedXml::Range& piece, const PackedXml::BigNode*) {
                     PropertyTree connections;
                     if (!parsePiece(document.text(piece), connections)) return;
                     tree::forEach(connections, "connection", [&](const PropertyTree& connection) {
                         readConnection(connection);
                     });
                     advance(piece.size());
                 });
    return !ended_;
}

void SceneReader::advance(std::size_t bytes) {
    constexpr std::size_t steps = 100;
    const std::size_t before = done_;
    done_ = std::min(done_ + bytes, total_);
    if (!GraphParsingHelper::readProgress_ || total_ == 0) return;
    if (done_ == total_ || done_ * steps / total_ != before * steps / total_) {
        GraphParsingHelper::readProgress_(stage_, done_, total_);
    }
}

// Connections.

bool SceneReader::readConnections(const PropertyTree& document) {
    const PropertyTree* connections = listOf(document, "connections");
    if (!connections) return false;
    scene_.arrImportedConnections_.clear();
    tree::forEach(*connections, "connection", [&](const PropertyTree& connection) {
        if (!shouldStop()) readConnection(connection);
    });
    return !ended_;
}

void SceneReader::readConnection(const PropertyTree& tree) {
    const TM_String sourceName = scene_.translatePinName(tree::childText(tree, "source"));
    const TM_String targetName = scene_.translatePinName(tree::childText(tree, "target"));
    GraphNodePin* const source = scene_.getPinPtrByFullName(sourceName);
    GraphNodePin* const target = scene_.getPinPtrByFullName(targetName);
    if (!source) reportMissingPin(sourceName);
    if (!target) reportMissingPin(targetName);
    if (!source || !target) return;
    if (GraphConnection* connection = scene_.connect(source, target, false)) {
        scene_.arrImportedConnections_.append(connection);
        return;
    }
    scene_.refMessages().pushError(
        text::format("Unable to connect '%s' to '%s'", sourceName.c_str(), targetName.c_str()));
}

// Reports.

// The compound file that the trouble is in comes last; a document's own trouble names none.
void SceneReader::postWithFile(int id, Array<TM_String> arguments) {
    if (!filePaths_.empty()) arguments.append(filePaths_.back());
    post(id, arguments);
}

void SceneReader::reportUnknownType(const TM_String& type, const TM_String& fullName) {
    const auto [entry, isNew] = nearestTypes_.try_emplace(type);
    if (isNew && suggestions_ < mostSuggestions) {
        ++suggestions_;
        entry->second = SceneManager::instance().nearestNodeType(type);
    }
    postWithFile(message::unknownNodeType, {type, fullName, entry->second});
}

void SceneReader::reportMissingPin(const TM_String& fullPinName) {
    const bool suggest = suggestions_ < mostSuggestions;
    if (suggest) ++suggestions_;
    postWithFile(message::unknownConnectionPin,
                 {fullPinName, suggest ? nearestPinName(fullPinName) : TM_String()});
}

// A pin of the node that is named, or the same pin of the node that may have been meant.
TM_String SceneReader::nearestPinName(const TM_String& fullPinName) const {
    const std::size_t point = fullPinName.rfind('.');
    if (point == TM_String::npos) return {};
    const TM_String nodeName = fullPinName.substr(0, point);
    const TM_String pinName = fullPinName.substr(point + 1);
    Array<TM_String> names;
    if (const GraphNodeBase* node = scene_.getNodePtrByFullName(nodeName)) {
        for (const GraphNodePin* pin : node->pins()) names.append(pin->getName());
        const TM_String found = text::nearest(pinName, names);
        return found.empty() ? found : nodeName + "." + found;
    }
    const std::size_t ownerEnd = nodeName.rfind('.');
    if (ownerEnd == TM_String::npos) return {};
    const TM_String ownerName = nodeName.substr(0, ownerEnd);
    const GraphNodeBase* owner = scene_.getNodePtrByFullName(ownerName);
    if (!owner || owner->children().size() > mostCandidates) return {};
    for (const GraphNodeBase* child : owner->children()) {
        if (child->findPin(pinName)) names.append(child->getName());
    }
    const TM_String found = text::nearest(nodeName.substr(ownerEnd + 1), names);
    return found.empty() ? found : ownerName + "." + found + "." + pinName;
}

// Ends.

bool SceneReader::mayMakeNode() {
    const uint64_t most = limits::current().maxNodes;
    if (most == 0 || nodesMade_ < most) return true;
    if (!problem_) {
        problem_ = XmlProblem{"more nodes than the limit of " + std::to_string(most), 0};
    }
    ended_ = true;
    return false;
}

bool SceneReader::shouldStop() {
    if (scene_.networkManager().isInterrupted()) ended_ = true;
    return ended_;
}

} // namespace tidemark::sluice::graph
