// SPDX-License-Identifier: Apache-2.0
// Kernels: what is repeated, how the elements are split, and the threads.
#include "nodes/control/kernel.h"

#include <algorithm>
#include <memory>
#include <set>
#include <vector>

#include "core/string_value.h"
#include "core/update_observer.h"
#include "core/update_scope.h"
#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "nodes/control/iterator_body.h"
#include "nodes/control/kernel_clone.h"
#include "nodes/control/kernel_plan.h"
#include "platform/processors.h"
#include "platform/thread.h"

namespace weft {

using tidemark::platform::Thread;

// The node.

Kernel::Kernel(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"Kernel">();
    describe("The Kernel node is a special node that can be used to perform graph iterations in "
             "parallel.\nIf the start value is larger than the stop value, the kernel is not "
             "executed (except, if the stop value is negative).\nA Kernel node must always be "
             "inside a Compound node. It cannot be created at root level.");
    array_ = addInput<NumericAttribute>("array", "The elements that the kernel runs for.");
    threads_ = addInput<NumericAttribute>(
        "threads", "The number of threads. 0 for the number set for this node or the graph, a "
                   "negative one for all processors.");
    start_ = addInput<NumericAttribute>(
        "start", "The index of the first element of the input to apply the kernel to. If negative, "
                 "the array is processed from the first value.");
    stop_ = addInput<NumericAttribute>(
        "stop", "The index of the last element of the input to apply the kernel to. If negative, "
                "the array is processed up to the last element.");
    element_ = addOutput<NumericAttribute>("element", "The current element of the array.");
    threadId_ = addOutput<NumericAttribute>("thread id", "The number of the thread, from 0.");
    index_ = addOutput<NumericAttribute>("index", "The index of the current element.");
    for (NumericAttribute* number : {threads_, start_, stop_}) {
        setAttributeAllowedSpecialization(number, "Integer");
        number->setElementCountRule(1);
    }
    stop_->ownNumeric().setValue<int32_t>(-1);
    setAttributeAllowedSpecialization(threadId_, "Integer");
    setAttributeAllowedSpecialization(index_, "Integer");
    addAttributeSpecializationLink(array_, element_);
    setAttributeAffectAllOutputsByAllInputs();
}

void Kernel::update(Attribute* attribute) { setAttributeIsClean(attribute, true); }

int Kernel::threadCount() const {
    int count = getStoredNumberOfThreads();
    if (count == 0) count = parent()->getNumberOfThreadsToUse();
    if (const int32_t wanted = threads_->numeric().value<int32_t>(); wanted != 0) count = wanted;
    // More threads than processors are the user's choice: they decide how the elements are split.
    return count > 0 ? count : tidemark::platform::threadCount(count);
}

void Kernel::iterate(Attribute* compoundOutput) {
    checkIteratorPlace(*this, "Kernel nodes cannot be at root level.");
    checkNotIterating(*this);
    UpdateScope scope(*this);
    for (Attribute* input : refInputAttributes()) input->pull();
    const Node& compound = *compoundOutput->parent();
    pullInputs(compound);
    const Array<Attribute*> attributes =
        collectBody(compound, [&](const Attribute& upstream, const Attribute&) {
            const Node* owner = upstream.parent();
            return owner && owner != &compound && liesIn(*owner, &compound) &&
                   !isIteratedDeeper(*owner, compound);
        });
    runClones(threadCount(), start_->numeric().value<int32_t>(), stop_->numeric().value<int32_t>(),
              attributes);
    for (Attribute* output : compound.refOutputAttributes()) output->setClean(true);
    scope.done();
}

// The elements and the threads.

namespace {

// So many copies are alive at the same time; further shares wait for their turn.
constexpr std::size_t mostClones = 256;

// How the elements fall to the threads. Counted without a sign: a share of a negative start that
// passes zero is empty, because it ends before it begins.
class Split {
public:
    Split(uint32_t threads, int32_t start, int32_t stop, uint32_t size) : threads_(threads) {
        const auto last = static_cast<int32_t>(size) - 1;
        if (stop < 0 || stop > last) stop = last;
        if (start > stop) return;
        start_ = static_cast<uint32_t>(start);
        const uint32_t total = static_cast<uint32_t>(stop) - start_ + 1;
        each_ = total / threads;
        rest_ = total % threads;
        next_ = each_ > 0 ? 0 : threads - 1;
    }

    /// True when no two threads run at the same time.
    bool isAlone() const { return threads_ == 1 || each_ == 0; }

    /// The shares of the next threads that have one, no more than `most`.
    std::vector<KernelShare> next(std::size_t most) {
        std::vector<KernelShare> shares;
        for (; next_ < threads_ && shares.size() < most; ++next_) {
            const uint32_t first = start_ + next_ * each_;
            const uint32_t count = next_ + 1 < threads_ ? each_ : each_ + rest_;
            if (first < first + count) shares.push_back({next_, first, count});
        }
        return shares;
    }

private:
    const uint32_t threads_;
    uint32_t start_ = 0;
    uint32_t each_ = 0;
    uint32_t rest_ = 0;
    uint32_t next_ = 0xffffffffu; // nothing to do
};

// The values that the copies share stay where they are for a while.
class PinnedValues {
public:
    PinnedValues() = default;
    ~PinnedValues() {
        for (Value* value : pinned_) value->pin(false);
    }
    PinnedValues(const PinnedValues&) = delete;
    PinnedValues& operator=(const PinnedValues&) = delete;

