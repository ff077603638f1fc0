// SPDX-License-Identifier: Apache-2.0
// Factories over the functions that `SLUICE_DEFINE_NODE` made.
#include "nodes/values/trial_types.h"

#include <vector>

#include "graph/graph_scene.h"
#include "graph/node_factory.h"
#include "graph/scene_manager.h"
#include "nodes/control/control_scene.h"

#define TYPES_OF(Word, TYPE)                                                                       \
    TYPE(GetArray##Word##Element)                                                                  \
    TYPE(SetArray##Word##Element)                                                                  \
    TYPE(Array##Word##FilterByMask)                                                                \
    TYPE(Array##Word##Constant)                                                                    \
    TYPE(Array##Word##Resize)                                                                      \
    TYPE(Array##Word##Concat)                                                                      \
    TYPE(Array##Word##Slice)                                                                       \
    TYPE(Array##Word##Mix)                                                                         \
    TYPE(Array##Word##Reverse)                                                                     \
    TYPE(Array##Word##FindElement)                                                                 \
    TYPE(Array##Word##FindAllElementIndices)                                                       \
    TYPE(Array##Word##InsertElement)                                                               \
    TYPE(Array##Word##PushElement)                                                                 \
    TYPE(Array##Word##RemoveElement)                                                               \
    TYPE(Array##Word##RemoveIndex)                                                                 \
    TYPE(Array##Word##RemoveRepeatedElements)                                                      \
    TYPE(Word##Copy)                                                                               \
    TYPE(Set##Word##GlobalVariable)                                                                \
    TYPE(Get##Word##GlobalVariable)

namespace tidemark::sluice::graph {

#define DECLARE(Type)                                                                              \
    weft::Node* create_##Type(weft::NetworkManager*, const TM_String&, weft::Node*);
TYPES_OF(Tag, DECLARE)
TYPES_OF(Anchor, DECLARE)
#undef DECLARE

} // namespace tidemark::sluice::graph

namespace sluice_tests {

namespace graph = tidemark::sluice::graph;
using tidemark::TM_String;

namespace {

using Create = weft::Node* (*)(weft::NetworkManager*, const TM_String&, weft::Node*);

class CreatedNode : public graph::Node {
public:
    explicit CreatedNode(Create create) : create_(create) {}
    void createWeftNode() override {
        auto* scene = getScenePrivatePtr();
        adoptWeftNode(create_(&scene->networkManager, getName(), &scene->rootNode));
    }

private:
    Create create_;
};

class CreatedFactory : public graph::NodeFactory {
public:
    CreatedFactory(const char* type, Create create)
        : NodeFactory(type, {"Test"}), create_(create) {}
    graph::NodeBase* createNode() override { return prepare(new CreatedNode(create_)); }

private:
    Create create_;
};

} // namespace

struct TrialTypes::Private {
    std::vector<std::unique_ptr<CreatedFactory>> factories;
};

TrialTypes::TrialTypes() : private_(std::make_unique<Private>()) {
#define ENTER(Type)                                                                                \
    private_->factories.push_back(std::make_unique<CreatedFactory>(#Type, graph::create_##Type));
    TYPES_OF(Tag, ENTER)
    TYPES_OF(Anchor, ENTER)
#undef ENTER
    for (const auto& factory : private_->factories) {
        graph::SceneManager::instance().registerNodeFactory(factory.get());
    }
}

TrialTypes::~TrialTypes() {
    for (const auto& factory : private_->factories) {
        graph::SceneManager::instance().unregisterNodeFactory(factory.get());
    }
}

} // namespace sluice_tests
