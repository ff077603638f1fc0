// SPDX-License-Identifier: Apache-2.0
// Hue, saturation and value of colours.
#include "graph/define_node.h"
#include "nodes/values/vectors/color_math.h"
#include "nodes/values/vectors/element_nodes.h"

namespace tidemark::sluice::graph {

using vectors::FormulaNode;
using vectors::SplitNode;
using weft::NetworkManager;

class Color4RgbToHsv
    : public SplitNode<Color4<float>, vectors::hueOf, vectors::saturationOf, vectors::valueOf> {
public:
    Color4RgbToHsv(NetworkManager* manager, const TM_String& name, Node* parent)
        : SplitNode(
              manager, name, parent, {"color", "The color to convert."},
              {{{"hue", "The hue in degrees [0,360]. It is 0 for grey.", 13},
                {"saturation", "The saturation. It is 0 for grey and 1 for the full color.", 2.5},
                {"value", "The value, which is the largest of red, green and blue.", 2.5}}}) {
        appendClass<"Color4RgbToHsv">();
        describe("Computes hue, saturation and value of the given color.");
    }
};

class Color4RgbFromHsv : public FormulaNode<vectors::colorOfHsv> {
public:
    Color4RgbFromHsv(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(
              manager, name, parent, {"hue", "The hue in degrees. Hues repeat every 360 degrees."},
              {"saturation", "The saturation [0,1]. Without saturation the color is a grey.", 1.0f},
              {"value", "The value [0,1]. Without value the color is black.", 1.0f},
              {"color", "The color. Its alpha is 1.", 11}) {
        appendClass<"Color4RgbFromHsv">();
        describe("Computes the color of the given hue, saturation and value.");
    }
};

class Color4Info
    : public SplitNode<Color4<float>, vectors::redOf, vectors::greenOf, vectors::blueOf,
                       vectors::alphaOf, vectors::hueOf, vectors::saturationOf, vectors::valueOf,
                       vectors::vectorOfColor, vectors::hsvOf> {
public:
    Color4Info(NetworkManager* manager, const TM_String& name, Node* parent)
        : SplitNode(
              manager, name, parent, {"color", "The color to examine."},
              {{{"red", "The red component"},
                {"green", "The green component"},
                {"blue", "The blue component"},
                {"alpha", "The alpha component"},
                {"hue", "The hue in degrees [0,360]. It is 0 for grey.", 13},
                {"saturation", "The saturation. It is 0 for grey and 1 for the full color.", 2.5},
                {"value", "The value, which is the largest of red, green and blue.", 2.5},
                {"vector rgb", "The RGB-Values as a vector3"},
                {"vector hsv", "The HSV-Values as a vector3", 17}}}) {
        appendClass<"Color4Info">();
        describe("Returns several information about the input color.");
    }
};

SLUICE_DEFINE_NODE(Color4RgbToHsv)
SLUICE_DEFINE_NODE(Color4RgbFromHsv)
SLUICE_DEFINE_NODE(Color4Info)

} // namespace tidemark::sluice::graph
