// SPDX-License-Identifier: Apache-2.0
// Tests of pins: state, type, permissions, upstream, looks and internal connections.
#include "graph/pin.h"

#include <memory>

#include "core/bit_array.h"
#include "core/enum_value.h"
#include "core/evaluate_attribute.h"
#include "core/string_value.h"
#include "support/scene_builder.h"
#include "support/type_numbers.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::LogicProbe;
using support::Names;
using support::SceneBuilder;
using tidemark::graph::GraphNodePin;
using weft::BitArrayAttribute;
using weft::EnumAttribute;
using weft::FilePathAttribute;
using weft::FolderAttribute;
using weft::NumericAttribute;
using weft::PassThroughAttribute;
using weft::StringAttribute;

namespace {

// An attribute that says its class is one that no pin may be edited for.
class AnyAttribute : public weft::Attribute {
public:
    AnyAttribute(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Attribute(manager, name, parent) {
        appendClass<"AnyAttribute">();
        initializeSpecializations({"Real"});
    }
};

class PinTest : public testing::Test {
protected:
    // A pin of a plain attribute that may be of these types.
    Pin* typed(const Array<TM_String>& names) {
        const std::string node = "T" + std::to_string(++count_);
        build.probe("Probe", node, [](LogicProbe& logic) { logic.input<weft::Attribute>("in"); });
        Pin* pin = build.pin(node + ".in");
        pin->setAllowedSpecializations(names);
        return pin;
    }
    // A pin of an input of class `A`.
    template <typename A>
    Pin* input() {
        const std::string node = "T" + std::to_string(++count_);
        build.probe("Probe", node, [](LogicProbe& logic) { logic.input<A>("in"); });
        return build.pin(node + ".in");
    }

