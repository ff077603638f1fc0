// SPDX-License-Identifier: Apache-2.0
// Colours of pin types, categories and node types.
#include "bridge/host.h"
#include "core/specialization.h"
#include "graph/scene_manager.h"

namespace tidemark::sluice::graph {

namespace {

struct TypeColor {
    int type;
    float red, green, blue;
};

constexpr TypeColor pinTypeColors[] = {
    {0, 0.25f, 0.25f, 0.25f},  {1, 1.00f, 0.77f, 0.40f},  {2, 1.00f, 0.77f, 0.40f},
    {3, 0.40f, 0.90f, 1.00f},  {4, 0.40f, 1.00f, 0.89f},  {5, 1.00f, 1.00f, 0.40f},
    {6, 0.40f, 0.52f, 1.00f},  {7, 0.50f, 1.00f, 0.40f},  {8, 0.45f, 1.00f, 0.40f},
    {9, 1.00f, 0.40f, 0.40f},  {10, 1.00f, 0.40f, 0.51f}, {11, 1.00f, 0.48f, 0.40f},
    {12, 1.00f, 0.40f, 0.80f}, {13, 0.78f, 0.40f, 1.00f}, {14, 0.81f, 1.00f, 0.40f},
    {15, 0.61f, 0.40f, 1.00f}, {16, 0.91f, 1.00f, 0.40f}, {17, 1.00f, 0.40f, 0.71f},
    {18, 0.40f, 0.71f, 1.00f}, {19, 1.00f, 0.40f, 0.98f}, {20, 1.00f, 0.40f, 0.61f},
    {21, 0.54f, 1.00f, 0.40f}, {22, 0.40f, 1.00f, 0.54f}, {23, 0.51f, 0.40f, 1.00f},
    {24, 1.00f, 0.90f, 0.40f}, {25, 0.40f, 0.84f, 1.00f}, {26, 0.40f, 0.78f, 1.00f},
    {27, 1.00f, 0.80f, 0.40f}, {40, 0.79f, 0.40f, 1.00f}, {53, 0.40f, 0.56f, 1.00f},
    {54, 0.40f, 1.00f, 0.61f}, {55, 0.40f, 1.00f, 1.00f}, {56, 0.78f, 1.00f, 0.40f},
    {57, 1.00f, 0.40f, 0.90f}, {58, 1.00f, 0.80f, 0.40f}, {59, 0.40f, 1.00f, 0.71f},
    {60, 0.79f, 0.40f, 1.00f}, {61, 0.40f, 0.48f, 1.00f}, {62, 1.00f, 0.68f, 0.40f},
    {63, 0.91f, 1.00f, 0.40f}, {64, 1.00f, 0.52f, 0.40f}, {65, 0.92f, 1.00f, 0.40f},
    {66, 1.00f, 0.40f, 0.48f}, {67, 0.40f, 0.72f, 1.00f}, {68, 0.40f, 0.90f, 1.00f},
    {69, 0.40f, 1.00f, 1.00f},
};

struct CategoryOfType {
    const char* category;
    int type;
};

constexpr CategoryOfType categoriesOfTypes[] = {
    {"bit", 5},        {"string", 21},     {"particle", 25}, {"image", 22},
    {"condition", 62}, {"scene node", 53}, {"curve", 65},
};

struct CategoryColor {
    const char* category;
    float red, green, blue;
};

constexpr CategoryColor categoryColors[] = {
    {"user", 0.85f, 0.85f, 0.85f},
    {"execution", 0.69f, 0.875f, 0.737f},
    {"compound", 0.88f, 0.572f, 0.829f},
    {"geometry", 0.882f, 0.784f, 0.573f},
    {"display", 0.882f, 0.639f, 0.573f},
    {"math", 0.882f, 0.573f, 0.573f},
    {"field", 0.88f, 0.685f, 0.572f},
    {"scene", 0.839f, 0.88f, 0.572f},
    {"constant", 0.88f, 0.572f, 0.816f},
    {"conversion", 0.572f, 0.88f, 0.875f},
    {"import-export", 0.619f, 0.572f, 0.88f},
};

// Pins are painted strongly, nodes palely.
constexpr float pinSaturation = 0.6f;
constexpr float pinValue = 1.0f;
constexpr float nodeSaturation = 0.35f;
constexpr float nodeValue = 0.88f;

// The class of host objects that graphs never carry.
constexpr uint32_t excludedClassBit = 512;

const Color4<float> noCategoryColor(1.0f, 0.0f, 0.0f, 1.0f);

Color4<float> nodeColorOf(const TM_String& type) {
    for (const char* constant :
         {"Real", "Integer", "Integer64", "Bit", "String", "Vector3", "Color4"}) {
        if (type != constant) continue;
        const Color4<float> pin = Pin::getColorForPinType(weft::typeNumber(type));
        return recolored(pin, nodeSaturation, nodeValue);
    }
    if (type == "Evaluator") return Color4<float>(0.572f, 0.829f, 0.88f, 1.0f);
    if (type == "For" || type == "Kernel") return Color4<float>(0.863f, 0.773f, 0.588f, 1.0f);
    return Color4<float>(0.0f, 0.0f, 0.0f, 0.0f);
}

bool isCompoundType(const TM_String& type) {
    return type == "Compound" || type == "CompoundInterface" || type == "InputInterface" ||
           type == "OutputInterface";
}

} // namespace

void SceneManager::initializePinTypeToColors() {
    if (!pinTypeColors_.empty()) return;
    for (const TypeColor& entry : pinTypeColors) {
        pinTypeColors_.set(entry.type, Color4<float>(entry.red, entry.green, entry.blue, 1.0f));
    }
    initializeHostClassColors();
}

void SceneManager::initializeHostClassColors() {
    for (const bridge::HostClass& hostClass : bridge::host().compatibleClasses()) {
        if (hostClass.bit == excludedClassBit) continue;
        pinTypeColors_.set(weft::typeNumber(hostClass.specialization),
                           recolored(hostClass.color, pinSaturation, pinValue));
    }
}

void SceneManager::initializeCategoryColors() {
    if (!categoryColors_.empty()) return;
    deriveCategoryColors();
    for (const CategoryColor& entry : categoryColors) {
        categoryColors_.set(entry.category,
                            Color4<float>(entry.red, entry.green, entry.blue, 1.0f));
    }
}

void SceneManager::deriveCategoryColors() {
    for (const CategoryOfType& entry : categoriesOfTypes) {
        categoryColors_.set(entry.category,
                            recolored(getColorForPinType(entry.type), nodeSaturation, nodeValue));
    }
}

Color4<float> SceneManager::getColorForPinType(int type) {
    if (const Color4<float>* known = pinTypeColors_.find(type)) return *known;
    const Color4<float> made = pinTypeColors_.makeColor(pinSaturation, pinValue);
    pinTypeColors_.set(type, made);
    return made;
}

Color4<float> SceneManager::getColorForCategoryChecking(const TM_String& name, bool& found) {
    found = false;
    if (name.empty()) return noCategoryColor;
    const TM_String whole = text::toLower(name);
    for (const TM_String& key : {whole, whole.substr(0, whole.find('.'))}) {
        const Color4<float>* known = categoryColors_.find(key);
        found = known != nullptr;
        if (known) return *known;
    }
    return categoryColors_.makeColor(nodeSaturation, nodeValue);
}

Color4<float> SL_GraphScene::getColorForCategoryChecking(const TM_String& name, bool& found) {
    return SceneManager::instance().getColorForCategoryChecking(name, found);
}

Color4<float> SL_GraphScene::getColorForCategory(const TM_String& name) {
    bool found = false;
    return getColorForCategoryChecking(name, found);
}

void SL_GraphScene::setupNodeColor() {
    for (const NodeFactory* factory : SceneManager::instance().getArrNodeFactory()) {
        const NodeDescriptor& descriptor = factory->getDescriptor();
        const TM_String& type = descriptor.getTypeName();
        Color4<float> color = nodeColorOf(type);
        if (isCompoundType(type)) {
            color = getColorForCategory("compound");
        } else if (color.a == 0.0f) {
            color = getColorForCategory(text::toLower(descriptor.getCategoryName()));
        }
        setColorForNodeType(text::toLower(type), color);
    }
}

} // namespace tidemark::sluice::graph
