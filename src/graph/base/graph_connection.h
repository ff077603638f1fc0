// SPDX-License-Identifier: Apache-2.0
// A connection: the pair of an output pin and the input pin it feeds.
#pragma once

#include <cstdint>

#include "core/export.h"
#include "graph/base/tm_class.h"

namespace tidemark::graph {

class GraphNodeBase;
class GraphNodePin;

/// Describes a pair of pins. The ones a scene makes (`GraphScene::connect`) are listed there,
/// belong to it and stand in the lists of both pins; one built by value only describes.
class SLUICE_API GraphConnection : public TM_Class {
public:
    GraphConnection() = default;
    GraphConnection(GraphNodePin* source, GraphNodePin* target)
        : source_(source), target_(target) {}

    /// The copy describes the same pins and is listed nowhere.
    GraphConnection(const GraphConnection& other)
        : TM_Class(other), source_(other.source_), target_(other.target_), flag_(other.flag_) {}
    GraphConnection& operator=(const GraphConnection& other);

    /// Null only in a connection made without pins, or detached.
    virtual GraphNodePin* getSourcePin() const { return source_; }
    virtual GraphNodePin* getTargetPin() const { return target_; }

    /// The pin's node; null without pin.
    virtual GraphNodeBase* getSourceNode() const;
    virtual GraphNodeBase* getTargetNode() const;

    /// Leaves the lists of both pins and forgets the pins.
    virtual void detach();

    /// Kept with the connection; nothing here reads it.
    bool flag() const { return flag_; }
    void setFlag(bool flag) { flag_ = flag; }

    /// Place in the scene's list, which moves when others are removed; `unlisted` without one.
    uint32_t indexInScene() const { return index_; }
    static constexpr uint32_t unlisted = 0xffffffffu;

private:
    friend class GraphScene;

    GraphNodePin* source_ = nullptr;
    GraphNodePin* target_ = nullptr;
    uint32_t index_ = unlisted;
    bool flag_ = false;
};

} // namespace tidemark::graph
