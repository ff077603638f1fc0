// SPDX-License-Identifier: Apache-2.0
// Tests of the colours of pin types, categories and node types, and of how new ones are found.
#include <cmath>
#include <cstdlib>
#include <vector>

#include "bridge/host.h"
#include "graph/color_table.h"
#include "graph/pin.h"
#include "graph/scene_manager.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::SceneBuilder;

namespace {

using Color = Color4<float>;

SceneManager& manager() { return SceneManager::instance(); }

void expectNear(const Color& color, const Color& wanted, const std::string& what) {
    EXPECT_NEAR(color.r, wanted.r, 2e-3f) << what;
    EXPECT_NEAR(color.g, wanted.g, 2e-3f) << what;
    EXPECT_NEAR(color.b, wanted.b, 2e-3f) << what;
    EXPECT_EQ(color.a, 1.0f) << what;
}

// Hue from 0 to 360 by the textbook formula.
double hueOf(const Color& c) {
    const double high = std::max({c.r, c.g, c.b});
    const double range = high - std::min({c.r, c.g, c.b});
    if (range == 0.0) return 0.0;
    double sector = 0.0;
    if (high == c.r)
        sector = std::fmod((c.g - c.b) / range + 6.0, 6.0);
    else if (high == c.g)
        sector = (c.b - c.r) / range + 2.0;
    else
        sector = (c.r - c.g) / range + 4.0;
    return sector * 60.0;
}

Color fromHue(double hue, double saturation, double value) {
    const double chroma = value * saturation;
    const double sector = hue / 60.0;
    const double x = chroma * (1.0 - std::fabs(std::fmod(sector, 2.0) - 1.0));
    const double m = value - chroma;
    const double table[6][3] = {{chroma, x, 0}, {x, chroma, 0}, {0, chroma, x},
                                {0, x, chroma}, {x, 0, chroma}, {chroma, 0, x}};
    const double* rgb = table[static_cast<int>(sector) % 6];
    return Color(float(rgb[0] + m), float(rgb[1] + m), float(rgb[2] + m), 1.0f);
}

// The recolouring as it is told: hue kept, grey stays grey.
Color recolor(const Color& c, double saturation, double value) {
    const double high = std::max({c.r, c.g, c.b});
    const double low = std::min({c.r, c.g, c.b});
    if (high == 0.0 || (high - low) / high < 0.05) {
        const float grey = float((saturation + value) / 2.0);
        return Color(grey, grey, grey, 1.0f);
    }
    return fromHue(hueOf(c), saturation, value);
}

struct TypeColor {
    int type;
    float r, g, b;
};

constexpr TypeColor typeColors[] = {
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

struct CategoryColor {
    const char* category;
    Color color;
};

const CategoryColor fixedCategories[] = {
    {"user", {0.85f, 0.85f, 0.85f, 1}},
    {"execution", {0.69f, 0.875f, 0.737f, 1}},
    {"compound", {0.88f, 0.572f, 0.829f, 1}},
    {"geometry", {0.882f, 0.784f, 0.573f, 1}},
    {"display", {0.882f, 0.639f, 0.573f, 1}},
    {"math", {0.882f, 0.573f, 0.573f, 1}},
    {"field", {0.88f, 0.685f, 0.572f, 1}},
    {"scene", {0.839f, 0.88f, 0.572f, 1}},
    {"constant", {0.88f, 0.572f, 0.816f, 1}},
    {"conversion", {0.572f, 0.88f, 0.875f, 1}},
    {"import-export", {0.619f, 0.572f, 0.88f, 1}},
};

struct CategoryOfType {
    const char* category;
    int type;
};

constexpr CategoryOfType derivedCategories[] = {
    {"bit", 5},        {"string", 21},     {"particle", 25}, {"image", 22},
    {"condition", 62}, {"scene node", 53}, {"curve", 65},
};

// The choice of new colours as it is told, step by step.
class ToldChoice {
public:
    // Buckets of the colours of a table.
    void refill(const std::vector<Color>& table) {
        used_.assign(36, false);
        for (const Color& color : table) {
            used_[static_cast<std::size_t>(float(hueOf(color)) / 360.0f * 36)] = true;
        }
    }
    bool isFull() const {
        for (const bool used : used_) {
            if (!used) return false;
        }
        return true;
    }
    Color next(std::size_t entries, double saturation, double value) {
        uint32_t x = 6211503, a = 642803, b = 401;
        const auto step = [&] {
            const uint32_t product = a * b;
            b = a;
            a = product;
            x = (x >> 16) + (x & 0xffff) * 30903;
            return x + a;
        };
        for (std::size_t i = 0; i < entries; ++i) step();
        uint32_t bucket = 0;
        for (;;) {
            const uint32_t drawn = step();
            if (drawn >= 4294967292u) continue;
            bucket = drawn % 36;
            if (!used_[bucket]) break;
        }
        used_[bucket] = true;
        const double fraction = step() / 4294967295.0;
        return fromHue(std::fmod(fraction * 5 + bucket * 10 - 2.5 + 360.0, 360.0), saturation,
                       value);
    }

private:
    std::vector<bool> used_;
};

} // namespace

// --- known colours -----------------------------------------------------------------------------

TEST(Colors, OfThePinTypes) {
    for (const TypeColor& row : typeColors) {
        const Color wanted(row.r, row.g, row.b, 1.0f);
        EXPECT_EQ(manager().getColorForPinType(row.type), wanted) << row.type;
        EXPECT_EQ(Pin::getColorForPinType(row.type), wanted) << row.type;
    }
}

TEST(Colors, OfTheCategories) {
    for (const CategoryColor& row : fixedCategories) {
        bool found = false;
        EXPECT_EQ(SL_GraphScene::getColorForCategoryChecking(row.category, found), row.color);
        EXPECT_TRUE(found) << row.category;
        EXPECT_EQ(SL_GraphScene::getColorForCategory(row.category), row.color);
    }
    for (const CategoryOfType& row : derivedCategories) {
        bool found = false;
        const Color color = SL_GraphScene::getColorForCategoryChecking(row.category, found);
        EXPECT_TRUE(found) << row.category;
        expectNear(color, recolor(manager().getColorForPinType(row.type), 0.35, 0.88),
                   row.category);
    }
}

TEST(Colors, CategoriesAreFoundInAnyCaseAndByTheirFirstPart) {
    bool found = false;
    const Color geometry(0.882f, 0.784f, 0.573f, 1.0f);
    for (const char* name : {"Geometry", "GEOMETRY", "Geometry.Array.Mesh", "geometry."}) {
        EXPECT_EQ(SL_GraphScene::getColorForCategoryChecking(name, found), geometry) << name;
        EXPECT_TRUE(found) << name;
    }
    EXPECT_EQ(SL_GraphScene::getColorForCategoryChecking("Import-Export", found),
              Color(0.619f, 0.572f, 0.88f, 1.0f));
}

TEST(Colors, OfNoCategoryIsRed) {
    bool found = true;
    EXPECT_EQ(SL_GraphScene::getColorForCategoryChecking("", found), Color(1, 0, 0, 1));
    EXPECT_FALSE(found);
    EXPECT_EQ(SL_GraphScene::getColorForCategory(""), Color(1, 0, 0, 1));
}

TEST(Colors, OfAnUnknownCategoryIsNewEachTime) {
    bool found = true;
    const Color first = SL_GraphScene::getColorForCategoryChecking("Nowhere", found);
    EXPECT_FALSE(found);
    const Color second = SL_GraphScene::getColorForCategoryChecking("Nowhere", found);
    EXPECT_FALSE(found);
    EXPECT_NE(first, second); // it is not kept
    for (const Color& color : {first, second}) {
        const Hsv hsv = toHsv(color);
        EXPECT_NEAR(hsv.saturation, 0.35f, 1e-4f);
        EXPECT_NEAR(hsv.value, 0.88f, 1e-4f);
    }
}

TEST(Colors, OfAnUnknownPinTypeStay) {
    const Color first = manager().getColorForPinType(4711);
    const Color second = manager().getColorForPinType(4712);
    EXPECT_NE(first, second);
    EXPECT_EQ(manager().getColorForPinType(4711), first);
    EXPECT_EQ(manager().getColorForPinType(4712), second);
    EXPECT_NEAR(toHsv(first).saturation, 0.6f, 1e-4f);
    EXPECT_NEAR(toHsv(first).value, 1.0f, 1e-4f);
}

TEST(Colors, OfTheNodeTypes) {
    SL_GraphScene scene;
    EXPECT_FALSE(scene.hasColorForNodeType("Add"));
    scene.setupNodeColor();
    const auto expectType = [&](const char* type, const Color& wanted) {
        EXPECT_TRUE(scene.hasColorForNodeType(type)) << type;
        expectNear(scene.getColorFromNodeType(TM_String(type)), wanted, type);
    };
    const std::pair<const char*, int> constants[] = {{"Real", 3},  {"Integer", 1}, {"Integer64", 2},
                                                     {"Bit", 5},   {"String", 21}, {"Vector3", 13},
                                                     {"Color4", 9}};
    for (const auto& [type, number] : constants) {
        expectType(type, recolor(manager().getColorForPinType(number), 0.35, 0.88));
    }
    expectType("Evaluator", Color(0.572f, 0.829f, 0.88f, 1.0f));
    expectType("Compound", Color(0.88f, 0.572f, 0.829f, 1.0f));
    expectType("CompoundInterface", Color(0.88f, 0.572f, 0.829f, 1.0f));
    expectType("add", Color(0.882f, 0.573f, 0.573f, 1.0f));
    expectType("GraphCancel", Color(0.69f, 0.875f, 0.737f, 1.0f));
    for (const NodeFactory* factory : manager().getArrNodeFactory()) {
        EXPECT_TRUE(scene.hasColorForNodeType(factory->getDescriptor().getTypeName()));
    }
    SceneBuilder build;
    build.add("Evaluator", "E");
    EXPECT_EQ(scene.getColorFromNodeType(build.node("E")),
              scene.getColorFromNodeType(TM_String("Evaluator")));
}

namespace {

class PaintedHost : public bridge::Host {
public:
    PaintedHost() { bridge::setHost(this); }
    ~PaintedHost() override { bridge::setHost(nullptr); }
    Array<bridge::HostClass> compatibleClasses() const override {
        return {{"Daemon", Color(0.2f, 0.1f, 0.1f, 1.0f), 4},
                {"Object", Color(0.5f, 0.5f, 0.49f, 1.0f), 8},
                {"Camera", Color(0.0f, 0.0f, 1.0f, 1.0f), 512},
                {"SluiceNode", Color(0.0f, 0.3f, 0.3f, 1.0f), 128}};
    }
    bool prefersCurvedConnections() const override { return true; }
};

// In a process of its own: the manager keeps the colours for life.
[[noreturn]] void checkHostColors() {
    const Color camera = manager().getColorForPinType(34);
    const Color node = manager().getColorForPinType(53);
    const PaintedHost host;
    manager().takeOverHost();
    expectNear(manager().getColorForPinType(53), fromHue(180.0, 0.6, 1.0), "SluiceNode");
    expectNear(SL_GraphScene::getColorForCategory("Scene Node"), fromHue(180.0, 0.35, 0.88),
               "Scene Node");
    expectNear(manager().getColorForPinType(28), fromHue(0.0, 0.6, 1.0), "Daemon");
    expectNear(manager().getColorForPinType(29), Color(0.8f, 0.8f, 0.8f, 1.0f), "grey");
    EXPECT_EQ(manager().getColorForPinType(34), camera); // the class that is left out
    EXPECT_TRUE(manager().getSettings()->bezierConnections);
    manager().getSettings()->zoomFactor = 3.0f;
    manager().setupSettings();
    EXPECT_EQ(manager().getSettings()->zoomFactor, 1.0f);
    EXPECT_TRUE(manager().getSettings()->bezierConnections);
    EXPECT_NE(manager().getColorForPinType(53), node);
    std::_Exit(testing::Test::HasFailure() ? 1 : 0);
}

} // namespace

TEST(Colors, OfHostClassesAreTheHostsHues) {
    EXPECT_EXIT(checkHostColors(), testing::ExitedWithCode(0), "");
}

// --- conversions -------------------------------------------------------------------------------

TEST(Colors, HueSaturationAndValueGoBothWays) {
    for (int hue = 0; hue < 360; hue += 7) {
        const Color color = fromHsv({float(hue), 0.6f, 0.9f});
        expectNear(color, fromHue(hue, 0.6, 0.9), std::to_string(hue));
        const Hsv hsv = toHsv(color);
        EXPECT_NEAR(hsv.hue, hue, 0.01);
        EXPECT_NEAR(hsv.saturation, 0.6f, 1e-5f);
        EXPECT_NEAR(hsv.value, 0.9f, 1e-6f);
    }
    expectNear(fromHsv({-30.0f, 1.0f, 1.0f}), fromHue(330, 1, 1), "negative");
    expectNear(fromHsv({750.0f, 1.0f, 1.0f}), fromHue(30, 1, 1), "two turns");
    EXPECT_EQ(toHsv(Color(0, 0, 0, 1)).saturation, 0.0f);
    EXPECT_EQ(toHsv(Color(0.5f, 0.5f, 0.5f, 1)).hue, 0.0f);
}

TEST(Colors, RecolouringKeepsHueAndGrey) {
    expectNear(recolored(Color(0.2f, 0.4f, 0.1f, 0.5f), 0.35f, 0.88f),
               fromHue(hueOf(Color(0.2f, 0.4f, 0.1f, 1)), 0.35, 0.88), "green");
    const Color grey(0.615f, 0.615f, 0.615f, 1.0f);
    expectNear(recolored(Color(0.3f, 0.3f, 0.3f, 1), 0.35f, 0.88f), grey, "grey");
    expectNear(recolored(Color(1.0f, 0.96f, 0.96f, 1), 0.35f, 0.88f), grey, "nearly grey");
    EXPECT_GT(toHsv(recolored(Color(1.0f, 0.94f, 0.94f, 1), 0.35f, 0.88f)).saturation, 0.3f);
    expectNear(recolored(Color(0, 0, 0, 1), 0.6f, 1.0f), Color(0.8f, 0.8f, 0.8f, 1), "black");
}

// --- new colours -------------------------------------------------------------------------------

TEST(Colors, NewOnesAreChosenAsTold) {
    ColorTable<int> table;
    std::vector<Color> known;
    // No hue near a border of two buckets, where rounding would decide.
    for (int i = 0; i < 17; ++i) {
        known.push_back(fromHue((i * 53 + 4) % 360, 0.7, 0.8));
        table.set(i, known.back());
    }
    ToldChoice told;
    told.refill(known);
    ASSERT_FALSE(told.isFull());
    int made = 0;
    while (!told.isFull()) {
        const Color wanted = told.next(known.size(), 0.6, 1.0);
        const Color color = table.makeColor(0.6f, 1.0f);
        expectNear(color, wanted, std::to_string(made));
        table.set(1000 + made, color);
        known.push_back(color);
        ++made;
    }
    EXPECT_GT(made, 5);
}

TEST(Colors, NewOnesDifferUntilAllHuesAreUsedAndThenStartOver) {
    ColorTable<int> table;
    std::vector<bool> used(36, false);
    for (int i = 0; i < 36; ++i) {
        const Color color = table.makeColor(0.6f, 1.0f); // none is entered: all hues stay free
        const double hue = std::fmod(toHsv(color).hue + 2.5, 360.0);
        const auto bucket = static_cast<std::size_t>(hue / 10.0);
        EXPECT_FALSE(used[bucket]) << i;
        EXPECT_LE(std::fmod(hue, 10.0), 5.01) << i; // within the first half of its bucket
        used[bucket] = true;
    }
    // The table is empty, so the second round begins as the first did.
    ColorTable<int> fresh;
    EXPECT_EQ(table.makeColor(0.6f, 1.0f), fresh.makeColor(0.6f, 1.0f));
}

TEST(Colors, ATableOfAllHuesStillGivesNewOnes) {
    ColorTable<int> table;
    for (int i = 0; i < 36; ++i) table.set(i, fromHsv({i * 10.0f + 5.0f, 0.6f, 1.0f}));
    for (int i = 0; i < 100; ++i) {
        EXPECT_NEAR(toHsv(table.makeColor(0.6f, 1.0f)).saturation, 0.6f, 1e-4f);
    }
}

TEST(Colors, ATableKnowsWhatItHolds) {
    ColorTable<TM_String> table;
    EXPECT_TRUE(table.empty());
    EXPECT_EQ(table.find("a"), nullptr);
    table.set("a", Color(1, 0, 0, 1));
    ASSERT_NE(table.find("a"), nullptr);
    EXPECT_EQ(*table.find("a"), Color(1, 0, 0, 1));
    EXPECT_FALSE(table.empty());
}
