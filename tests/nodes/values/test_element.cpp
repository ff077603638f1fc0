// SPDX-License-Identifier: Apache-2.0
// How the element type of the tests joins the families of nodes.
#include "nodes/values/test_element.h"

#include "nodes/control/kernel_scene.h"
#include "nodes/values/copies/copy_nodes.h"
#include "nodes/values/globals/global_variables.h"

namespace tidemark::sluice::graph {

// What a type takes, but for the rows.
SLUICE_DEFINE_COPY(ProbeCopy, weft::CopyPtr<sluice_tests::ProbeAttribute>)
SLUICE_DEFINE_GLOBAL_VARIABLE(Probe, sluice_tests::ProbeAttribute, SetGlobalVariableCopy)
SLUICE_DEFINE_GLOBAL_VARIABLE(PlainProbe, sluice_tests::ProbeAttribute, SetGlobalVariableBase)

} // namespace tidemark::sluice::graph

namespace sluice_tests {

using namespace tidemark::sluice::graph;
using tidemark::TM_String;

namespace {

class ProbeSource : public weft::Node {
public:
    ProbeSource(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Node(manager, name, parent) {
        appendClass<"ProbeSource">();
        addOutput<ProbeAttribute>("out", "What the test puts into it.");
    }
};

} // namespace

struct ProbeTypes::Private {
    template <typename Logic>
    using Registered = control_tests::RegisteredType<Logic>;

    Registered<ProbeSource> source{"ProbeSource"};
    Registered<ProbeCopy> copy{"ProbeCopy"};
    Registered<SetProbeGlobalVariable> set{"SetProbeGlobalVariable"};
    Registered<GetProbeGlobalVariable> get{"GetProbeGlobalVariable"};
    Registered<SetPlainProbeGlobalVariable> setPlain{"SetPlainProbeGlobalVariable"};
    Registered<GetPlainProbeGlobalVariable> getPlain{"GetPlainProbeGlobalVariable"};
};

ProbeTypes::ProbeTypes() : private_(std::make_unique<Private>()) {}
ProbeTypes::~ProbeTypes() = default;

} // namespace sluice_tests
