// SPDX-License-Identifier: Apache-2.0
// The names of all global variables, by type.
#include <array>

#include "core/string_value.h"
#include "graph/define_node.h"
#include "nodes/values/globals/common_storage.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::CommonStorage;
using weft::NetworkManager;
using weft::StringAttribute;
using weft::StringValue;

namespace {

struct Type {
    const char* output;
    const char* element;
    const char* help;
};

constexpr Type types[] = {
    {"box names", "Box", "The names of the boxes."},
    {"distance field names", "DistanceField", "The names of the distance fields."},
    {"image names", "Image", "The names of the images."},
    {"mesh names", "Mesh", "The names of the meshes."},
    {"mesh voxelization names", "MeshVoxelization", "The names of the mesh voxelizations."},
    {"num names", "Num", "The names of the numbers."},
    {"scene node names", "SluiceNode", "The names of the scene nodes."},
    {"string names", "String", "The names of the strings."},
    {"vector3 field names", "Vector3Field", "The names of the vector fields."},
    {"graph particles names", "Particles", "The names of the particles."},
    {"real field names", "RealField", "The names of the real fields."},
    {"key names", "Key", "The names of the curve keys."},
    {"curve names", "Curve", "The names of the curves."},
};

} // namespace

class GetAllGlobalVariableNames : public weft::Node {
public:
    GetAllGlobalVariableNames(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"GetAllGlobalVariableNames">();
        describe("This node returns all names of actual defined global variables. The result is "
                 "stored for every allowed type separately.");
        for (std::size_t i = 0; i < outputs_.size(); ++i) {
            outputs_[i] = addOutput<StringAttribute>(types[i].output, types[i].help);
        }
    }

    void update(Attribute* attribute) override {
        for (std::size_t i = 0; i < outputs_.size(); ++i) {
            if (outputs_[i] != attribute) continue;
            StringValue* target = outputs_[i]->stringsTarget();
            if (!target) return;
            target->setSize(0);
            for (TM_String& name : CommonStorage::instance().names(types[i].element)) {
                target->append(std::move(name));
            }
            outputs_[i]->valueChanged();
            setAttributeIsClean(outputs_[i], true);
        }
    }

private:
    std::array<StringAttribute*, std::size(types)> outputs_;
};

SLUICE_DEFINE_NODE(GetAllGlobalVariableNames)

} // namespace tidemark::sluice::graph