    SceneBuilder build;

private:
    int count_ = 0;
};

} // namespace

// --- types -------------------------------------------------------------------------------------

TEST_F(PinTest, TypeNumberFollowsTheName) {
    for (const support::TypeNumber& row : support::typeNumbers) {
        const Pin* pin = typed({row.name});
        EXPECT_EQ(pin->getType(), row.number) << row.name;
        EXPECT_TRUE(pin->hasType(row.number)) << row.name;
        EXPECT_FALSE(pin->hasType(0)) << row.name;
        EXPECT_FALSE(pin->isPolymorphic()) << row.name;
        EXPECT_EQ(pin->isSluiceNodeType(), row.number >= 28 && row.number <= 53) << row.name;
    }
}

TEST_F(PinTest, NamesWithoutNumberAreZero) {
    for (const char* name : {"MeshRef", "VertexRef", "FaceRef", "DistanceFieldRef", "", "real",
                             "Real ", "VertexAttribute"}) {
        EXPECT_EQ(typed({name})->getType(), 0) << name;
        EXPECT_TRUE(typed({name})->hasType(0)) << name;
        EXPECT_FALSE(typed({name})->isSluiceNodeType()) << name;
    }
    EXPECT_EQ(typed({})->getType(), 0);
    EXPECT_FALSE(typed({})->hasType(0));
}

TEST_F(PinTest, TwoAllowedTypesArePolymorphicAndHaveBoth) {
    Pin* pin = typed({"Integer", "Real"});
    EXPECT_TRUE(pin->isPolymorphic());
    EXPECT_TRUE(pin->isSpecializable());
    EXPECT_FALSE(pin->isSpecialized());
    EXPECT_EQ(pin->getType(), 23);
    EXPECT_TRUE(pin->hasType(1));
    EXPECT_TRUE(pin->hasType(3));
    EXPECT_FALSE(pin->hasType(23));
    pin->setSpecializationOverride("Real");
    EXPECT_TRUE(pin->isSpecialized());
    EXPECT_EQ(pin->getFirstSpecialization(), "Real");
    EXPECT_EQ(pin->getType(), 23);
    EXPECT_TRUE(pin->hasType(1));
}

TEST_F(PinTest, ClassDecidesBeforeTheTypeNames) {
    Pin* file = input<FilePathAttribute>();
    Pin* folder = input<FolderAttribute>();
    Pin* list = input<EnumAttribute>();
    for (const char* name : {"String", "Real", "MeshRef"}) {
        file->setAllowedSpecializations({name});
        folder->setAllowedSpecializations({name});
        list->setAllowedSpecializations({name});
        EXPECT_EQ(file->getType(), 19);
        EXPECT_EQ(folder->getType(), 20);
        EXPECT_EQ(list->getType(), 10);
        EXPECT_TRUE(list->isEnumType());
    }
    EXPECT_EQ(input<PassThroughAttribute>()->getType(), 23);
    EXPECT_TRUE(input<PassThroughAttribute>()->isPolymorphic());
    EXPECT_TRUE(input<PassThroughAttribute>()->isPurePassThrough());
    EXPECT_EQ(input<StringAttribute>()->getType(), 21);
    EXPECT_EQ(input<BitArrayAttribute>()->getType(), 5);
    EXPECT_EQ(file->getAttributeClassName(), "FilePathAttribute");
}

TEST_F(PinTest, SaveFlagIsThatOfAFilePath) {
    Pin* file = input<FilePathAttribute>();
    EXPECT_FALSE(file->hasSaveFileFlag());
    static_cast<FilePathAttribute*>(file->getWeftAttribute())->setSaveFileFlag(true);
    EXPECT_TRUE(file->hasSaveFileFlag());
    EXPECT_FALSE(input<FolderAttribute>()->hasSaveFileFlag());
}

TEST_F(PinTest, ComplexIsWhatNoControlShows) {
    for (const support::TypeNumber& row : support::typeNumbers) {
        bool isSimple = row.number >= 28 && row.number <= 53;
        for (const int simple : {1, 2, 3, 5, 9, 10, 13, 19, 20, 21}) {
            isSimple = isSimple || row.number == simple;
        }
        EXPECT_EQ(typed({row.name})->typeIsComplex(), !isSimple) << row.name;
    }
    EXPECT_TRUE(typed({"Integer", "Real"})->typeIsComplex());
    EXPECT_FALSE(typed({"Object", "Daemon"})->typeIsComplex());
}

TEST_F(PinTest, PolymorphicHostTypeAsksTheCurrentNames) {
    Pin* pin = typed({"Object", "Daemon"});
    EXPECT_TRUE(pin->isSluiceNodeType());
    EXPECT_EQ(pin->getType(), 23);
    pin->setAllowedSpecializations({"Object", "Real"});
    EXPECT_FALSE(pin->isSluiceNodeType());
    pin->setSpecializationOverride("Object");
    EXPECT_TRUE(pin->isSluiceNodeType());
    EXPECT_FALSE(input<PassThroughAttribute>()->isSluiceNodeType());
}

TEST_F(PinTest, ArraysAreToldByTheirNames) {
    EXPECT_TRUE(typed({"RealArray", "ArrayOfMesh"})->areAllSpecializationsArray());
    EXPECT_FALSE(typed({"RealArray", "Mesh"})->areAllSpecializationsArray());
    EXPECT_FALSE(typed({"RealArray", "Mesh"})->areAllSpecializationsSingle());
    EXPECT_TRUE(typed({"Real", "Mesh"})->areAllSpecializationsSingle());
    EXPECT_FALSE(typed({})->areAllSpecializationsSingle());
    EXPECT_FALSE(typed({})->areAllSpecializationsArray());
}

TEST_F(PinTest, SettingAllowedTypesSetsCurrentOnesAndTheValue) {
    Pin* pin = input<NumericAttribute>();
    pin->setAllowedSpecializations({"Vector3"});
    EXPECT_EQ(pin->getAllowedSpecializations(), (Array<TM_String>{"Vector3"}));
    EXPECT_EQ(pin->getSpecializations(), (Array<TM_String>{"Vector3"}));
    auto* attribute = static_cast<NumericAttribute*>(pin->getWeftAttribute());
    EXPECT_EQ(attribute->ownNumeric().type(), weft::NumericType::vector3);
}

TEST_F(PinTest, SpecializationsSpreadWhenAskedTo) {
    build.add("Add", "A");
    build.pin("A.in0")->setSpecializationOverride("Color4");
    EXPECT_EQ(build.pin("A.result")->getSpecializations().size(), 7u);
    build.pin("A.in0")->updateSpecializations();
    EXPECT_EQ(build.pin("A.result")->getSpecializations(), (Array<TM_String>{"Color4"}));
}

// --- state -------------------------------------------------------------------------------------

TEST_F(PinTest, TakesNameAndIdOfItsAttribute) {
    build.add("Real", "R");
    Pin* pin = build.pin("R.in");
    EXPECT_EQ(pin->getName(), "in");
    EXPECT_EQ(pin->getId(), static_cast<unsigned>(build.at("R.in")->id()));
    EXPECT_EQ(build.scene.getPinPtrById(pin->getId()), pin);
    EXPECT_EQ(pin->getFullName(), "root.R.in");
}

TEST_F(PinTest, RenamingRenamesTheAttributeButKeepsTheOwnName) {
    build.add("Add", "A");
    Pin* pin = build.pin("A.in0");
    pin->setName("left");
    EXPECT_EQ(pin->getWeftAttribute()->name(), "left");
    EXPECT_EQ(build.pin("A.left"), pin);
    // The logic layer wants names to differ; the pin keeps what it was given.
    pin->setName("in1");
    EXPECT_EQ(pin->getName(), "in1");
    EXPECT_EQ(pin->getWeftAttribute()->name(), "in02");
}

TEST_F(PinTest, StateIsTheAttributes) {
    build.add("Real", "R");
    Pin* pin = build.pin("R.real");
    EXPECT_TRUE(pin->isDirty());
    pin->getWeftAttribute()->setClean(true);
    EXPECT_FALSE(pin->isDirty());
    EXPECT_FALSE(pin->isUpdating());
    EXPECT_FALSE(pin->isDynamic());
    EXPECT_FALSE(pin->isPassThrough());
    EXPECT_TRUE(pin->isOutput());
}

TEST_F(PinTest, IsUpdatingWhileItsNodeComputesIt) {
    bool during = false;
    auto* probe =
        build.probe("Probe", "P", [](LogicProbe& logic) { logic.output<NumericAttribute>("out"); });
    build.add("Evaluator", "E").connect("P.out", "E.evaluate");
    const Pin* pin = build.pin("P.out");
    probe->logic().onUpdate = [&](weft::Attribute*) { during = pin->isUpdating(); };
    build.scene.run();
    EXPECT_TRUE(during);
    EXPECT_FALSE(pin->isUpdating());
}

TEST_F(PinTest, IsConnectedAsksTheLogicLayer) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    EXPECT_TRUE(build.pin("R.real")->isConnected());
    EXPECT_TRUE(build.pin("A.in0")->isConnected());
    EXPECT_FALSE(build.pin("A.in1")->isConnected());
    EXPECT_FALSE(build.pin("A.result")->isConnected());
    build.at("A.in0")->disconnectSource();
    EXPECT_FALSE(build.pin("A.in0")->isConnected());
    EXPECT_FALSE(build.pin("R.real")->isConnected());
}

