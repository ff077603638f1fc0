// SPDX-License-Identifier: Apache-2.0
// Inverses of matrices; which of them have none is reported element by element.
#include <atomic>

#include "graph/define_node.h"
#include "nodes/values/vectors/element_nodes.h"
#include "nodes/values/vectors/matrix_math.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::NumericAttribute;

class Matrix4Inverse : public vectors::ElementNode {
public:
    Matrix4Inverse(NetworkManager* manager, const TM_String& name, Node* parent)
        : ElementNode(manager, name, parent) {
        appendClass<"Matrix4Inverse">();
        describe("Computes the inverse of the given matrix.");
        matrix_ = addNumbers<Matrix4<float>>({"matrix", "The matrix to invert."});
        result_ = addResults<Matrix4<float>>(
            {"result", "The inverse matrix. It is the identity if the matrix is not invertible."});
        setAttributeAffect(matrix_, result_);
    }

    void update(Attribute*) override {
        matrix_->pull();
        const auto matrices = elementsOf<Matrix4<float>>(matrix_->numeric());
        // The workers may not touch the node, so they only tell that there is something to tell.
        std::atomic<bool> isAnySingular = false;
        const auto invert = [&isAnySingular](const Matrix4<float>& matrix) {
            const auto inverse = vectors::inverseMatrix(matrix);
            if (!inverse) isAnySingular.store(true, std::memory_order_relaxed);
            return inverse.value_or(Matrix4<float>());
        };
        write<Matrix4<float>>(*result_, nanosecondsPerInverse, invert, matrices);
        if (isAnySingular) reportSingular(matrices);
    }

private:
    static constexpr double nanosecondsPerInverse = 60;

    void reportSingular(std::span<const Matrix4<float>> matrices) {
        WorkMeter meter(*networkManager());
        for (std::size_t i = 0; i < matrices.size(); ++i) {
            meter.add(1);
            if (vectors::inverseMatrix(matrices[i])) continue;
            pushWarning(
                text::format("Matrix at position %d is not invertible", static_cast<int>(i)));
            networkManager()->pollInterrupt();
        }
    }

    NumericAttribute* matrix_;
    NumericAttribute* result_;
};

SLUICE_DEFINE_NODE(Matrix4Inverse)

} // namespace tidemark::sluice::graph
