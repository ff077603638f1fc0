// SPDX-License-Identifier: Apache-2.0
// Tests of pulls through chains that are longer than a thread's stack has room for.
#include <gtest/gtest.h>

#include "core/attribute.h"
#include "core/exceptions.h"
#include "support/net.h"
#include "test_nodes.h"

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
#define SLUICE_INSTRUMENTED 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer) || __has_feature(address_sanitizer)
#define SLUICE_INSTRUMENTED 1
#endif
#endif

using namespace weft;
using support::Net;
using test_nodes::pulled;
using test_nodes::StepNode;

namespace {

// A chain of steps, each fed by the one before. They have no names, which would cost most here.
struct Chain {
    explicit Chain(int length) {
        net.manager.setMonitoring(false);
        for (int i = 0; i < length; ++i) {
            auto* step = new StepNode(&net.manager, "", nullptr);
            step->setParent(net.root);
            net.root->addNode(step);
        }
        for (int i = 1; i < length; ++i) {
            net.root->nodeAt(i - 1)->outputAttributeAt(0)->connectTo(
                net.root->nodeAt(i)->inputAttributeAt(0), nullptr);
        }
        last = static_cast<NumericAttribute*>(net.root->nodeAt(length - 1)->inputAttributeAt(0));
    }
    ~Chain() { net.manager.setTearingDown(true); }

    Net net;
    NumericAttribute* last = nullptr;
};

} // namespace

TEST(DeepPull, ChainOfAHundredThousandIsPulled) {
#if defined(SLUICE_INSTRUMENTED)
    constexpr int length = 20000;
#else
    constexpr int length = 100000;
#endif
    Chain chain(length);
    EXPECT_EQ(pulled(chain.last), static_cast<float>(length - 1));
    EXPECT_EQ(chain.net.manager.failedNodeId(), 0);
}

TEST(DeepPull, ExceptionFromTheFarEndArrives) {
#if defined(SLUICE_INSTRUMENTED)
    constexpr int length = 5000;
#else
    constexpr int length = 100000;
#endif
    Chain chain(length);
    auto* first = static_cast<StepNode*>(chain.net.root->nodeAt(0));
    first->throwing = true;
    try {
        chain.last->pull();
        FAIL() << "nothing was thrown";
    } catch (const tidemark::sluice::graph::GenericGraphException& failure) {
        EXPECT_EQ(failure.message(), "[root.] the step fails - in the deep");
    }
    EXPECT_EQ(chain.net.manager.failedNodeId(), first->id());
    first->throwing = false;
    EXPECT_EQ(pulled(chain.last), static_cast<float>(length - 1));
}

#if !defined(SLUICE_INSTRUMENTED)
TEST(DeepPull, ChainOfAMillionIsPulled) {
    Chain chain(1000000);
    EXPECT_EQ(pulled(chain.last), 999999.0f);
    chain.net.root->nodeAt(0)->inputAttributeAt(0)->markDirty(true);
    EXPECT_FALSE(chain.last->isClean());
}
#endif
