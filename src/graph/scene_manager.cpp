// SPDX-License-Identifier: Apache-2.0
// The manager's scenes, factories, settings and callbacks.
#include "graph/scene_manager.h"

#include <algorithm>

#include "bridge/host.h"
#include "core/callbacks.h"

namespace tidemark::sluice::graph {

void (*SceneManager::forNode_iterationCompletedCallback_)(const int&) = nullptr;
void (*SceneManager::node_updateCallback_)(const TM_String&) = nullptr;
void (*SceneManager::node_renamedCallback_)(const TM_String&) = nullptr;
void (*SceneManager::attribute_cleanCallback_)(const TM_String&) = nullptr;

namespace {

SceneManager::IterationCallback iterationSlot = nullptr;

void tellUpdate(weft::Node* node, weft::Attribute*, double) {
    if (SceneManager::node_updateCallback_) SceneManager::node_updateCallback_(node->name());
}

void tellClean(weft::Attribute* attribute) {
    if (SceneManager::attribute_cleanCallback_) {
        SceneManager::attribute_cleanCallback_(attribute->name());
    }
}

// Other slots than the manager's own may have listeners that it knows nothing of.
bool nobodyListens() {
    return weft::Callbacks::_attributeCleanCallback == tellClean &&
           weft::Callbacks::_updateCallback == tellUpdate &&
           !SceneManager::attribute_cleanCallback_ && !SceneManager::node_updateCallback_;
}

} // namespace

// Never destroyed: the static main scene leaves it at unload, whenever that is.
SceneManager& SceneManager::instance() {
    static SceneManager* const manager = new SceneManager;
    return *manager;
}

SceneManager::SceneManager() : settings_(std::make_unique<GraphSettings>()) {
    setupSettings();
    setupLegacyDictionary();
    registerNodeFactories();
    initializePinTypeToColors();
    initializeCategoryColors();
    setupCallbacks();
}

void SceneManager::setupSettings() {
    *settings_ = GraphSettings();
    settings_->bezierConnections = bridge::host().prefersCurvedConnections();
}

// Scenes.

void SceneManager::addScene(SL_GraphScene* scene) {
    scenes_[scene->getSceneId()] = scene;
    layouts_.try_emplace(scene->getSceneId(), nullptr);
}

void SceneManager::removeScene(SL_GraphScene* scene) {
    scenes_.erase(scene->getSceneId());
    layouts_.erase(scene->getSceneId());
    readLayouts_.erase(scene->getSceneId());
}

bool SceneManager::hasScene(const SL_GraphScene* scene) const {
    return scene && scenes_.count(scene->getSceneId()) > 0;
}

void SceneManager::setLayout(const SL_GraphScene* scene, GraphLayout* layout) {
    if (hasScene(scene)) layouts_[scene->getSceneId()] = layout;
}

GraphLayout* SceneManager::getLayout(const SL_GraphScene* scene) const {
    if (!scene) return nullptr;
    const auto found = layouts_.find(scene->getSceneId());
    return found == layouts_.end() ? nullptr : found->second;
}

void SceneManager::addReadLayout(const SL_GraphScene* scene, const GraphLayout& layout) {
    if (scene) readLayouts_[scene->getSceneId()] = layout;
}

GraphLayout SceneManager::getReadLayout(const SL_GraphScene* scene) const {
    const auto found = scene ? readLayouts_.find(scene->getSceneId()) : readLayouts_.end();
    return found == readLayouts_.end() ? GraphLayout() : found->second;
}

void SceneManager::applyReadLayouts() {
    for (const auto& [sceneId, layout] : layouts_) {
        const auto read = readLayouts_.find(sceneId);
        if (layout && read != readLayouts_.end()) *layout = read->second;
    }
}

void SceneManager::display() {
    if (!displayEnabled_) return;
    for (const auto& [sceneId, scene] : scenes_) scene->updateNodes_notCleaning("Display");
}

// Node types.

void SceneManager::registerNodeFactory(NodeFactory* factory) {
    const TM_String& type = factory->getDescriptor().getTypeName();
    if (const NodeFactory* known = getNodeFactoryFromType(type)) {
        bridge::CCallbackCenter::Instance().Post(bridge::message::duplicateNodeType, type,
                                                 known->getDescriptor().getCategoryName());
        delete factory;
        return;
    }
    owned_.emplace_back(factory);
    factories_.append(factory);
    insertFactory_inMapCategoryToFactories(factory);
    byType_[type] = factory;
}

void SceneManager::unregisterNodeFactory(NodeFactory* factory) {
    if (!factories_.remove(factory)) return;
    removeFactory_fromMapCategoryToFactories(factory);
    byType_.erase(factory->getDescriptor().getTypeName());
    const auto owner = std::find_if(owned_.begin(), owned_.end(),
                                    [=](const auto& entry) { return entry.get() == factory; });
    owner->release();
    owned_.erase(owner);
}

void SceneManager::insertFactory_inMapCategoryToFactories(NodeFactory* factory) {
    const NodeDescriptor& descriptor = factory->getDescriptor();
    byCategory_[descriptor.getCategoryName()].append(factory);
    for (const TM_String& category : descriptor.getAllowedCategories()) {
        byLongCategory_[category].append(factory);
    }
}

void SceneManager::removeFactory_fromMapCategoryToFactories(NodeFactory* factory) {
    const auto remove = [factory](std::map<TM_String, Factories>& map, const TM_String& category) {
        const auto found = map.find(category);
        if (found == map.end()) return;
        found->second.remove(factory);
        if (found->second.empty()) map.erase(found);
    };
    const NodeDescriptor& descriptor = factory->getDescriptor();
    remove(byCategory_, descriptor.getCategoryName());
    for (const TM_String& category : descriptor.getAllowedCategories()) {
        remove(byLongCategory_, category);
    }
}

NodeFactory* SceneManager::getNodeFactoryFromType(const TM_String& type) const {
    const auto found = byType_.find(translateLegacyNodeType(type));
    return found == byType_.end() ? nullptr : found->second;
}

NodeFactory* SceneManager::getNodeFactoryFromTypeIgnoringCase(const TM_String& type) const {
    const TM_String wanted = text::toLower(type);
    for (const auto& [name, factory] : byType_) {
        if (text::toLower(name) == wanted) return factory;
    }
    return nullptr;
}

TM_String SceneManager::getCategoryFromType(const TM_String& type) const {
    const auto found = byType_.find(type);
    return found == byType_.end() ? TM_String() : found->second->getDescriptor().getCategoryName();
}

TM_String SceneManager::nearestNodeType(const TM_String& type) const {
    Array<TM_String> names;
    for (const auto& [name, factory] : byType_) names.append(name);
    return text::nearest(type, names);
}

void SceneManager::setupLegacyDictionary() {
    if (!legacyTypes_.empty()) return;
#define LEGACY(old, today) legacyTypes_.emplace(#old, #today);
#include "graph/node_types/legacy.def"
#undef LEGACY
}

TM_String SceneManager::translateLegacyNodeType(const TM_String& type) const {
    const auto found = legacyTypes_.find(type);
    return found == legacyTypes_.end() ? type : found->second;
}

// Callbacks.

void SceneManager::setupCallbacks() {
    iterationSlot = forNode_iterationCompletedCallback_;
    weft::Callbacks::_updateCallback = tellUpdate;
    weft::Callbacks::_attributeCleanCallback = tellClean;
    weft::Callbacks::nobodyListens = nobodyListens;
}

void SceneManager::disconnectCallbacks() {
    iterationSlot = nullptr;
    weft::Callbacks::_updateCallback = nullptr;
    weft::Callbacks::_attributeCleanCallback = nullptr;
    weft::Callbacks::nobodyListens = nullptr;
}

SceneManager::IterationCallback SceneManager::iterationCompletedSlot() { return iterationSlot; }

// References to host objects.

void SceneManager::removeAllReferencesToNodePointer(void* nodo) {
    for (const auto& [sceneId, scene] : scenes_) scene->removeAllReferencesToNodePointer(nodo);
}

void RemoveNodeReferenceFromAllGraphs(void* nodo) {
    SceneManager::instance().removeAllReferencesToNodePointer(nodo);
}

} // namespace tidemark::sluice::graph