TEST_F(PinTest, APinThatIsNeitherInputNorOutputIsNeverConnected) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    Pin neither(build.node("R"), 0u, tidemark::graph::PinFlags(0u));
    neither.setWeftAttribute(build.at("R.real"));
    EXPECT_FALSE(neither.isConnected());
}

TEST_F(PinTest, WithoutAttributeAnswersAsEmpty) {
    build.add("Real", "R");
    Pin pin(build.node("R"), 1u, GraphNodePin::inputFlag);
    ArrayOfPtr<Pin> upstream;
    ArrayOfPtr<GraphNodePin> ends;
    Array<TM_String> options;
    pin.update();
    pin.setDirtyUpstream(true);
    pin.getUpstreamPins(upstream);
    pin.internalConnections(ends);
    pin.allowedInternalConnections(ends);
    pin.forcedInternalConnections(ends);
    pin.setAllowedSpecializations({"Real"});
    pin.setSpecializationOverride("Real");
    pin.updateSpecializations();
    pin.setFloatValue(1.0f);
    pin.setIntValue(1);
    pin.setInt64Value(1);
    pin.setBitValue(true);
    pin.setStringValue("x");
    pin.setEnumValue(1);
    pin.setVector3Value(Vector3<float>(1.0f));
    pin.getEnumOptions(options);
    EXPECT_TRUE(upstream.empty() && ends.empty() && options.empty());
    EXPECT_FALSE(pin.isDirty() || pin.isUpdating() || pin.isConnected() || pin.isDynamic());
    EXPECT_FALSE(pin.isPassThrough() || pin.isPolymorphic() || pin.isSpecialized());
    EXPECT_FALSE(pin.hasSaveFileFlag() || pin.hasType(0) || pin.isEditable());
    EXPECT_FALSE(pin.hasInternalConnections() || pin.allowsNewOrRemovalOfInternalConnections());
    EXPECT_FALSE(pin.allowsConnectionFrom(build.pin("R.real")));
    EXPECT_FALSE(pin.addInternalConnection(build.pin("R.real")));
    EXPECT_EQ(pin.forcedInternalConnection(), nullptr);
    EXPECT_EQ(pin.getType(), 0);
    EXPECT_EQ(pin.getAttributeClassName(), "");
    EXPECT_EQ(pin.getFirstSpecialization(), "");
    EXPECT_EQ(pin.getStringValue(), "");
    EXPECT_EQ(pin.getValueAsString(true), "");
    EXPECT_EQ(pin.getDescription(), "");
    EXPECT_EQ(pin.getFloatValue(), 0.0f);
    EXPECT_EQ(pin.getCompatibleSluiceNodeClasses(), 0u);
}

