// SPDX-License-Identifier: Apache-2.0
// Curves of many keys: every time finds its keys, many times at once, on threads.
#include <random>
#include <thread>
#include <vector>

#include "platform/curve_fixture.h"

namespace {

using namespace tidemark;
using namespace curve_tests;

class ManyKeysTest : public CurveTest {
protected:
    // Times with gaps of very different lengths, so that the slices of the table differ as well.
    ManyKeysTest() {
        std::mt19937 random(7);
        double x = -3;
        for (int i = 0; i < 500; ++i) {
            const double gap = i % 50 == 0 ? 10.0 : 1e-4 * (1 + random() % 100);
            add({key(x += gap, random() % 100, i % 3 == 0 ? tm_spline::step : tm_spline::linear)});
        }
        std::uniform_real_distribution<float> anywhere(-5.0f, static_cast<float>(x) + 2.0f);
        for (int i = 0; i < 20000; ++i) times_.push_back(anywhere(random));
        for (const PointInfo* each : curve_.spline().points()) {
            times_.push_back(static_cast<float>(each->x()));
        }
    }

    // By the definition, with a search from the beginning.
    float slowly(float time) const {
        const auto& keys = curve_.spline().points();
        const auto shown = [&](uint32_t i) { return static_cast<float>(keys[i]->x()); };
        if (time < shown(0)) return static_cast<float>(keys[0]->y());
        uint32_t i = 0;
        while (i + 1 < keys.size() && shown(i + 1) <= time) ++i;
        if (i + 1 == keys.size() || keys[i]->type() == tm_spline::step) {
            return static_cast<float>(keys[i]->y());
        }
        const double past = std::max(0.0, time - keys[i]->x());
        const double u = past / (keys[i + 1]->x() - keys[i]->x());
        return static_cast<float>(keys[i]->y() + u * (keys[i + 1]->y() - keys[i]->y()));
    }

    std::vector<float> times_;
};

TEST_F(ManyKeysTest, EveryTimeFindsItsKeys) {
    for (const float time : times_) ASSERT_NEAR(slowly(time), (*this)(time), 1e-3) << time;
}

TEST_F(ManyKeysTest, ManyTimesAreAsOneByOne) {
    std::vector<float> together(times_.size());
    for (const char* expression : {"", "sin(t)"}) {
        ASSERT_TRUE(curve_.setExpression(expression));
        for (const bool plus : {false, true}) {
            curve_.setExpressionPlusSpline(plus);
            curve_.evaluate(times_.data(), together.data(), static_cast<uint32_t>(times_.size()));
            for (std::size_t i = 0; i < times_.size(); ++i) {
                ASSERT_EQ((*this)(times_[i]), together[i]) << expression << plus;
            }
        }
    }
}

TEST_F(ManyKeysTest, ThreadsEvaluateAtOnce) {
    ASSERT_TRUE(curve_.setExpression("sin(t) + frame % 7"));
    curve_.setExpressionPlusSpline(true);
    // A copy that nobody has evaluated yet: the threads compile it, too.
    for (int round = 0; round < 20; ++round) {
        at(3).setY(round);
        std::vector<std::vector<float>> results(4);
        std::vector<std::thread> threads;
        for (auto& mine : results) {
            mine.resize(times_.size());
            threads.emplace_back([&] {
                for (std::size_t i = 0; i < 100; ++i) mine[i] = (*this)(times_[i]);
                curve_.evaluate(times_.data() + 100, mine.data() + 100,
                                static_cast<uint32_t>(times_.size()) - 100);
            });
        }
        for (std::thread& thread : threads) thread.join();
        for (const auto& other : results) ASSERT_EQ(results[0], other);
    }
}

TEST(CurveScale, AMillionKeysInAnyOrder) {
    std::mt19937 random(1);
    std::vector<PointInfo> keys;
    for (int i = 0; i < 1000000; ++i) keys.push_back(key(random() % 1000000, i));
    Array<const PointInfo*> pointers;
    for (const PointInfo& each : keys) pointers.append(&each);
    ANIFloatBase curve;
    curve.refSpline().addPoints(pointers);
    const auto& sorted = curve.spline().points();
    ASSERT_EQ(1000000u, sorted.size());
    for (uint32_t i = 1; i < sorted.size(); ++i) ASSERT_LE(sorted[i - 1]->x(), sorted[i]->x());
    EXPECT_EQ(static_cast<float>(sorted.back()->y()), curve.DameValor(2e6f));
    Array<const PointInfo*> half;
    for (uint32_t i = 0; i < sorted.size(); i += 2) half.append(sorted[i]);
    curve.refSpline().removePoints(half);
    EXPECT_EQ(500000u, sorted.size());
}

} // namespace
