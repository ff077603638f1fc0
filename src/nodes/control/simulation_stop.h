// SPDX-License-Identifier: Apache-2.0
// A node on any chain that asks the application to stop its simulation. The run itself goes on.
#pragma once

#include <memory>

#include "core/bit_array.h"
#include "core/node.h"

namespace weft {

class SimulationStop;

/// How one node reaches an application with a user interface; the application derives from it.
class SLUICE_API SimulationStop_GUI {
public:
    explicit SimulationStop_GUI(SimulationStop* node) : node_(node) {}
    SimulationStop_GUI(const SimulationStop_GUI&) = default;
    virtual ~SimulationStop_GUI();
    virtual void stopSimulation() = 0;

protected:
    SimulationStop* node() const { return node_; }

private:
    SimulationStop* node_;
};

class SLUICE_API SimulationStop : public Node {
public:
    SimulationStop(NetworkManager* manager, const TM_String& name, Node* parent);
    ~SimulationStop() override;

    /// With a true first bit of "stop", "in" is not pulled and "through" stays as it was.
    void update(Attribute* attribute) override;

    /// Null without a user interface.
    SimulationStop_GUI* guiContext() const { return guiContext_.get(); }

    /// Set by the application before nodes are made; called once per node, which owns the result.
    /// Null at start: then the host interface is asked to stop.
    static SimulationStop_GUI* (*instance_GUI_context_)(SimulationStop* node);

private:
    void stopSimulation();

    BitArrayAttribute* stop_;
    PassThroughAttribute* in_;
    PassThroughAttribute* through_;
    std::unique_ptr<SimulationStop_GUI> guiContext_;
};

} // namespace weft
