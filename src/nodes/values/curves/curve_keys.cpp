// SPDX-License-Identifier: Apache-2.0
// Keys of curves: making, listing, adding and removing them, and filtering their values.
#include "graph/define_node.h"
#include "nodes/values/curves/curve_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::CurveAttribute;
using weft::KeyAttribute;
using weft::NetworkManager;
using weft::PointerValueBase;

class Key : public weft::Node {
public:
    Key(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent), key_(addOutput<KeyAttribute>("key", "The created key.")),
          shown_(&key_->ownPointers()) {
        appendClass<"Key">();
        describe("This node creates a Key element to be added to a Curve later. The created key "
                 "has initially all its values set to 0 and is of type TCB.");
        shown_->setValue(&made_);
    }

    ~Key() override {
        // Whoever still shares the value of the output sees a null there.
        shown_->removeReferencesTo({&made_});
        if (wasShown_) keysAreReleased({&made_});
    }

    void update(Attribute*) override {
        PointerValueBase* target = key_->pointersTarget();
        if (!target) return;
        wasShown_ = true;
        target->setValue(&made_);
        key_->valueChanged();
        setAttributeIsClean(key_, true);
    }

    void attributeConnectionChanged(Attribute*) override { wasShown_ = true; }

private:
    PointInfo made_;
    bool wasShown_ = false; // by a connection or an update: only then may anybody hold the key
    KeyAttribute* key_;
    weft::Retained<PointerValueBase> shown_;
};

class GetCurveKeys : public weft::Node {
public:
    GetCurveKeys(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetCurveKeys">();
        describe("This node returns all the keys stored in the curve.");
        curve_ = addInput<CurveAttribute>("curve", "The curve to take the keys from.");
        keys_ = addOutput<KeyAttribute>("keys", "The keys of the curve, in order of time.");
        setAttributeAffect(curve_, keys_);
    }

    void update(Attribute*) override {
        curve_->pull();
        const ANIFloatBase* curve = curve_->curveAt(0);
        if (!curve) {
            pushError("Input Curve is null");
            return;
        }
        PointerValueBase* target = keys_->pointersTarget();
        if (!target) return;
        const Array<PointInfo*>& keys = curve->spline().points();
        target->setSize(keys.size());
        std::copy(keys.begin(), keys.end(), target->refValues().begin());
        keys_->valueChanged();
        setAttributeIsClean(keys_, true);
    }

private:
    CurveAttribute* curve_;
    KeyAttribute* keys_;
};

namespace {

// A node that changes every curve of its input in place and passes them on.
class CurvesChanger : public weft::Node {
public:
    using Node::Node;

    void update(Attribute*) override {
        curve_->pull();
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < curve_->pointers().size(); ++i) {
            if (ANIFloatBase* curve = curve_->curveAt(i)) {
                meter.add(curve->spline().points().size());
                change(*curve);
            } else {
                reportNullElement(*this, i);
            }
        }
        outCurve_->valueChanged();
        setAttributeIsClean(outCurve_, true);
    }

protected:
    void addPins(const char* inHelp) {
        curve_ = addInput<CurveAttribute>("curve", inHelp);
        outCurve_ = addOutput<CurveAttribute>("out curve", "The changed curves.");
        connectInternalAttributes(curve_, outCurve_);
    }
    virtual void change(ANIFloatBase& curve) = 0;

private:
    CurveAttribute* curve_ = nullptr;
    CurveAttribute* outCurve_ = nullptr;
};

} // namespace

class CurveRemoveKeysAll : public CurvesChanger {
public:
    CurveRemoveKeysAll(NetworkManager* manager, const TM_String& name, Node* parent)
        : CurvesChanger(manager, name, parent) {
        appendClass<"CurveRemoveKeysAll">();
        describe("This node removes all keys from the input 'curve'.");
        addPins("The curves to remove the keys from.");
    }

private:
    void change(ANIFloatBase& curve) override { curve.refSpline().removeAllControlPoints(); }
};

