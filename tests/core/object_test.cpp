// SPDX-License-Identifier: Apache-2.0
// Tests of identity, reference counts and what happens when a manager goes first.
#include "core/object.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

#include "core/bit_array.h"
#include "core/callbacks.h"
#include "core/network_manager.h"
#include "core/numeric.h"
#include "support/callback_log.h"
#include "test_nodes.h"

using namespace weft;
using test_nodes::ScriptNode;

namespace {

struct Counted : Object {
    Counted(NetworkManager* manager, int& living) : Object(manager), living_(living) { ++living_; }
    ~Counted() override { --living_; }
    int& living_;
};

} // namespace

TEST(Object, StartsWithoutReferences) {
    NetworkManager manager;
    int living = 0;
    auto* object = new Counted(&manager, living);
    EXPECT_EQ(object->refCount(), 0);
    EXPECT_FALSE(object->isDeleted());
    EXPECT_FALSE(object->isAttributeObject());
    EXPECT_EQ(object->networkManager(), &manager);
    delete object;
    EXPECT_EQ(living, 0);
}

TEST(Object, ReleasingTheLastReferenceDeletes) {
    NetworkManager manager;
    int living = 0;
    auto* object = new Counted(&manager, living);
    object->retain();
    object->retain();
    object->release();
    EXPECT_EQ(living, 1);
    EXPECT_EQ(object->refCount(), 1);
    object->release();
    EXPECT_EQ(living, 0);
}

TEST(Object, IdsArePositiveRiseAndAreSharedByAllManagers) {
    NetworkManager first;
    NetworkManager second;
    const Retained<ErrorObject> a(new ErrorObject(&first));
    const Retained<ErrorObject> b(new ErrorObject(&second));
    const Retained<ErrorObject> c(new ErrorObject(&first));
    EXPECT_GT(a->id(), 0);
    EXPECT_EQ(b->id(), a->id() + 1);
    EXPECT_EQ(c->id(), a->id() + 2);
    EXPECT_EQ(first.findObject(a->id()), a.get());
    EXPECT_EQ(first.findObject(b->id()), nullptr);
    EXPECT_EQ(second.findObject(b->id()), b.get());
}

TEST(Object, IdsAreNeverUsedAgain) {
    NetworkManager manager;
    auto* gone = new ErrorObject(&manager);
    const int32_t id = gone->id();
    delete gone;
    EXPECT_EQ(manager.findObject(id), nullptr);
    const Retained<ErrorObject> next(new ErrorObject(&manager));
    EXPECT_GT(next->id(), id);
}

TEST(Object, FindObjectKnowsNoForeignNumbers) {
    NetworkManager manager;
    EXPECT_EQ(manager.findObject(0), nullptr);
    EXPECT_EQ(manager.findObject(-1), nullptr);
    EXPECT_EQ(manager.findObject(INT32_MIN), nullptr);
    EXPECT_EQ(manager.findObject(INT32_MAX), nullptr);
}

TEST(Object, IdsMadeOnSeveralThreadsAreDifferent) {
    constexpr int perThread = 2000;
    std::vector<std::vector<int32_t>> ids(4);
    std::vector<std::thread> workers;
    for (auto& mine : ids) {
        workers.emplace_back([&mine] {
            NetworkManager manager;
            for (int i = 0; i < perThread; ++i) {
                const Retained<ErrorObject> object(new ErrorObject(&manager));
                mine.push_back(object->id());
            }
        });
    }
    for (std::thread& worker : workers) worker.join();
    std::set<int32_t> all;
    for (const auto& mine : ids) all.insert(mine.begin(), mine.end());
    EXPECT_EQ(all.size(), ids.size() * perThread);
}

TEST(Object, CountsReferencesFromSeveralThreads) {
    NetworkManager manager;
    manager.setMonitoring(false);
    int living = 0;
    auto* object = new Counted(&manager, living);
    object->retain();
    std::vector<std::thread> workers;
    for (int i = 0; i < 4; ++i) {
        workers.emplace_back([object] {
            for (int k = 0; k < 20000; ++k) {
                object->retain();
                object->release();
            }
        });
    }
    for (std::thread& worker : workers) worker.join();
    EXPECT_EQ(object->refCount(), 1);
    object->release();
    EXPECT_EQ(living, 0);
}

TEST(Object, OutlivesItsManager) {
    auto manager = std::make_unique<NetworkManager>();
    auto* value = new Numeric(manager.get());
    value->retain();
    value->setType(NumericType::real);
    manager.reset();
    EXPECT_EQ(value->networkManager(), nullptr);
    value->setValue<float>(4.0f);
    EXPECT_EQ(value->value<float>(), 4.0f);
    value->retain();
    value->release();
    value->release();
}

