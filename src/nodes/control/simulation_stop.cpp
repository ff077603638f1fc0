// SPDX-License-Identifier: Apache-2.0
// Asking the application to stop its simulation.
#include "nodes/control/simulation_stop.h"

#include "bridge/host.h"
#include "graph/define_node.h"

namespace weft {

SimulationStop_GUI* (*SimulationStop::instance_GUI_context_)(SimulationStop*) = nullptr;

SimulationStop_GUI::~SimulationStop_GUI() = default;

SimulationStop::SimulationStop(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"SimulationStop">();
    describe("This node stops the current Sluice simulation, if the input 'condition' is 'true'.\n"
             "If currently no simulation is in progress, the graph excecution is stopped.");
    stop_ = addInput<BitArrayAttribute>("stop", "True to stop the simulation.");
    in_ = addInput<PassThroughAttribute>("in", "The value that is passed on.");
    through_ = addOutput<PassThroughAttribute>("through", "The value of 'in', unchanged.");
    setAttributeAffect(stop_, through_);
    connectInternalAttributes(in_, through_);
    if (instance_GUI_context_) guiContext_.reset(instance_GUI_context_(this));
}

SimulationStop::~SimulationStop() = default;

void SimulationStop::update(Attribute*) {
    stop_->pull();
    if (!stop_->firstBit()) return in_->pull();
    stopSimulation();
    pushInfo("Simulation stopped by node");
}

void SimulationStop::stopSimulation() {
    if (guiContext_) return guiContext_->stopSimulation();
    tidemark::bridge::CCallbackCenter::Instance().StopSimulation();
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::SimulationStop;

SLUICE_DEFINE_NODE(SimulationStop)

} // namespace tidemark::sluice::graph
