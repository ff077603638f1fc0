// SPDX-License-Identifier: Apache-2.0
// The one object that knows every scene and every node type.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "graph/base/graph_layout.h"
#include "graph/base/graph_settings.h"
#include "graph/color_table.h"
#include "graph/graph_scene.h"
#include "graph/node_factory.h"

namespace tidemark::sluice::graph {

using tidemark::graph::GraphSettings;

/// Types, colours, settings and the callbacks by which the host follows evaluation. Made at the
/// first call of `instance`, which the first scene makes, and never destroyed.
class SLUICE_API SceneManager {
public:
    using Factories = Array<NodeFactory*>;

    static SceneManager& instance();

    /// Assigned by the host; null at start. The first is noted by `setupCallbacks`, so a host that
    /// assigns it later calls that again.
    static void (*forNode_iterationCompletedCallback_)(const int& iteration);
    static void (*node_updateCallback_)(const TM_String& nodeName);
    static void (*node_renamedCallback_)(const TM_String& nodeName);
    static void (*attribute_cleanCallback_)(const TM_String& attributeName);

    // Scenes, by their ids. These may be called from any thread: workers make scenes of their own.

    /// Notes the scene's layout: the one it keeps itself, until an editor says otherwise.
    void addScene(SL_GraphScene* scene);
    void removeScene(SL_GraphScene* scene);
    bool hasScene(const SL_GraphScene* scene) const;
    /// Where an editor keeps the scene's layout; null for nowhere.
    void setLayout(const SL_GraphScene* scene, GraphLayout* layout);
    /// Null for a scene that is not known.
    GraphLayout* getLayout(const SL_GraphScene* scene) const;
    void addReadLayout(const SL_GraphScene* scene, const GraphLayout& layout);
    /// A copy, or an empty layout.
    GraphLayout getReadLayout(const SL_GraphScene* scene) const;
    /// Gives each noted layout what was read for its scene.
    void applyReadLayouts();
    /// Lets the nodes of category "Display" of all scenes draw, when enabled.
    void display();
    void setDisplayEnabled(bool enabled) { displayEnabled_ = enabled; }
    bool getDisplayEnabled() const { return displayEnabled_; }

    // Node types.

    /// Takes ownership. A type that exists already is reported and deleted.
    void registerNodeFactory(NodeFactory* factory);
    /// Takes the factory out of all tables; the caller owns it again.
    void unregisterNodeFactory(NodeFactory* factory);
    /// In registration order.
    const Factories& getArrNodeFactory() const { return factories_; }
    const std::map<TM_String, Factories>& getMapCategoryToFactories() const { return byCategory_; }
    const std::map<TM_String, Factories>& getMapLongCategoryToFactories() const {
        return byLongCategory_;
    }
    /// After legacy translation; null for an unknown type.
    NodeFactory* getNodeFactoryFromType(const TM_String& type) const;
    /// Without legacy translation, first in order of type names.
    NodeFactory* getNodeFactoryFromTypeIgnoringCase(const TM_String& type) const;
    /// The short category; empty for an unknown type.
    TM_String getCategoryFromType(const TM_String& type) const;
    /// The current name of a type that files may know by an older one.
    TM_String translateLegacyNodeType(const TM_String& type) const;
    /// The registered type nearest to a misspelt one; empty when none is close.
    TM_String nearestNodeType(const TM_String& type) const;

    void removeAllReferencesToNodePointer(void* nodo);
    template <typename Attr>
    void removeAllReferencesToPointers(const Array<void*>& pointers) {
        for (SL_GraphScene* scene : scenes()) {
            scene->template removeAllReferencesToPointers<Attr>(pointers);
        }
    }

    // Settings, colours, callbacks.

    GraphSettings* getSettings() const { return settings_.get(); }
    void setSettings(const GraphSettings& settings) { *settings_ = settings; }
    /// Back to what an editor starts with, the host's preference included.
    void setupSettings();
    /// For a host that is installed after the library has been loaded: takes its preference and the
    /// colours of its classes over.
    void takeOverHost();
    /// Fills the logic layer's callback slots.
    void setupCallbacks();
    void disconnectCallbacks();
    /// What loop nodes call after an iteration, as `setupCallbacks` noted it; may be null.
    using IterationCallback = void (*)(const int& iteration);
    static IterationCallback iterationCompletedSlot();
    /// The type's colour; an unknown number gets one that it keeps.
    Color4<float> getColorForPinType(int type);
    Color4<float> getColorForCategoryChecking(const TM_String& name, bool& found);

private:
    SceneManager();

    void setupLegacyDictionary();
    void registerNodeFactories();
    void initializePinTypeToColors();
    void initializeHostClassColors();
    void initializeCategoryColors();
    void deriveCategoryColors();
    void insertFactory_inMapCategoryToFactories(NodeFactory* factory);
    void removeFactory_fromMapCategoryToFactories(NodeFactory* factory);
    void insertFactory_inMapTypeToFactory(NodeFactory* factory);
    void removeFactory_fromMapTypeToFactory(NodeFactory* factory);
    Array<SL_GraphScene*> scenes() const;

    std::unique_ptr<GraphSettings> settings_;
    mutable std::mutex scenesMutex_; // of the three maps by scene id
    std::map<unsigned, SL_GraphScene*> scenes_;
    std::map<unsigned, GraphLayout> readLayouts_;
    std::map<unsigned, GraphLayout*> layouts_;
    Factories factories_;
    std::vector<std::unique_ptr<NodeFactory>> owned_;
    std::map<TM_String, Factories> byCategory_;
    std::map<TM_String, Factories> byLongCategory_;
    std::map<TM_String, NodeFactory*> byType_;
    bool displayEnabled_ = true;
    std::map<TM_String, TM_String> legacyTypes_;
    ColorTable<TM_String> categoryColors_;
    ColorTable<int> pinTypeColors_;
};

/// Blanks every reference to a host object in all scenes, before the object dies.
SLUICE_API void RemoveNodeReferenceFromAllGraphs(void* nodo);

} // namespace tidemark::sluice::graph