    // One that is pinned already is shared by the threads of a kernel around this one.
    void add(Value& value) {
        if (value.isPinned()) return;
        value.pin(true);
        pinned_.push_back(&value);
    }

private:
    std::vector<Value*> pinned_;
};

// Values of this network come and go on workers as long as it lives.
class SharedNetwork {
public:
    explicit SharedNetwork(NetworkManager& manager)
        : manager_(manager), before_(manager.setShared(true)) {}
    ~SharedNetwork() { manager_.setShared(before_); }
    SharedNetwork(const SharedNetwork&) = delete;
    SharedNetwork& operator=(const SharedNetwork&) = delete;

private:
    NetworkManager& manager_;
    const bool before_;
};

struct Worker {
    Worker(KernelClone& clone, const Numeric& array)
        : clone(clone), array(array), thread(&Worker::enter, this) {}
    static void enter(void* worker) {
        auto& self = *static_cast<Worker*>(worker);
        self.clone.run(self.array);
    }
    KernelClone& clone;
    const Numeric& array;
    Thread thread;
};

using Clones = std::vector<std::unique_ptr<KernelClone>>;

void runThreads(const Clones& clones, const Numeric& array) {
    std::vector<std::unique_ptr<Worker>> workers;
    for (const auto& clone : clones) workers.push_back(std::make_unique<Worker>(*clone, array));
    std::vector<Worker*> left;
    for (const auto& worker : workers) {
        if (!worker->thread.start()) left.push_back(worker.get());
    }
    // The system has no more threads: this one takes their part.
    for (Worker* worker : left) worker->thread.runHere();
    const UpdateObserver::Waiting waiting;
    for (const auto& worker : workers) worker->thread.join();
}

// Strings that threads wrote in place, each at places of its own: what differs has been written.
void takeStrings(StringValue& into, const std::vector<const StringValue*>& written) {
    const StringValue& last = *written.back();
    if (last.size() != into.size()) return into.copyFrom(&last);
    for (uint32_t i = 0; i < into.size(); ++i) {
        for (std::size_t thread = written.size(); thread > 0; --thread) {
            const StringValue& values = *written[thread - 1];
            if (i >= values.size() || values.values()[i] == into.values()[i]) continue;
            into.refValues()[i] = values.values()[i];
            break;
        }
    }
}

// What several threads have computed becomes what one thread would have left behind.
void takeResults(const Clones& clones) {
    if (clones.empty()) return;
    const auto& stands = clones.back()->stands();
    for (std::size_t i = 0; i < stands.size(); ++i) {
        auto* into = valueAs<StringValue>(stands[i].outside);
        if (stands[i].isResult || !into) {
            stands[i].outside->copyFrom(stands[i].inside);
            continue;
        }
        std::vector<const StringValue*> written;
        for (const auto& clone : clones) {
            const Value* inside = clone->stands()[i].inside;
            written.push_back(static_cast<const StringValue*>(inside));
        }
        takeStrings(*into, written);
    }
    for (const KernelClone::Handover& handover : clones.back()->handovers()) {
        if (Value* value = handover.inside->value()) handover.outside->setValue(value);
    }
}

// A message that several threads have is told once.
void takeReports(const KernelPlan& plan, const Clones& clones) {
    std::set<std::pair<uint32_t, TM_String>> told;
    for (const auto& clone : clones) {
        for (const auto& [place, message] : clone->reports()) {
            if (!told.emplace(place, message.asString()).second) continue;
            const bool isStandIn = place >= plan.nodes().size();
            auto* node = isStandIn ? plan.kernelNode() : plan.nodes()[place];
            node->refMessages().push(message.level, message.text, message.detail);
        }
    }
}

} // namespace

void Kernel::runClones(int numberOfThreads, int32_t start, int32_t stop,
                       const Array<Attribute*>& attributes) {
    const KernelPlan plan(*this, attributes);
    const Numeric& array = array_->numeric();
    const uint32_t size = array.type() == NumericType::none ? 0 : array.size();
    Split split(static_cast<uint32_t>(std::max(numberOfThreads, 1)), start, stop, size);
    for (auto shares = split.next(mostClones); !shares.empty(); shares = split.next(mostClones)) {
        runShares(plan, shares, split.isAlone());
    }
    for (const KernelPlan::Outlet& outlet : plan.outlets()) outlet.source->valueChanged();
}

void Kernel::runShares(const KernelPlan& plan, const std::vector<KernelShare>& shares,
                       bool isAlone) {
    NetworkManager& manager = *networkManager();
    Clones clones;
    for (const KernelShare& share : shares) {
        clones.push_back(std::make_unique<KernelClone>(plan, share, isAlone));
        manager.pollInterrupt();
    }
    {
        const SharedNetwork shared(manager);
        PinnedValues pinned;
        for (Value* value : clones.back()->sharedValues()) pinned.add(*value);
        runThreads(clones, array_->numeric());
    }
    takeResults(clones);
    takeReports(plan, clones);
    for (const auto& clone : clones) {
        const auto* node = clone->interruptedNode();
        if (node && node->getCoreNode()) manager.noteFailure(node->getCoreNode());
    }
    manager.pollInterrupt();
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::Kernel;

void Node_Kernel::createWeftNode() {
    ScenePrivate& scene = *getScenePrivatePtr();
    auto* const kernel = new Kernel(&scene.networkManager, getName(), &scene.rootNode);
    kernel->setScene(getScene());
    adoptWeftNode(kernel);
}

NodeBase* NodeKernelFactory::createNode() { return prepare(new Node_Kernel); }

} // namespace tidemark::sluice::graph
