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

void SceneManager::takeOverHost() {
    settings_->bezierConnections = bridge::host().prefersCurvedConnections();
    initializeHostClassColors();
    deriveCategoryColors();
}

// Scenes.

namespace {

using Lock = std::lock_guard<std::mutex>;

} // namespace

void SceneManager::addScene(SL_GraphScene* scene) {
    if (!scene) return;
    const Lock lock(scenesMutex_);
    scenes_[scene->getSceneId()] = scene;
    layouts_.try_emplace(scene->getSceneId(), &scene->refXmlImportedLayout());
}

void SceneManager::removeScene(SL_GraphScene* scene) {
    if (!scene) return;
    const Lock lock(scenesMutex_);
    scenes_.erase(scene->getSceneId());
    layouts_.erase(scene->getSceneId());
    readLayouts_.erase(scene->getSceneId());
}

bool SceneManager::hasScene(const SL_GraphScene* scene) const {
    const Lock lock(scenesMutex_);
    return scene && scenes_.count(scene->getSceneId()) > 0;
}

void SceneManager::setLayout(const SL_GraphScene* scene, GraphLayout* layout) {
    if (!hasScene(scene)) return;
    const Lock lock(scenesMutex_);
    layouts_[scene->getSceneId()] = layout;
}

GraphLayout* SceneManager::getLayout(const SL_GraphScene* scene) const {
    const Lock lock(scenesMutex_);
    const auto found = scene ? layouts_.find(scene->getSceneId()) : layouts_.end();
    return found == layouts_.end() ? nullptr : found->second;
}

void SceneManager::addReadLayout(const SL_GraphScene* scene, const GraphLayout& layout) {
    if (!scene) return;
    const Lock lock(scenesMutex_);
    readLayouts_[scene->getSceneId()] = layout;
}

GraphLayout SceneManager::getReadLayout(const SL_GraphScene* scene) const {
    const Lock lock(scenesMutex_);
    const auto found = scene ? readLayouts_.find(scene->getSceneId()) : readLayouts_.end();
    return found == readLayouts_.end() ? GraphLayout() : found->second;
}

void SceneManager::applyReadLayouts() {
    const Lock lock(scenesMutex_);
    for (const auto& [sceneId, layout] : layouts_) {
        const auto read = readLayouts_.find(sceneId);
        if (layout && read != readLayouts_.end()) *layout = read->second;
    }
}

// A copy, because what is called on a scene may make or end others.
Array<SL_GraphScene*> SceneManager::scenes() const {
    const Lock lock(scenesMutex_);
    Array<SL_GraphScene*> list;
    for (const auto& [sceneId, scene] : scenes_) list.append(scene);
    return list;
}

void SceneManager::display() {
    if (!displayEnabled_) return;
    for (SL_GraphScene* scene : scenes()) scene->updateNodes_notCleaning("Display");
}

// Node types.

void SceneManager::registerNodeFactory(NodeFactory* factory) {
    if (!factory) return;
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
    insertFactory_inMapTypeToFactory(factory);
}

void SceneManager::unregisterNodeFactory(NodeFactory* factory) {
    if (!factories_.remove(factory)) return;
    removeFactory_fromMapCategoryToFactories(factory);
    removeFactory_fromMapTypeToFactory(factory);
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

// The descriptor may say something else by now than when the factory came: all entries are looked
// at.
void SceneManager::removeFactory_fromMapCategoryToFactories(NodeFactory* factory) {
    for (auto* map : {&byCategory_, &byLongCategory_}) {
        for (auto entry = map->begin(); entry != map->end();) {
            const bool isLast = entry->second.remove(factory) && entry->second.empty();
            entry = isLast ? map->erase(entry) : std::next(entry);
        }
    }
}

void SceneManager::insertFactory_inMapTypeToFactory(NodeFactory* factory) {
    byType_[factory->getDescriptor().getTypeName()] = factory;
}

void SceneManager::removeFactory_fromMapTypeToFactory(NodeFactory* factory) {
    std::erase_if(byType_, [factory](const auto& entry) { return entry.second == factory; });
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
#include "graph/node_types/legacy.inc"
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
    for (SL_GraphScene* scene : scenes()) scene->removeAllReferencesToNodePointer(nodo);
}

void RemoveNodeReferenceFromAllGraphs(void* nodo) {
    SceneManager::instance().removeAllReferencesToNodePointer(nodo);
}

} // namespace tidemark::sluice::graph