class CurveEulerFilter : public CurvesChanger {
public:
    CurveEulerFilter(NetworkManager* manager, const TM_String& name, Node* parent)
        : CurvesChanger(manager, name, parent) {
        appendClass<"CurveEulerFilter">();
        describe("This node applies the Euler filter to the input 'curve'.");
        addPins("The curves to filter. Their values are angles in degrees.");
    }

private:
    void change(ANIFloatBase& curve) override { curve.eulerFilter(); }
};

namespace {

// A node that hands the keys of an input to the first curve of another one.
class KeysChanger : public weft::Node {
public:
    using Node::Node;

    void update(Attribute*) override {
        curve_->pull();
        ANIFloatBase* curve = curve_->curveAt(0);
        if (!curve) {
            pushError(text::format("Input '%s' is null", curve_->name().c_str()));
            return;
        }
        key_->pull();
        // All at once, and from a list of their own: a key that is removed vanishes from the pin.
        change(curve->refSpline(), keysOfInput());
        outCurve_->valueChanged();
        // Or a reader that comes next would have the keys added once more.
        setAttributeIsClean(outCurve_, true);
    }

protected:
    void addPins(const char* curveHelp, const char* keyHelp) {
        curve_ = addInput<CurveAttribute>("curve", curveHelp);
        key_ = addInput<KeyAttribute>("key", keyHelp);
        outCurve_ = addOutput<CurveAttribute>("out curve", "The changed curve.");
        setAttributeAffect(key_, outCurve_);
        connectInternalAttributes(curve_, outCurve_);
    }
    virtual void change(SplineBase& spline, const Array<const PointInfo*>& keys) = 0;

private:
    Array<const PointInfo*> keysOfInput() {
        Array<const PointInfo*> keys;
        const uint32_t count = key_->pointers().size();
        keys.reserve(count);
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < count; ++i) {
            meter.add(1);
            if (const PointInfo* key = key_->keyAt(i)) {
                keys.append(key);
            } else {
                pushError(text::format("Input '%s' is null at position %d", key_->name().c_str(),
                                       static_cast<int>(i)));
            }
        }
        return keys;
    }

    CurveAttribute* curve_ = nullptr;
    KeyAttribute* key_ = nullptr;
    CurveAttribute* outCurve_ = nullptr;
};

} // namespace

class CurveAddKey : public KeysChanger {
public:
    CurveAddKey(NetworkManager* manager, const TM_String& name, Node* parent)
        : KeysChanger(manager, name, parent) {
        appendClass<"CurveAddKey">();
        describe("This node adds a copy of the input keys to the input 'curve'.");
        addPins("The curve to add the keys to.",
                "The key to add to the curve. It is copied before being added.");
    }

private:
    void change(SplineBase& spline, const Array<const PointInfo*>& keys) override {
        spline.addPoints(keys);
    }
};

class CurveRemoveKey : public KeysChanger {
public:
    CurveRemoveKey(NetworkManager* manager, const TM_String& name, Node* parent)
        : KeysChanger(manager, name, parent) {
        appendClass<"CurveRemoveKey">();
        describe("This node removes the input keys from the input 'curve'.");
        addPins("The curve to remove the keys from.",
                "The key to remove from the curve. It must belong to it.");
    }

private:
    void change(SplineBase& spline, const Array<const PointInfo*>& keys) override {
        spline.removePoints(keys);
    }
};

SLUICE_DEFINE_NODE(Key)
SLUICE_DEFINE_NODE(GetCurveKeys)
SLUICE_DEFINE_NODE(CurveRemoveKeysAll)
SLUICE_DEFINE_NODE(CurveEulerFilter)
SLUICE_DEFINE_NODE(CurveAddKey)
SLUICE_DEFINE_NODE(CurveRemoveKey)

} // namespace tidemark::sluice::graph