TEST_F(PinTest, GoesOnWithoutAnAttributeThatWasTornDown) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    Pin* pin = build.pin("R.real");
    build.at("R.real")->deleteIt();
    EXPECT_EQ(pin->getWeftAttribute(), nullptr);
    EXPECT_FALSE(pin->isDirty());
    EXPECT_FALSE(pin->isConnected());
    EXPECT_EQ(pin->getType(), 0);
    EXPECT_FALSE(build.pin("A.in0")->isConnected());
    pin->update();
    build.scene.removeNodeFromGraph(build.node("R"));
    EXPECT_TRUE(build.scene.connections().empty());
}

TEST_F(PinTest, SurvivesTheTeardownOfItsLogicNode) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    build.logic("R")->deleteIt();
    build.pin("R.real")->update();
    build.pin("R.in")->setFloatValue(1.0f);
    EXPECT_FALSE(build.pin("A.in1")->allowsConnectionFrom(build.pin("R.real")));
    build.scene.removeNodeFromGraph(build.node("R"));
    EXPECT_FALSE(build.pin("A.in0")->isConnected());
}

// --- editing -----------------------------------------------------------------------------------

TEST_F(PinTest, SimpleTypesAreEditable) {
    EXPECT_TRUE(typed({"Real"})->isEditable());
    EXPECT_TRUE(typed({"Object"})->isEditable());
    EXPECT_FALSE(typed({"Mesh"})->isEditable());
    EXPECT_FALSE(typed({"Matrix4"})->isEditable());
    EXPECT_TRUE(input<StringAttribute>()->isEditable());
}

TEST_F(PinTest, OpenTypesAreEditableOnceTheyAreChosen) {
    EXPECT_FALSE(typed({"Integer", "Real"})->isEditable());
    Pin* chosen = typed({"Integer", "Real"});
    chosen->setSpecializationOverride("Real");
    EXPECT_TRUE(chosen->isEditable());
    EXPECT_TRUE(typed({"Object", "Daemon"})->isEditable());
    EXPECT_TRUE(input<EnumAttribute>()->isEditable());
    EXPECT_TRUE(input<FilePathAttribute>()->isEditable());
    EXPECT_TRUE(input<FolderAttribute>()->isEditable());
}

TEST_F(PinTest, SourceClassAndFlagForbidEditing) {
    build.add("Real", "R").add("Real", "S");
    EXPECT_TRUE(build.pin("R.in")->isEditable());
    build.connect("S.real", "R.in");
    EXPECT_FALSE(build.pin("R.in")->isEditable());
    EXPECT_TRUE(build.pin("S.real")->isEditable()); // an output is not asked for its connections
    EXPECT_FALSE(input<PassThroughAttribute>()->isEditable());
    EXPECT_FALSE(input<AnyAttribute>()->isEditable());
    Pin* evaluate = input<weft::EvaluateAttribute>();
    evaluate->setAllowedSpecializations({"Real"});
    EXPECT_FALSE(evaluate->isEditable());
    Pin* locked = typed({"Real"});
    locked->getWeftAttribute()->setEditable(false);
    EXPECT_FALSE(locked->isEditable());
}

TEST_F(PinTest, PinsOfCompoundsAndInterfacesAreNotEditable) {
    for (const bool asCompound : {true, false}) {
        Pin* pin = typed({"Real"});
        GraphNodeBase* node = pin->getParentGraphNodePtr();
        asCompound ? node->setCompound(true) : node->setInterface(true);
        EXPECT_FALSE(pin->isEditable());
        asCompound ? node->setCompound(false) : node->setInterface(false);
        EXPECT_TRUE(pin->isEditable());
    }
}

