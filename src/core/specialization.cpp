// SPDX-License-Identifier: Apache-2.0
// The table of type names and the shared records of specialization lists.
#include "core/specialization.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <vector>

namespace weft {

namespace {

constexpr std::array<const char*, typeLast + 1> typeNames = {
    "",
    "Integer",
    "Integer64",
    "Real",
    "Double",
    "Bit",
    "Edit",
    "Static",
    "Browse",
    "Color4",
    "List",
    "Button",
    "CButton",
    "Vector3",
    "Matrix4",
    "Quaternion",
    "ObjectSelector",
    "Mesh",
    "DistanceField",
    "FilePath",
    "Folder",
    "String",
    "Image",
    "Polymorphic",
    "Directory",
    "Particles",
    "GraphParticle",
    "Box",
    "Daemon",
    "Object",
    "StandardEmitter",
    "ParticleLegacyMesh",
    "ParticleMesh",
    "BillowMesh",
    "Camera",
    "BillowDomain",
    "BillowEmitter",
    "BillowMist",
    "MultiBody",
    "MultiJoint",
    "MultiServo",
    "MultiServoPosLinear",
    "MultiServoPosAngular",
    "MultiServoVelLinear",
    "MultiServoVelAngular",
    "ISLE",
    "BillowSplash",
    "BillowFoam",
    "BillowWet",
    "BillowWaterLine",
    "BillowSplashAndFoam",
    "BillowWetAndFoam",
    "SluiceGroup",
    "SluiceNode",
    "ObjectMesh",
    "SwellMesh",
    "Vertices",
    "Faces",
    "GridFluidDomainParticles",
    "GridFluidDomainParticle",
    "StandardParticles",
    "StandardParticle",
    "Condition",
    "Vector3Field",
    "ParameterType",
    "Curve",
    "Key",
    "MeshVoxelization",
    "Evaluate",
    "RealField",
};

struct TypeTable {
    std::array<TM_String, typeLast + 1> names;
    std::unordered_map<std::string_view, int> numbers;

    TypeTable() {
        for (int number = 0; number <= typeLast; ++number) {
            names[number] = typeNames[number];
            numbers.emplace(names[number], number);
        }
        // References to parts of objects are known names without a number.
        for (const char* name : {"MeshRef", "VertexRef", "FaceRef", "DistanceFieldRef"}) {
            numbers.emplace(name, typeNone);
        }
    }
};

const TypeTable& typeTable() {
    static const TypeTable table;
    return table;
}

// Names with an ordinal below this take part in set operations as bits.
constexpr std::size_t maskedNames = 256;

} // namespace

const TM_String& typeName(int number) {
    const TypeTable& table = typeTable();
    return table.names[number > 0 && number <= typeLast ? number : 0];
}

int typeNumber(std::string_view name) {
    const TypeTable& table = typeTable();
    const auto found = table.numbers.find(name);
    return found == table.numbers.end() ? typeNone : found->second;
}

struct SpecializationList::Record {
    Array<TM_String> names;
    std::vector<uint32_t> ordinals;
    std::bitset<maskedNames> mask;
    bool isMaskComplete = true;
};

namespace {

using Record = SpecializationList::Record;

class Registry {
public:
    const Record* empty() const { return empty_; }

    const Record* find(const std::vector<uint32_t>& ordinals) {
        {
            std::shared_lock lock(mutex_);
            const auto found = records_.find(ordinals);
            if (found != records_.end()) return found->second.get();
        }
        std::unique_lock lock(mutex_);
        return insert(ordinals);
    }

    uint32_t ordinalOf(const TM_String& name) {
        {
            std::shared_lock lock(mutex_);
            const auto found = ordinals_.find(name);
            if (found != ordinals_.end()) return found->second;
        }
        std::unique_lock lock(mutex_);
        const auto [entry, isNew] = ordinals_.emplace(name, names_.size());
        if (isNew) names_.push_back(&entry->first);
        return entry->second;
    }

