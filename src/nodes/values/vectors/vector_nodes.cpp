// SPDX-License-Identifier: Apache-2.0
// Lengths of vectors, and what two vectors are to each other.
#include "graph/define_node.h"
#include "nodes/values/vectors/element_nodes.h"
#include "nodes/values/vectors/vector_math.h"

namespace tidemark::sluice::graph {

using vectors::FormulaNode;
using weft::NetworkManager;

class Vector3Length : public FormulaNode<vectors::lengthOf> {
public:
    Vector3Length(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"vector", "The vector to measure."},
                      {"result", "The length of the vector.", 2.5}) {
        appendClass<"Vector3Length">();
        describe("Computes the length of the given vector.");
    }
};

class Vector3LengthSquared : public FormulaNode<vectors::squaredLengthOf> {
public:
    Vector3LengthSquared(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"vector", "The vector to measure."},
                      {"result", "The square of the length of the vector."}) {
        appendClass<"Vector3LengthSquared">();
        describe("Computes the squared length of the given vector.");
    }
};

class Vector3Normalize : public FormulaNode<vectors::unitVector> {
public:
    Vector3Normalize(NetworkManager* manager, const TM_String& name, Node* parent)
        : FormulaNode(manager, name, parent, {"vector", "The vector to normalize."},
                      {"result", "The normalized vector. A zero vector stays as it is.", 5}) {
        appendClass<"Vector3Normalize">();
        describe("Computes the vector of length 1 that has the direction of the given vector.");
    }
};

namespace {

// Two vectors in, and an error when their numbers differ.
template <auto Formula>
class PairNode : public FormulaNode<Formula> {
protected:
    using Input = vectors::InputRow<Vector3<float>>;

    PairNode(NetworkManager* manager, const TM_String& name, weft::Node* parent, const Input& first,
             const Input& second, const vectors::OutputRow& output)
        : FormulaNode<Formula>(manager, name, parent, first, second, output) {
        this->reportDifferentSizes();
    }
};

} // namespace

class Vector3Dot : public PairNode<vectors::dotOf> {
public:
    Vector3Dot(NetworkManager* manager, const TM_String& name, Node* parent)
        : PairNode(manager, name, parent, {"first", "The first vector."},
                   {"second", "The second vector."},
                   {"result", "The dot product of both vectors."}) {
        appendClass<"Vector3Dot">();
        describe("Computes the dot product of the given vectors.");
    }
};

class Vector3Cross : public PairNode<vectors::crossOf> {
public:
    Vector3Cross(NetworkManager* manager, const TM_String& name, Node* parent)
        : PairNode(manager, name, parent, {"first", "The first vector."},
                   {"second", "The second vector."},
                   {"result",
                    "The cross product of both vectors. It is perpendicular to both of them."}) {
        appendClass<"Vector3Cross">();
        describe("Computes the cross product of the given vectors.");
    }
};

class Vector3Distance : public PairNode<vectors::distanceBetween> {
public:
    Vector3Distance(NetworkManager* manager, const TM_String& name, Node* parent)
        : PairNode(manager, name, parent, {"first", "The first vector."},
                   {"second", "The second vector."},
                   {"result", "The length of the difference of both vectors.", 2.5}) {
        appendClass<"Vector3Distance">();
        describe("Computes the distance between the given vectors.");
    }
};

class Vector3Angle : public PairNode<vectors::angleBetween> {
public:
    Vector3Angle(NetworkManager* manager, const TM_String& name, Node* parent)
        : PairNode(manager, name, parent, {"first", "The first vector."},
                   {"second", "The second vector."},
                   {"result",
                    "The angle between both vectors in radians [0,pi]. It is 0 if one of "
                    "them is the zero vector.",
                    24}) {
        appendClass<"Vector3Angle">();
        describe("Computes the angle between the given vectors (in radians).");
    }
};

class Vector3Project : public PairNode<vectors::projectedOnto> {
public:
    Vector3Project(NetworkManager* manager, const TM_String& name, Node* parent)
        : PairNode(manager, name, parent, {"first", "The vector to project."},
                   {"second", "The vector to project onto."},
                   {"result",
                    "The part of the first vector that has the direction of the second "
                    "one. It is zero if the second vector is the zero vector.",
                    2.5}) {
        appendClass<"Vector3Project">();
        describe("Projects the first vector onto the second one.");
    }
};

class Vector3AreParallel : public PairNode<vectors::areParallel> {
public:
    Vector3AreParallel(NetworkManager* manager, const TM_String& name, Node* parent)
        : PairNode(manager, name, parent, {"first", "The first vector."},
                   {"second", "The second vector."},
                   {"result",
                    "True if the vectors are parallel. Their lengths count: very short "
                    "vectors are parallel to any other.",
                    2}) {
        appendClass<"Vector3AreParallel">();
        describe("Returns true, if both vectors are parallel, otherwise false.");
    }
};

class Vector3ArePerpendicular : public PairNode<vectors::arePerpendicular> {
public:
    Vector3ArePerpendicular(NetworkManager* manager, const TM_String& name, Node* parent)
        : PairNode(manager, name, parent, {"first", "The first vector."},
                   {"second", "The second vector."},
                   {"result",
                    "True if the vectors are perpendicular. Their lengths count: very "
                    "short vectors are perpendicular to any other.",
                    2}) {
        appendClass<"Vector3ArePerpendicular">();
        describe("Returns true, if both vectors are perpendicular, otherwise false.");
    }
};

SLUICE_DEFINE_NODE(Vector3Length)
SLUICE_DEFINE_NODE(Vector3LengthSquared)
SLUICE_DEFINE_NODE(Vector3Normalize)
SLUICE_DEFINE_NODE(Vector3Dot)
SLUICE_DEFINE_NODE(Vector3Cross)
SLUICE_DEFINE_NODE(Vector3Distance)
SLUICE_DEFINE_NODE(Vector3Angle)
SLUICE_DEFINE_NODE(Vector3Project)
SLUICE_DEFINE_NODE(Vector3AreParallel)
SLUICE_DEFINE_NODE(Vector3ArePerpendicular)

} // namespace tidemark::sluice::graph
