// SPDX-License-Identifier: Apache-2.0
// Reversing arrays of any length: whole runs, and what is left of them.
#include <gtest/gtest.h>

#include <algorithm>

#include "nodes/values/logic_net.h"
#include "nodes/values/value_tools.h"

namespace {

using sluice_tests::LogicNet;
using tidemark::Vector3;
using weft::NumericAttribute;

template <typename T>
void expectReversed(const char* type, uint32_t count) {
    tidemark::Array<T> elements;
    elements.resize(count);
    for (uint32_t i = 0; i < count; ++i) elements[i] = T(static_cast<float>(i));
    LogicNet net;
    net.add("ArrayNumReverse", "n");
    net.type("n.array", type);
    net.as<NumericAttribute>("n.array").ownNumeric().setValues(elements);
    net.refresh("n.out array");
    const auto& number = net.as<NumericAttribute>("n.out array").numeric();
    const auto turned = tidemark::sluice::graph::elementsOf<T>(number);
    std::reverse(elements.begin(), elements.end());
    EXPECT_TRUE(std::equal(turned.begin(), turned.end(), elements.begin(), elements.end()))
        << count << " of " << type;
}

TEST(ArrayReverse, TurnsAnyNumberOfElements) {
    for (const uint32_t count : {0u, 1u, 15u, 16u, 17u, 32u, 47u, 65'535u, 65'537u, 200'003u}) {
        expectReversed<float>("Real", count);
        expectReversed<int64_t>("Integer64", count);
        expectReversed<Vector3<float>>("Vector3", count);
    }
}

} // namespace