    static Registry& instance() {
        // Never destroyed: attributes of other static objects may outlive this file's statics.
        static Registry* const registry = new Registry;
        return *registry;
    }

private:
    struct Hash {
        std::size_t operator()(const std::vector<uint32_t>& ordinals) const {
            std::size_t hash = ordinals.size();
            for (const uint32_t ordinal : ordinals) hash = hash * 1000003u ^ ordinal;
            return hash;
        }
    };

    Registry() : empty_(insert({})) {}

    const Record* insert(const std::vector<uint32_t>& ordinals) {
        std::unique_ptr<Record>& slot = records_[ordinals];
        if (slot) return slot.get();
        auto record = std::make_unique<Record>();
        record->ordinals = ordinals;
        for (const uint32_t ordinal : ordinals) {
            record->names.append(*names_[ordinal]);
            if (ordinal < maskedNames) {
                record->mask.set(ordinal);
            } else {
                record->isMaskComplete = false;
            }
        }
        slot = std::move(record);
        return slot.get();
    }

    std::shared_mutex mutex_;
    std::map<TM_String, uint32_t> ordinals_;
    std::vector<const TM_String*> names_;
    std::unordered_map<std::vector<uint32_t>, std::unique_ptr<Record>, Hash> records_;
    const Record* empty_;
};

template <typename Names>
const Record* recordOf(const Names& names) {
    std::vector<uint32_t> ordinals;
    for (const auto& name : names) ordinals.push_back(Registry::instance().ordinalOf(name));
    return Registry::instance().find(ordinals);
}

bool hasOrdinal(const Record& record, uint32_t ordinal) {
    if (ordinal < maskedNames) return record.mask.test(ordinal);
    return std::find(record.ordinals.begin(), record.ordinals.end(), ordinal) !=
           record.ordinals.end();
}

} // namespace

SpecializationList::SpecializationList() : record_(Registry::instance().empty()) {}
SpecializationList::SpecializationList(std::initializer_list<const char*> names)
    : record_(recordOf(names)) {}
SpecializationList::SpecializationList(const Array<TM_String>& names) : record_(recordOf(names)) {}

SpecializationList SpecializationList::single(const TM_String& name) {
    return SpecializationList(Array<TM_String>{name});
}

const Array<TM_String>& SpecializationList::names() const { return record_->names; }

bool SpecializationList::contains(std::string_view name) const {
    for (const TM_String& own : record_->names) {
        if (own == name) return true;
    }
    return false;
}

bool SpecializationList::isSameSet(SpecializationList other) const {
    return record_ == other.record_ || (isSubsetOf(other) && other.isSubsetOf(*this));
}

bool SpecializationList::hasNameInCommonWith(SpecializationList other) const {
    if ((record_->mask & other.record_->mask).any()) return true;
    if (record_->isMaskComplete || other.record_->isMaskComplete) return false;
    for (const uint32_t ordinal : record_->ordinals) {
        if (hasOrdinal(*other.record_, ordinal)) return true;
    }
    return false;
}

bool SpecializationList::isSubsetOf(SpecializationList other) const {
    if (record_ == other.record_) return true;
    if ((record_->mask & ~other.record_->mask).any()) return false;
    if (record_->isMaskComplete) return true;
    for (const uint32_t ordinal : record_->ordinals) {
        if (!hasOrdinal(*other.record_, ordinal)) return false;
    }
    return true;
}

SpecializationList SpecializationList::intersectedWith(SpecializationList other) const {
    if (isSubsetOf(other)) return *this;
    std::vector<uint32_t> common;
    for (const uint32_t ordinal : record_->ordinals) {
        if (hasOrdinal(*other.record_, ordinal)) common.push_back(ordinal);
    }
    return SpecializationList(Registry::instance().find(common));
}

} // namespace weft
