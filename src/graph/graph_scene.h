// SPDX-License-Identifier: Apache-2.0
// One editable graph with its logic network, and the system's main loop.
//
//     SL_GraphScene scene;
//     scene.read_XML("numbers.xml");
//     scene.run();
//     float sum = scene.getPinFloatValue("root.Sum.result");
#pragma once

#include <functional>
#include <map>
#include <memory>

#include "core/network_manager.h"
#include "graph/base/graph_layout.h"
#include "graph/base/graph_scene_base.h"
#include "graph/graph_node.h"

namespace tidemark::sluice::graph {

using tidemark::graph::GraphLayout;
using tidemark::graph::GraphScene;

class SuffixIndex;

/// The logic side of a scene. The root is a member and never released by count; it goes before the
/// network that it stands in.
struct SLUICE_API ScenePrivate {
    explicit ScenePrivate(SL_GraphScene* owner);
    ~ScenePrivate();

    weft::NetworkManager networkManager;
    SL_GraphScene* scene;
    weft::Node rootNode;
};

/// How the latest `run`, `runNode` or `runPin` ended.
enum class RunOutcome {
    finished,    ///< also when there was nothing to run
    quietCancel, ///< a node cancelled without a report
    interrupted, ///< `requestInterrupt`
    exception,   ///< a critical message, a loud cancel or a standard exception
    outOfMemory,
};

/// Attributes that stand beside all scenes and may hold values of any of them, such as those that
/// keep global variables. What removes references from a scene removes them there as well.
class SLUICE_API CommonAttributes {
public:
    /// Thread-safe. Calls `visit` with each attribute.
    virtual void visitAttributes(const std::function<void(weft::Attribute&)>& visit) = 0;

    /// Makes `attributes` known, for the rest of the process.
    static void install(CommonAttributes* attributes);
    /// Calls `visit` with each attribute of what was installed, if anything was.
    static void visitAll(const std::function<void(weft::Attribute&)>& visit);

protected:
    ~CommonAttributes() = default;
};

/// Edited and run by one thread at a time; `requestInterrupt` may be called from any.
class SLUICE_API SL_GraphScene : public GraphScene {
public:
    /// Registers at the scene manager, which the first scene makes.
    SL_GraphScene();
    ~SL_GraphScene() override;

    /// Exists as long as the library is loaded.
    static SL_GraphScene mainGraph_;

    bool isTold() const override { return !networkManager().isPrivate(); }

    ScenePrivate* getScenePrivate() const { return scenePrivate_; }
    weft::NetworkManager& networkManager() const { return scenePrivate_->networkManager; }
    void registerAtSceneManager();
    void unregisterFromSceneManager();

    // Nodes, pins and connections.

    /// Always true. The node has its logic node and pins afterwards.
    bool addNodeToGraph(GraphNodeBase* node) override;
    /// Gives the node a suffix above the highest in use: "Add_01", "Add_02", ...
    void assignUniqueName(GraphNodeBase* node);
    using GraphScene::connect;
    /// Null when the pins do not allow it. A refusal by the logic layer leaves the connection and
    /// an error on the source's node. `flag` is not read.
    GraphConnection* connect(GraphNodePin* source, GraphNodePin* target,
                             bool flag = false) override;
    bool removeConnection(GraphConnection* connection) override;
    GraphNodeBase* createNewCompound() override;
    GraphNodeBase* createNewInterfaceNode() override;
    GraphNodeBase* createNewEvaluator() override;
    GraphNodeBase* createNewPassThrough() override;
    /// Adds a pin to the interface node, an output for the input flag and an input for any other,
    /// and its counterpart to the compound; both are named "input" or "output" after the flag.
    bool addCompoundInterfacePin(const PinFlags& flags, GraphNodeBase* interfaceNode,
                                 GraphNodePin*& interfacePin, GraphNodePin*& compoundPin) override;
    GraphNodePin* createCompoundPinForInterfacePin(GraphNodePin* interfacePin) override;
    /// Removes everything but the root.
    void clear() override;
    /// Gives back the memory of all computed values, with messages and times.
    void purge() override;
    void setupNodeColor() override;
    using GraphScene::getEvaluablePins;
    void getEvaluablePins(ArrayOfPtr<GraphNodePin>& out) const override;

    // Running.