TEST(Object, NodesAndAttributesMayGoAfterTheirManager) {
    auto manager = std::make_unique<NetworkManager>();
    auto* root = new Node(manager.get(), "root", nullptr);
    root->retain();
    auto* a = new ScriptNode(manager.get(), "a", root);
    auto* b = new ScriptNode(manager.get(), "b", root);
    root->addNode(a);
    root->addNode(b);
    a->ports({"in"}, {"out"});
    b->ports({"in"}, {"out"});
    ASSERT_TRUE(manager->connect(a->findAttribute("out"), b->findAttribute("in"), nullptr));
    a->addAttributeSpecializationLink(a->findAttribute("in"), a->findAttribute("out"));
    b->addAttributeAllowedPassThrough(b->findAttribute("in"), b->findAttribute("out"));
    b->addAttributePassThrough(b->findAttribute("in"), b->findAttribute("out"));
    manager.reset();
    root->removeNode(a);
    root->release();
}

TEST(ErrorObject, IsEmptyUntilItIsSet) {
    NetworkManager manager;
    const Retained<ErrorObject> error(new ErrorObject(&manager));
    EXPECT_EQ(error->message(), "");
    error->setMessage("a reason");
    EXPECT_EQ(error->message(), "a reason");
}

TEST(Object, RetainAndReleaseGoThroughTheirSlotsWhileMonitoring) {
    static int retained = 0;
    static int released = 0;
    retained = released = 0;
    NetworkManager manager;
    int living = 0;
    auto* object = new Counted(&manager, living);
    Callbacks::_objectRetainCallback = [](Object*) { ++retained; };
    Callbacks::_objectReleaseCallback = [](Object*) { ++released; };
    object->retain();
    object->retain();
    object->release();
    EXPECT_EQ(retained, 2);
    EXPECT_EQ(released, 1);
    EXPECT_EQ(object->refCount(), 0);
    manager.setMonitoring(false);
    object->retain();
    EXPECT_EQ(object->refCount(), 1);
    EXPECT_EQ(retained, 2);
    support::CallbackLog::clearSlots();
    object->release();
    EXPECT_EQ(living, 0);
}

TEST(NetworkManager, StartsWithItsFlagsAsStated) {
    NetworkManager manager;
    EXPECT_FALSE(manager.dirtyHold());
    EXPECT_FALSE(manager.cacheDisabled());
    EXPECT_TRUE(manager.monitoring());
    EXPECT_FALSE(manager.evaluating());
    EXPECT_FALSE(manager.isTearingDown());
}

TEST(NetworkManager, ListsItsObjectsInOrderOfId) {
    NetworkManager manager;
    const Retained<ErrorObject> a(new ErrorObject(&manager));
    const Retained<Numeric> b(new Numeric(&manager));
    const Retained<ErrorObject> c(new ErrorObject(&manager));
    std::vector<Object*> listed;
    for (const auto entry : manager.objects()) listed.push_back(entry.value);
    EXPECT_EQ(listed, (std::vector<Object*>{a.get(), b.get(), c.get()}));
}

TEST(Value, BaseHasOneElementAndNoContent) {
    NetworkManager manager;
    static const ValueKind kind{"Plain"};
    const Retained<Value> value(new Value(&manager, kind));
    EXPECT_EQ(value->size(), 1u);
    EXPECT_EQ(value->asString(), "");
    EXPECT_EQ(value->estimatedSize(), 0u);
    EXPECT_EQ(value->checkSum(), 1u);
    value->copyFrom(nullptr);
    value->copyFrom(value.get());
    value->fromString("anything");
    value->purge();
    EXPECT_EQ(value->size(), 1u);
}

TEST(Value, BaseNullMaskIsAllZeroAndOfItsSize) {
    NetworkManager manager;
    const Retained<Numeric> number(new Numeric(&manager));
    number->setType(NumericType::integer);
    number->resize(40);
    const Retained<BitArrayValue> mask(new BitArrayValue(&manager));
    mask->resize(5, true);
    number->Value::nullMask(*mask);
    EXPECT_EQ(mask->size(), 40u);
    EXPECT_TRUE(mask->none());
}

TEST(Value, ClassesAreToldApartByKind) {
    NetworkManager manager;
    const Retained<Value> number(new Numeric(&manager));
    const Retained<Value> bits(new BitArrayValue(&manager));
    EXPECT_EQ(valueAs<Numeric>(number.get()), number.get());
    EXPECT_EQ(valueAs<Numeric>(bits.get()), nullptr);
    EXPECT_EQ(valueAs<BitArrayValue>(static_cast<Value*>(nullptr)), nullptr);
}
