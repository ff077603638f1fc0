// SPDX-License-Identifier: Apache-2.0
// Matrices of transformations, and operations on matrices.
#include "graph/define_node.h"
#include "nodes/values/vectors/element_nodes.h"
#include "nodes/values/vectors/matrix_math.h"

namespace tidemark::sluice::graph {

using vectors::FormulaNode;
using weft::NetworkManager;

class Matrix4CreateTranslation : public FormulaNode<vectors::translationMatrix> {
public:
    Matrix4CreateTranslation(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"vector", "The translation."},
                      {"matrix", "The matrix.", 2}) {
        appendClass<"Matrix4CreateTranslation">();
        describe("Set translation matrix according to input vector.");
    }
};

class Matrix4CreateScale : public FormulaNode<vectors::scaleMatrix> {
public:
    Matrix4CreateScale(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"vector", "The scale of each axis.", {1, 1, 1}},
                      {"matrix", "The matrix.", 2}) {
        appendClass<"Matrix4CreateScale">();
        describe("Set scale matrix according to input vector.");
    }
};

class Matrix4CreateRotation : public FormulaNode<vectors::rotationMatrix> {
public:
    Matrix4CreateRotation(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(
              manager, name, parent,
              {"vector", "The axis to rotate about. It may have any length but 0.", {0, 1, 0}},
              {"angle", "The angle in degrees."}, {"matrix", "The matrix.", 34}) {
        appendClass<"Matrix4CreateRotation">();
        describe("Set rotation matrix according to provided axis and angle given by input vector "
                 "and input angle (in degrees).");
    }
};

class Matrix4CreateRotationEuler : public FormulaNode<vectors::eulerMatrix> {
public:
    Matrix4CreateRotationEuler(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent,
                      {"vector", "The angles about x, y and z in degrees. The rotation about x "
                                 "comes first, the one about z last."},
                      {"matrix", "The matrix.", 63}) {
        appendClass<"Matrix4CreateRotationEuler">();
        describe(
            "Set rotation matrix according to euler-angles given by input vector (in degrees).");
    }
};

class SetMatrix4FromComponents : public FormulaNode<vectors::transformMatrix> {
public:
    SetMatrix4FromComponents(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(
              manager, name, parent, {"translation", "The translation. It comes last."},
              {"axis", "The axis to rotate about. It may have any length but 0.", {0, 1, 0}},
              {"angle", "The angle in degrees."},
              {"scale", "The scale of each axis. It comes first.", {1, 1, 1}},
              {"matrix", "The matrix.", 35}) {
        appendClass<"SetMatrix4FromComponents">();
        describe("Set transformation matrix according to the given translation, rotation axis, "
                 "rotation angle (in degrees) and scale.");
    }
};

class SetMatrix4FromQuaternion : public FormulaNode<vectors::matrixOfQuaternion> {
public:
    SetMatrix4FromQuaternion(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent,
                      {"quaternion", "The rotation. It may have any length but 0."},
                      {"matrix", "The matrix.", 17}) {
        appendClass<"SetMatrix4FromQuaternion">();
        describe("Set rotation matrix according to the given quaternion.");
    }
};

class Matrix4MulVector3 : public FormulaNode<vectors::transformedPoint> {
public:
    Matrix4MulVector3(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent,
                      {"matrix", "The matrix to multiply by. Its fourth row is the translation."},
                      {"vector", "The vector to multiply."},
                      {"result", "The transformed vector.", 1.5}) {
        appendClass<"Matrix4MulVector3">();
        describe("The vector is handled as four-dimensional vector (x,y,z,1).");
        reportDifferentSizes();
    }
};

class Matrix4Transpose : public FormulaNode<vectors::transposeOf> {
public:
    Matrix4Transpose(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"matrix", "The matrix to transpose."},
                      {"result", "The transposed matrix.", 1.5}) {
        appendClass<"Matrix4Transpose">();
        describe("Computes the transposed of the given matrix.");
    }
};

class Matrix4Determinant : public FormulaNode<vectors::determinantOf> {
public:
    Matrix4Determinant(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"matrix", "The matrix to examine."},
                      {"result", "The determinant of the matrix.", 26}) {
        appendClass<"Matrix4Determinant">();
        describe("Computes the determinant of the given matrix.");
    }
};

class Matrix4GetEulerAngle : public FormulaNode<vectors::eulerAnglesOf> {
public:
    Matrix4GetEulerAngle(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(
              manager, name, parent,
              {"matrix",
               "The matrix to examine. Scaling that comes before the rotation does not matter."},
              {"vector",
               "The angles about x, y and z in degrees. The rotation about x comes "
               "first, the one about z last.",
               73}) {
        appendClass<"Matrix4GetEulerAngle">();
        describe("Computes the Euler-angles of the given input matrix (in degrees).");
    }
};

SLUICE_DEFINE_NODE(Matrix4CreateTranslation)
SLUICE_DEFINE_NODE(Matrix4CreateScale)
SLUICE_DEFINE_NODE(Matrix4CreateRotation)
SLUICE_DEFINE_NODE(Matrix4CreateRotationEuler)
SLUICE_DEFINE_NODE(SetMatrix4FromComponents)
SLUICE_DEFINE_NODE(SetMatrix4FromQuaternion)
SLUICE_DEFINE_NODE(Matrix4MulVector3)
SLUICE_DEFINE_NODE(Matrix4Transpose)
SLUICE_DEFINE_NODE(Matrix4Determinant)
SLUICE_DEFINE_NODE(Matrix4GetEulerAngle)

} // namespace tidemark::sluice::graph