    /// Lets every evaluator pull its pins, in the order they were added. Failures are reported to
    /// the host; nothing is thrown for a `std::exception`.
    void run() override;
    /// The same machinery for one node, and for one pin.
    void runNode(NodeBase* node);
    void runPin(Pin* pin);
    /// Seconds.
    double getLastExecutionTime() const { return lastExecutionTime_; }
    double& refLastExecutionTime() { return lastExecutionTime_; }
    void setLastExecutionTime(double seconds) { lastExecutionTime_ = seconds; }
    RunOutcome lastOutcome() const { return outcome_; }

    /// Thread-safe and async-signal-safe: ends the run in progress within 100 ms, or the next run
    /// at its first pull, as a cancellation.
    void requestInterrupt() { scenePrivate_->networkManager.requestInterrupt(); }
    bool wasInterrupted() const { return outcome_ == RunOutcome::interrupted; }
    /// Full name of the innermost node that was running when the latest run was ended by an
    /// exception or interrupt; empty otherwise.
    TM_String interruptedNodeName() const { return interruptedNodeName_; }

    void setAllAttributesNotToBeEvaluated();
    void updateNodes_notCleaning(const TM_String& category);
    /// Nodes of type "Evaluator", "For" and "Kernel", in the order they were added.
    const Array<NodeBase*>& getArrUpdateNodes() const { return arrUpdateNodes_; }
    Array<NodeBase*>& refArrUpdateNodes() { return arrUpdateNodes_; }
    void setArrUpdateNodes(const Array<NodeBase*>& nodes) { arrUpdateNodes_ = nodes; }
    void removeFromUpdateNodes(NodeBase* node);
    /// Appends the nodes whose outputs lie upstream of the node's inputs; with repetitions.
    void addUpstreamNodes(Node* node, Array<Node*>& out) const;
    void addDownstream_EvaluatorAndFor_Nodes(Node* node, Array<Node*>& evaluators,
                                             Array<Node*>& fors) const;
    /// The node of a logic node; null when it has none in this scene.
    Node* nodeOf(const weft::Node* logicNode) const;

    // Caches of dirty chains.

    void setCacheDisabled(bool disabled, bool recompute);
    void recomputeCaches();

    // Values by full pin name; unknown names are ignored, or give 0.

    void setPinFloatValue(const TM_String& pinFullName, float value);
    void setPinIntValue(const TM_String& pinFullName, int value);
    void setPinStringValue(const TM_String& pinFullName, const TM_String& value);
    void setPinVector3Value(const TM_String& pinFullName, const Vector3<float>& value);
    float getPinFloatValue(const TM_String& pinFullName) const;
    int getPinIntValue(const TM_String& pinFullName) const;
    TM_String getPinStringValue(const TM_String& pinFullName) const;
    Vector3<float> getPinVector3Value(const TM_String& pinFullName) const;

    // References to host objects.

    /// Blanks every reference to the host object in the scene's values and in the common ones.
    void removeAllReferencesToNodePointer(void* nodo);
    /// The same for the values of one attribute class, which offers `removeReferencesTo(pointers)`.
    /// A scene that is thrown away as a whole is passed over: its values go as well.
    template <typename Attr>
    void removeAllReferencesToPointers(const Array<void*>& pointers) {
        const auto remove = [&](weft::Object& object) {
            if (auto* attribute = dynamic_cast<Attr*>(&object)) {
                attribute->removeReferencesTo(pointers);
            }
        };
        if (!networkManager().isTearingDown()) {
            for (const auto entry : networkManager().objects()) remove(*entry.value);
        }
        CommonAttributes::visitAll(remove);
    }
    template <typename Attr>
    void removeAllReferencesToPointer(void* pointer) {
        removeAllReferencesToPointers<Attr>({pointer});
    }

    // Colours.

    /// By whole name, then by the part before the first point; letter case ignored.
    static Color4<float> getColorForCategory(const TM_String& name);
    static Color4<float> getColorForCategoryChecking(const TM_String& name, bool& found);

    /// Every logic node's name with its last update time, and with its size in bytes; each pair of
    /// lists in rising order of the number. What the lists held before goes.
    void computeTimeAndMemoryRank(Array<TM_String>& namesByTime, Array<float>& times,
                                  Array<TM_String>& namesBySize, Array<uint64_t>& sizes) const;

