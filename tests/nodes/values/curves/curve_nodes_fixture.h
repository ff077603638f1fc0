// SPDX-License-Identifier: Apache-2.0
// Two curves beside a net of nodes, and short ways to feed the nodes with them.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>

#include "nodes/values/curves/curve_attributes.h"
#include "nodes/values/logic_net.h"

namespace sluice_tests {

using tidemark::ANIFloatBase;
using tidemark::Array;
using tidemark::PointInfo;

class CurveNodesTest : public testing::Test {
protected:
    static void add(ANIFloatBase& curve, std::initializer_list<PointInfo> keys) {
        for (const PointInfo& key : keys) curve.refSpline().addPoint(key);
    }
    void curves(const TM_String& pin, std::initializer_list<ANIFloatBase*> list) {
        auto& attribute = net_.as<weft::CurveAttribute>(pin);
        attribute.ownPointers().setSize(0);
        for (ANIFloatBase* curve : list) attribute.ownPointers().append(curve);
        attribute.valueChanged();
    }
    void keys(const TM_String& pin, std::initializer_list<PointInfo*> list) {
        auto& attribute = net_.as<weft::KeyAttribute>(pin);
        attribute.ownPointers().setSize(0);
        for (PointInfo* key : list) attribute.ownPointers().append(key);
        attribute.valueChanged();
    }
    // What a port of pointers shows when it is up to date.
    Array<void*> pointers(const TM_String& pin) {
        net_.refresh(pin);
        return net_.as<weft::PointerAttribute>(pin).pointers().values();
    }
    static TM_String times(const ANIFloatBase& curve) {
        TM_String text;
        for (const PointInfo* key : curve.spline().points()) {
            text += tidemark::text::shortest(key->x()) + " ";
        }
        return text;
    }
    // A "Real", "Integer", "Bit" or "String" node that feeds the pin.
    template <typename T>
    void feed(const TM_String& pin, const TM_String& type, const TM_String& out,
              std::initializer_list<T> values) {
        const TM_String name = "source" + std::to_string(++sources_);
        net_.add(type, name);
        if constexpr (std::is_same_v<T, const char*>) {
            net_.strings(name + ".in", values);
        } else if constexpr (std::is_same_v<T, bool>) {
            net_.bits(name + ".in", values);
        } else {
            net_.numbers(name + ".in", values);
        }
        ASSERT_TRUE(net_.link(name + "." + out, pin));
    }
    void reals(const TM_String& pin, std::initializer_list<float> values) {
        feed<float>(pin, "Real", "real", values);
    }
    void integers(const TM_String& pin, std::initializer_list<int32_t> values) {
        feed<int32_t>(pin, "Integer", "integer", values);
    }

    LogicNet net_;
    int sources_ = 0;
    ANIFloatBase first_;
    ANIFloatBase second_;
};

} // namespace sluice_tests