// --- connections -------------------------------------------------------------------------------

TEST_F(PinTest, RefusesWhatTheGenericPinRefuses) {
    build.add("Add", "A").add("Add", "B");
    EXPECT_TRUE(build.pin("B.in0")->allowsConnectionFrom(build.pin("A.result")));
    EXPECT_TRUE(build.pin("A.result")->allowsConnectionTo(build.pin("B.in0")));
    EXPECT_FALSE(build.pin("B.in0")->allowsConnectionFrom(build.pin("A.in0")));
    EXPECT_FALSE(build.pin("B.result")->allowsConnectionFrom(build.pin("A.result")));
    EXPECT_FALSE(build.pin("A.in0")->allowsConnectionFrom(build.pin("A.result")));
    EXPECT_FALSE(build.pin("A.in0")->allowsConnectionFrom(nullptr));
}

TEST_F(PinTest, RefusesASecondConnectionEvenFromTheSameSource) {
    build.add("Real", "R").add("Real", "S").add("Add", "A").connect("R.real", "A.in0");
    EXPECT_FALSE(build.pin("A.in0")->allowsConnectionFrom(build.pin("R.real")));
    EXPECT_FALSE(build.pin("A.in0")->allowsConnectionFrom(build.pin("S.real")));
    EXPECT_EQ(build.link("S.real", "A.in0"), nullptr);
}

TEST_F(PinTest, RefusesAConnectedInputThatOnlyTheLogicLayerKnows) {
    build.add("Real", "R").add("Real", "S").add("Add", "A");
    build.scene.networkManager().connect(build.at("R.real"), build.at("A.in0"), nullptr);
    EXPECT_FALSE(build.pin("A.in0")->isFull());
    EXPECT_FALSE(build.pin("A.in0")->allowsConnectionFrom(build.pin("S.real")));
}

TEST_F(PinTest, RefusesWhatTheNetworkRefuses) {
    build.add("Real", "R").add("String", "S").add("Add", "A").add("Add", "B");
    build.connect("A.result", "B.in0");
    EXPECT_FALSE(build.pin("A.in0")->allowsConnectionFrom(build.pin("B.result"))); // cycle
    EXPECT_FALSE(build.pin("S.in")->allowsConnectionFrom(build.pin("R.real")));    // types
    EXPECT_TRUE(build.messages("R").empty());
    EXPECT_TRUE(build.messages("B").empty());
}

TEST_F(PinTest, RefusesAPinOfAnotherScene) {
    SceneBuilder other;
    other.add("Real", "R");
    build.add("Add", "A");
    EXPECT_FALSE(build.pin("A.in0")->allowsConnectionFrom(other.pin("R.real")));
}

TEST_F(PinTest, UpdateComputesCleanOrNot) {
    auto* probe =
        build.probe("Probe", "P", [](LogicProbe& logic) { logic.output<NumericAttribute>("out"); });
    build.at("P.out")->setClean(true);
    build.pin("P.out")->update();
    EXPECT_EQ(probe->logic().updates, 1);
    build.at("P.out")->setClean(false);
    build.pin("P.out")->update();
    EXPECT_EQ(probe->logic().updates, 2);
    EXPECT_TRUE(build.pin("P.out")->isDirty());
    probe->logic().setUpdateEnabledPublic(false);
    build.pin("P.out")->update();
    EXPECT_EQ(probe->logic().updates, 2);
}

TEST_F(PinTest, UpstreamPinsBeginWithThePinAndAreAppended) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    ArrayOfPtr<Pin> pins;
    pins.append(build.pin("A.in1"));
    build.pin("A.result")->getUpstreamPins(pins);
    EXPECT_EQ(SceneBuilder::fullNamesOf(pins),
              (Names{"A.in1", "A.result", "A.in0", "R.real", "R.in", "A.in1"}));
}

TEST_F(PinTest, UpstreamAttributesWithoutPinAreLeftOut) {
    auto* probe =
        build.probe("Probe", "P", [](LogicProbe& logic) { logic.output<NumericAttribute>("out"); });
    auto* hidden = probe->logic().input<NumericAttribute>("hidden"); // after the pins were made
    probe->logic().setAttributeAffectPublic(hidden, build.at("P.out"));
    ArrayOfPtr<Pin> pins;
    build.pin("P.out")->getUpstreamPins(pins);
    EXPECT_EQ(SceneBuilder::fullNamesOf(pins), (Names{"P.out"}));
}