    // Files: see persistence. Reading reports to the host and goes on; it does not clear first.

    /// False when nothing could be written or read at all.
    bool write_XML(const TM_String& path);
    bool write_XML_toString(TM_String& out);
    bool write_XML_base(bool toFile, const TM_String& path, TM_String& out);
    bool read_XML(const TM_String& path);
    bool read_XML_fromString(const TM_String& text);
    bool read_XML_base(bool isFile, const TM_String& pathOrText);
    void write_toBoostPropertyTree(PropertyTree& tree) const;
    /// Only the children of `parent` among `nodes` and the connections between them, with names
    /// relative to `parent`.
    void write_toBoostPropertyTree(PropertyTree& tree, const NodeBase* parent,
                                   const ArrayOfPtr<GraphNodeBase>& nodes) const;
    void writeNodes_toBoostPropertyTree(PropertyTree& tree) const;
    void writeNodes_toBoostPropertyTree(PropertyTree& tree, const NodeBase* parent,
                                        const ArrayOfPtr<GraphNodeBase>& nodes) const;
    void writeConnections_toBoostPropertyTree(PropertyTree& tree) const;
    void writeConnections_toBoostPropertyTree(PropertyTree& tree, const NodeBase* parent,
                                              const ArrayOfPtr<GraphNodeBase>& nodes) const;
    bool read_fromBoostPropertyTree(const PropertyTree& tree);
    bool read_fromBoostPropertyTree(const PropertyTree& tree, NodeBase* parent);
    Optional<NodeBase*> readNode_fromBoostPropertyTree(const PropertyTree& tree,
                                                       const TM_String& prefix, NodeBase* parent);
    bool readNodes_fromBoostPropertyTree(const PropertyTree& tree, NodeBase* parent, bool clear);
    bool readConnections_fromBoostPropertyTree(const PropertyTree& tree);

    // What the latest read found.

    const Array<NodeBase*>& getArrImportedNodes() const { return arrImportedNodes_; }
    const Array<GraphConnection*>& getArrImportedConnections() const {
        return arrImportedConnections_;
    }
    const GraphLayout& getXmlImportedLayout() const { return xmlImportedLayout_; }
    GraphLayout& refXmlImportedLayout() { return xmlImportedLayout_; }
    void setXmlImportedLayout(const GraphLayout& layout) { xmlImportedLayout_ = layout; }
    /// From the full name that the file gave a node to the name it has.
    const std::map<TM_String, TM_String>& getXmlToImportedName() const {
        return xmlToImportedName_;
    }
    std::map<TM_String, TM_String>& refXmlToImportedName() { return xmlToImportedName_; }
    void setXmlToImportedName(const std::map<TM_String, TM_String>& names) {
        xmlToImportedName_ = names;
    }
    TM_String translateNodeName(const TM_String& name) const;
    TM_String translatePinName(const TM_String& fullPinName) const;

protected:
    /// Connects the attributes; a refusal becomes an error on the source's node, and false.
    virtual bool weftConnect(GraphNodePin* source, GraphNodePin* target);

private:
    friend class Node;
    friend class SceneReader;

    template <typename Step>
    void runGuarded(Step step);
    template <typename Before, typename Step>
    void runSingle(Before before, Step step);
    void beginRun();
    void noteEnd(RunOutcome outcome);
    GraphNodeBase* createNewNode(const char* type);
    void initializeRootNode();
    void nodeRenamed(const Node* node, const TM_String& before);
    void nodeLeaving(const Node* node);

    ScenePrivate* scenePrivate_;
    Array<NodeBase*> arrImportedNodes_;
    Array<GraphConnection*> arrImportedConnections_;
    Array<NodeBase*> arrUpdateNodes_;
    std::map<TM_String, TM_String> xmlToImportedName_;
    GraphLayout xmlImportedLayout_;
    double lastExecutionTime_ = 0.0;
    RunOutcome outcome_ = RunOutcome::finished;
    TM_String interruptedNodeName_;
    std::unique_ptr<SuffixIndex> suffixes_; // null until a name is made unique
};

/// Ends the running graph from inside one of its nodes, on the calling thread, by an exception.
[[noreturn]] SLUICE_API void interruptGlobalGraph();

} // namespace tidemark::sluice::graph
