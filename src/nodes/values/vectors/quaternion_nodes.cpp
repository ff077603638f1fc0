// SPDX-License-Identifier: Apache-2.0
// Operations on quaternions, and rotations by axis and angle.
#include "graph/define_node.h"
#include "nodes/values/vectors/element_nodes.h"
#include "nodes/values/vectors/quaternion_math.h"

namespace tidemark::sluice::graph {

using vectors::FormulaNode;
using vectors::SplitNode;
using weft::NetworkManager;

class QuaternionNormalize : public FormulaNode<vectors::unitQuaternion> {
public:
    QuaternionNormalize(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"quaternion", "The quaternion to normalize."},
                      {"result",
                       "The quaternion of length 1. A zero quaternion becomes the identity.",
                       7.5}) {
        appendClass<"QuaternionNormalize">();
        describe("Computes the normalized quaternion of the given quaternion.");
    }
};

class QuaternionConjugate : public FormulaNode<vectors::conjugateOf> {
public:
    QuaternionConjugate(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"quaternion", "The quaternion to conjugate."},
                      {"result", "The quaternion with negated x, y and z."}) {
        appendClass<"QuaternionConjugate">();
        describe("Computes the conjugate quaternion of the given quaternion.");
    }
};

class QuaternionNegate : public FormulaNode<vectors::negativeOf> {
public:
    QuaternionNegate(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"quaternion", "The quaternion to negate."},
                      {"result", "The quaternion with all of its components negated."}) {
        appendClass<"QuaternionNegate">();
        describe("Computes the negative of the given quaternion.");
    }
};

class QuaternionInverse : public FormulaNode<vectors::inverseQuaternion> {
public:
    QuaternionInverse(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(
              manager, name, parent, {"quaternion", "The quaternion to invert."},
              {"result", "The inverse quaternion. A zero quaternion stays as it is.", 7.5}) {
        appendClass<"QuaternionInverse">();
        describe("Computes the inverse of the given quaternion.");
    }
};

class QuaternionDot : public FormulaNode<vectors::quaternionDot> {
public:
    QuaternionDot(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"first", "The first quaternion."},
                      {"second", "The second quaternion."},
                      {"result", "The dot-product of both quaternions."}) {
        appendClass<"QuaternionDot">();
        describe("Computes the dot-product of the given quaternions.");
        reportDifferentSizes();
    }
};

class QuaternionSlerp : public FormulaNode<vectors::slerped> {
public:
    QuaternionSlerp(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"first", "The quaternion at parameter 0."},
                      {"second", "The quaternion at parameter 1."},
                      {"parameter", "The interpolation parameter (0..1).", 0.5f},
                      {"result", "The interpolated quaternion. It takes the shorter way.", 54}) {
        appendClass<"QuaternionSlerp">();
        describe("Slerp-interpolation (spherical linear interpolation) between the two given input "
                 "quaternions and the interpolation parameter (0..1).");
        reportDifferentSizes();
    }
};

class QuaternionFromAxisAngleNode : public FormulaNode<vectors::quaternionOfAxisAngle> {
public:
    QuaternionFromAxisAngleNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(
              manager, name, parent,
              {"axis", "The axis to rotate about. It may have any length but 0.", {0, 1, 0}},
              {"angle", "The angle in degrees."},
              {"quaternion", "The rotation as a quaternion of length 1.", 24}) {
        appendClass<"QuaternionFromAxisAngle">();
        describe("Computes the quaternion that rotates about the given axis by the given angle (in "
                 "degrees).");
    }
};

class QuaternionToAxisAngleNode
    : public SplitNode<Quaternion<float>, vectors::axisOf, vectors::degreesOf> {
public:
    QuaternionToAxisAngleNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : SplitNode(manager, name, parent,
                    {"quaternion", "The quaternion to examine. It may have any length but 0."},
                    {{{"axis", "The axis of the rotation. It is (1,0,0) if nothing is rotated.", 5},
                      {"angle", "The angle in degrees [0,360].", 19}}}) {
        appendClass<"QuaternionToAxisAngle">();
        describe("Computes the axis and the angle (in degrees) of the rotation that the given "
                 "quaternion describes.");
    }
};

SLUICE_DEFINE_NODE(QuaternionFromAxisAngleNode)
SLUICE_DEFINE_NODE(QuaternionToAxisAngleNode)
SLUICE_DEFINE_NODE(QuaternionNormalize)
SLUICE_DEFINE_NODE(QuaternionConjugate)
SLUICE_DEFINE_NODE(QuaternionNegate)
SLUICE_DEFINE_NODE(QuaternionInverse)
SLUICE_DEFINE_NODE(QuaternionDot)
SLUICE_DEFINE_NODE(QuaternionSlerp)

} // namespace tidemark::sluice::graph