TEST_F(PinTest, DirtyingUpstreamSparesThePinItself) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    const auto reset = [&] {
        for (const char* path : {"R.in", "R.real", "A.in0", "A.in1", "A.result"}) {
            build.at(path)->setClean(true);
            build.at(path)->setToBeEvaluated(false);
        }
    };
    reset();
    build.pin("A.in0")->setDirtyUpstream(false);
    EXPECT_FALSE(build.pin("A.in0")->isDirty());
    EXPECT_TRUE(build.pin("R.real")->isDirty());
    EXPECT_TRUE(build.pin("R.in")->isDirty());
    EXPECT_FALSE(build.pin("A.result")->isDirty());
    EXPECT_FALSE(build.at("R.real")->toBeEvaluated());
    reset();
    build.pin("A.in0")->setDirtyUpstream(true);
    EXPECT_FALSE(build.pin("A.in0")->isDirty());
    EXPECT_FALSE(build.at("A.in0")->toBeEvaluated());
    EXPECT_TRUE(build.at("R.real")->toBeEvaluated());
    EXPECT_TRUE(build.at("R.in")->toBeEvaluated());
}

// --- compound pins -----------------------------------------------------------------------------

TEST_F(PinTest, LinkingTwoPinsTakesThemFromTheirFormerCounterparts) {
    build.add("Real", "R").add("Real", "S");
    Pin* inner = build.pin("R.real");
    Pin* first = build.pin("S.in");
    Pin* second = build.pin("S.real");
    inner->setParentGraphNodePinPtr(first);
    EXPECT_EQ(inner->getParentGraphNodePinPtr(), first);
    EXPECT_EQ(first->getChildGraphNodePinPtr(), inner);
    inner->setParentGraphNodePinPtr(second);
    EXPECT_EQ(first->getChildGraphNodePinPtr(), nullptr);
    EXPECT_EQ(second->getChildGraphNodePinPtr(), inner);
    Pin* other = build.pin("R.in");
    other->setParentGraphNodePinPtr(second);
    EXPECT_EQ(inner->getParentGraphNodePinPtr(), nullptr);
    EXPECT_EQ(second->getChildGraphNodePinPtr(), other);
    other->setParentGraphNodePinPtr(nullptr);
    EXPECT_EQ(second->getChildGraphNodePinPtr(), nullptr);
}

TEST_F(PinTest, WhetherANodeIsAPassThroughIsNotThePinsBusiness) {
    Pin* pin = input<PassThroughAttribute>();
    EXPECT_TRUE(pin->isPassThrough());
    EXPECT_FALSE(pin->isPassThroughPin());
}

// --- looks -------------------------------------------------------------------------------------

TEST_F(PinTest, ColourIsGreyedByTheCountOfElements) {
    Pin* pin = input<NumericAttribute>();
    pin->setAllowedSpecializations({"Real"});
    const Color4<float> full(0.4f, 0.9f, 1.0f, 1.0f);
    const float grey = (0.4f + 0.9f + 1.0f) / 3.0f;
    auto& number = static_cast<NumericAttribute*>(pin->getWeftAttribute())->ownNumeric();
    const auto expectMix = [&](uint32_t count, float factor) {
        number.resize(count);
        const Color4<float> color = pin->getColor();
        EXPECT_NEAR(color.r, full.r + (grey - full.r) * factor, 1e-6f) << count;
        EXPECT_NEAR(color.g, full.g + (grey - full.g) * factor, 1e-6f) << count;
        EXPECT_NEAR(color.b, full.b + (grey - full.b) * factor, 1e-6f) << count;
        EXPECT_EQ(color.a, 1.0f);
        EXPECT_EQ(pin->getBorderColor(), color);
    };
    expectMix(0, 0.8f);
    expectMix(1, 0.5f);
    expectMix(2, 0.0f);
}

TEST_F(PinTest, ColourNameIsTheFirstCurrentElseTheFirstAllowed) {
    Pin* pin = typed({"Mesh", "Real"}); // a plain attribute has no value to be greyed by
    EXPECT_EQ(pin->getColor(), Pin::getColorForPinType(17));
    pin->getWeftAttribute()->applySpecializations(weft::SpecializationList{"Real"});
    EXPECT_EQ(pin->getColor(), Pin::getColorForPinType(3));
    pin->getWeftAttribute()->applySpecializations(weft::SpecializationList());
    EXPECT_EQ(pin->getColor(), Pin::getColorForPinType(17));
    EXPECT_EQ(typed({})->getColor(), Pin::getColorForPinType(0));
}

