// SPDX-License-Identifier: Apache-2.0
// Vectors, colours, quaternions and matrices from their components and back.
#include "graph/define_node.h"
#include "nodes/values/vectors/color_math.h"
#include "nodes/values/vectors/element_nodes.h"
#include "nodes/values/vectors/matrix_math.h"
#include "nodes/values/vectors/quaternion_math.h"
#include "nodes/values/vectors/vector_math.h"

namespace tidemark::sluice::graph {

using vectors::ComponentsNode;
using vectors::FormulaNode;
using weft::NetworkManager;

class Vector3FromComponents : public FormulaNode<vectors::vectorOf> {
public:
    Vector3FromComponents(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"x", "The x component."}, {"y", "The y component."},
                      {"z", "The z component."}, {"vector", "The vector."}) {
        appendClass<"Vector3FromComponents">();
        describe("Builds a vector from its three components.");
    }
};

class Vector3ToComponentsNode : public ComponentsNode<Vector3<float>> {
public:
    Vector3ToComponentsNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : ComponentsNode(
              manager, name, parent, {"vector", "The vector to take apart."},
              {{{"x", "The x component."}, {"y", "The y component."}, {"z", "The z component."}}}) {
        appendClass<"Vector3ToComponents">();
        describe("Extracts the three components of the input vector.");
    }
};

class Color4FromComponentsNode : public FormulaNode<vectors::colorOf> {
public:
    Color4FromComponentsNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"red", "The red component"},
                      {"green", "The green component"}, {"blue", "The blue component"},
                      {"alpha", "The alpha component", 1.0f}, {"color", "The color."}) {
        appendClass<"Color4FromComponents">();
        describe("Builds a color from its four components.");
    }
};

class Color4ToComponentsNode : public ComponentsNode<Color4<float>> {
public:
    Color4ToComponentsNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : ComponentsNode(manager, name, parent, {"color", "The color to take apart."},
                         {{{"red", "The red component"},
                           {"green", "The green component"},
                           {"blue", "The blue component"},
                           {"alpha", "The alpha component"}}}) {
        appendClass<"Color4ToComponents">();
        describe("Extracts the four components of the input color.");
    }
};

class Vector3ToColor4 : public FormulaNode<vectors::colorOfVector> {
public:
    Vector3ToColor4(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"vector", "The vector to convert."},
                      {"color", "The color."}) {
        appendClass<"Vector3ToColor4">();
        describe("Converts a vector to a color. The components x, y and z become red, green and "
                 "blue, alpha is 1.");
    }
};

class Color4ToVector3 : public FormulaNode<vectors::vectorOfColor> {
public:
    Color4ToVector3(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"color", "The color to convert."},
                      {"vector", "The vector."}) {
        appendClass<"Color4ToVector3">();
        describe("Converts a color to a vector. Red, green and blue become the components x, y and "
                 "z, alpha is ignored.");
    }
};

class QuaternionFromComponentsNode : public FormulaNode<vectors::quaternionOf> {
public:
    QuaternionFromComponentsNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"x", "The x component."}, {"y", "The y component."},
                      {"z", "The z component."}, {"w", "The w component, the real part.", 1.0f},
                      {"quaternion", "The quaternion."}) {
        appendClass<"QuaternionFromComponents">();
        describe("Builds a quaternion from its four components.");
    }
};

class QuaternionToComponentsNode : public ComponentsNode<Quaternion<float>> {
public:
    QuaternionToComponentsNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : ComponentsNode(manager, name, parent, {"quaternion", "The quaternion to take apart."},
                         {{{"x", "The x component."},
                           {"y", "The y component."},
                           {"z", "The z component."},
                           {"w", "The w component, the real part."}}}) {
        appendClass<"QuaternionToComponents">();
        describe("Extracts the four components of the input quaternion.");
    }
};

class Matrix4FromComponentsNode : public FormulaNode<vectors::matrixOf> {
public:
    Matrix4FromComponentsNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"m00", "The component in row 0, column 0.", 1.0f},
                      {"m01", "The component in row 0, column 1."},
                      {"m02", "The component in row 0, column 2."},
                      {"m03", "The component in row 0, column 3."},
                      {"m10", "The component in row 1, column 0."},
                      {"m11", "The component in row 1, column 1.", 1.0f},
                      {"m12", "The component in row 1, column 2."},
                      {"m13", "The component in row 1, column 3."},
                      {"m20", "The component in row 2, column 0."},
                      {"m21", "The component in row 2, column 1."},
                      {"m22", "The component in row 2, column 2.", 1.0f},
                      {"m23", "The component in row 2, column 3."},
                      {"m30", "The component in row 3, column 0."},
                      {"m31", "The component in row 3, column 1."},
                      {"m32", "The component in row 3, column 2."},
                      {"m33", "The component in row 3, column 3.", 1.0f},
                      {"matrix", "The matrix. Its fourth row is the translation.", 2.5}) {
        appendClass<"Matrix4FromComponents">();
        describe("Builds a matrix from its 16 components");
    }
};

class Matrix4ToComponentsNode : public ComponentsNode<Matrix4<float>> {
public:
    Matrix4ToComponentsNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : ComponentsNode(manager, name, parent, {"matrix", "The matrix to take apart."},
                         {{{"m00", "The component in row 0, column 0."},
                           {"m01", "The component in row 0, column 1."},
                           {"m02", "The component in row 0, column 2."},
                           {"m03", "The component in row 0, column 3."},
                           {"m10", "The component in row 1, column 0."},
                           {"m11", "The component in row 1, column 1."},
                           {"m12", "The component in row 1, column 2."},
                           {"m13", "The component in row 1, column 3."},
                           {"m20", "The component in row 2, column 0."},
                           {"m21", "The component in row 2, column 1."},
                           {"m22", "The component in row 2, column 2."},
                           {"m23", "The component in row 2, column 3."},
                           {"m30", "The component in row 3, column 0."},
                           {"m31", "The component in row 3, column 1."},
                           {"m32", "The component in row 3, column 2."},
                           {"m33", "The component in row 3, column 3."}}}) {
        appendClass<"Matrix4ToComponents">();
        describe("Extracts all 16 components of the input 'matrix' value");
    }
};

SLUICE_DEFINE_NODE(Vector3FromComponents)
SLUICE_DEFINE_NODE(Color4FromComponentsNode)
SLUICE_DEFINE_NODE(Color4ToComponentsNode)
SLUICE_DEFINE_NODE(Vector3ToComponentsNode)
SLUICE_DEFINE_NODE(Vector3ToColor4)
SLUICE_DEFINE_NODE(Color4ToVector3)
SLUICE_DEFINE_NODE(Matrix4FromComponentsNode)
SLUICE_DEFINE_NODE(Matrix4ToComponentsNode)
SLUICE_DEFINE_NODE(QuaternionFromComponentsNode)
SLUICE_DEFINE_NODE(QuaternionToComponentsNode)

} // namespace tidemark::sluice::graph
