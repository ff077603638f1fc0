// SPDX-License-Identifier: Apache-2.0
// An element type of the tests, held by pointers, which joins the families of nodes as every type
// of the library does.
#pragma once

#include <atomic>
#include <memory>
#include <new>

#include "core/pointer_value.h"

namespace sluice_tests {

/// An object whose copies are counted.
struct Probe {
    static constexpr int uncopyable = -1;

    explicit Probe(int number) : number(number) { ++alive; }
    ~Probe() { --alive; }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    Probe* clone() const {
        if (number == uncopyable) throw std::bad_alloc();
        return new Probe(number);
    }

    int number;
    static inline std::atomic<int> alive = 0;
};

class ProbeAttribute : public weft::PointerAttribute {
public:
    using Pointee = Probe;

    ProbeAttribute(weft::NetworkManager* manager, const tidemark::TM_String& name,
                   weft::Node* parent)
        : PointerAttribute(manager, name, parent, new weft::PointerValue<Probe>(manager),
                           weft::PointerValue<Probe>::kind) {
        appendClass<"ProbeAttribute">();
        // Of a name that ports of any type know.
        initializeSpecializations({"Mesh"});
    }
};

/// The node types of the element, registered while this lives: ProbeSource, whose output "out"
/// shows what the test puts into it, ProbeCopy, SetProbeGlobalVariable and GetProbeGlobalVariable,
/// and the same as PlainProbe with references only.
class ProbeTypes {
public:
    ProbeTypes();
    ~ProbeTypes();

private:
    struct Private;
    std::unique_ptr<Private> private_;
};

} // namespace sluice_tests