TEST_F(PinTest, ConnectedInputIsColouredByWhatItSees) {
    build.add("Real", "R").add("Real", "S").connect("R.real", "S.in");
    static_cast<NumericAttribute*>(build.at("R.real"))->ownNumeric().resize(5);
    EXPECT_EQ(build.pin("S.in")->getColor(), Pin::getColorForPinType(3));
    EXPECT_NE(build.pin("S.real")->getColor(), Pin::getColorForPinType(3));
}

// --- internal connections ----------------------------------------------------------------------

TEST_F(PinTest, InternalConnectionsJoinAnInputAndAnOutputOfANode) {
    build.add("Add", "A");
    Pin* in0 = build.pin("A.in0");
    Pin* in1 = build.pin("A.in1");
    Pin* result = build.pin("A.result");
    ArrayOfPtr<GraphNodePin> ends;
    in0->allowedInternalConnections(ends);
    EXPECT_EQ(SceneBuilder::namesOf(ends), (Names{"result"}));
    EXPECT_TRUE(in0->allowsInternalConnections());
    EXPECT_FALSE(in0->hasInternalConnections());
    EXPECT_TRUE(in0->allowsNewOrRemovalOfInternalConnections());

    EXPECT_TRUE(in0->addInternalConnection(result));
    EXPECT_TRUE(in0->hasInternalConnections());
    EXPECT_TRUE(in0->allowsNewOrRemovalOfInternalConnections());
    EXPECT_FALSE(in1->allowsNewOrRemovalOfInternalConnections()); // its only target is taken
    EXPECT_TRUE(in0->isPassThrough());
    EXPECT_EQ(in0->forcedInternalConnection(), result);
    EXPECT_EQ(result->forcedInternalConnection(), in0);
    ends.clear();
    in0->internalConnections(ends);
    in0->forcedInternalConnections(ends);
    result->forcedInternalConnections(ends);
    EXPECT_EQ(SceneBuilder::namesOf(ends), (Names{"result", "result", "in0"}));

    EXPECT_TRUE(in0->removeInternalConnection(result));
    EXPECT_FALSE(in0->removeInternalConnection(result));
    EXPECT_FALSE(in0->hasInternalConnections());
    EXPECT_EQ(in0->forcedInternalConnection(), nullptr);
    EXPECT_FALSE(in0->addInternalConnection(nullptr));
}

TEST_F(PinTest, PinsOfOtherNodesAreNoInternalConnections) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    ArrayOfPtr<GraphNodePin> ends;
    build.pin("A.in0")->forcedInternalConnections(ends);
    build.pin("R.real")->forcedInternalConnections(ends);
    EXPECT_TRUE(ends.empty());
    EXPECT_FALSE(build.pin("R.real")->allowsInternalConnections());
    EXPECT_FALSE(build.pin("R.real")->allowsNewOrRemovalOfInternalConnections());
}

TEST_F(PinTest, KeepsTheNamesThatWereReadForLater) {
    build.add("Add", "A");
    Pin* pin = build.pin("A.in0");
    EXPECT_TRUE(pin->getInternalConnectionsFromImport().empty());
    pin->setInternalConnectionsFromImport({"a"});
    pin->refInternalConnectionsFromImport().append("b");
    EXPECT_EQ(pin->getInternalConnectionsFromImport(), (Array<TM_String>{"a", "b"}));
}

TEST_F(PinTest, CopiesShareTheAttribute) {
    build.add("Real", "R");
    const auto copy = std::make_unique<Pin>(*build.pin("R.in"));
    Pin assigned(nullptr, 0u, GraphNodePin::outputFlag);
    assigned = *copy;
    EXPECT_EQ(copy->getWeftAttribute(), build.at("R.in"));
    EXPECT_EQ(assigned.getWeftAttribute(), build.at("R.in"));
    // A copy may be asked when its node has gone: the attribute is left alone then.
    build.scene.clear();
    ASSERT_NE(copy->getWeftAttribute(), nullptr);
    EXPECT_EQ(copy->getWeftAttribute()->parent(), nullptr);
    copy->setFloatValue(2.0f);
    copy->update();
    EXPECT_EQ(assigned.getFloatValue(), 2.0f);
    EXPECT_FALSE(assigned.isConnected());
}
