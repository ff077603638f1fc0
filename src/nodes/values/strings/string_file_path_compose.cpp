// SPDX-License-Identifier: Apache-2.0
// Names of numbered files.
#include "core/enum_value.h"
#include "core/numeric.h"
#include "graph/define_node.h"
#include "nodes/values/strings/string_tools.h"
#include "platform/file_name_stitcher.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::EnumAttribute;
using weft::NetworkManager;
using weft::NumericAttribute;
using weft::StringAttribute;
using weft::StringValue;

class StringFilePathCompose : public weft::Node {
public:
    StringFilePathCompose(NetworkManager* manager, const TM_String& name, Node* parent)
        : Node(manager, name, parent) {
        appendClass<"StringFilePathCompose">();
        describe("This node composes a full file name path from its components using the "
                 "convention: folder/name_frame.extension\nIf padding is set to 0 the output "
                 "'filePath' might be undefined.");
        folder_ = addInput<StringAttribute>("folder", "The folder of the file");
        name_ = addInput<StringAttribute>("name", "The file root name");
        extension_ = addInput<StringAttribute>("extension", "The file extension (without the dot)");
        extensionOrder_ = addInput<EnumAttribute>(
            "extension order", "The separator between filename and frame number.");
        padding_ = addInput<NumericAttribute>(
            "padding", "The number of digits used to represent the frame number.");
        frame_ = addInput<NumericAttribute>("frame", "The frame number");
        filePath_ = addOutput<StringAttribute>("file path", "The full path of the file.");
        extensionOrder_->setOptions({"name_#.ext", "name.#.ext", "name#.ext"});
        setAttributeAllowedSpecialization(padding_, "Integer");
        setAttributeAllowedSpecialization(frame_, "Integer");
        padding_->ownNumeric().setValue(usualPadding);
        setAttributeAffectedByAllInputs(filePath_);
    }

    void update(Attribute*) override {
        for (Attribute* input : refInputAttributes()) input->pull();
        StringValue* target = filePath_->stringsTarget();
        if (!target) return;
        const int32_t stored = padding_->numeric().value<int32_t>();
        const unsigned padding = stored > 0 ? static_cast<unsigned>(stored) : 0;
        char format[FileNameStitcher::formatCapacity];
        FileNameStitcher& stitcher = FileNameStitcher::instance();
        stitcher.setFormatStr(format, FrameExtensionOrder::nameUnderscoreFrame, padding);
        target->setSize(largerSize(name_->strings(), frame_->numeric()));
        WorkMeter meter(*networkManager());
        for (uint32_t i = 0; i < target->size(); ++i) {
            const auto order = static_cast<FrameExtensionOrder>(extensionOrder_->enumValue(i));
            stitcher.setFormatStr(format, order, padding);
            target->setValueAt(i, pathAt(i, format));
            meter.add(target->valueAt(i).size());
        }
        filePath_->valueChanged();
    }

private:
    static constexpr int32_t usualPadding = 4;

    TM_String pathAt(uint32_t i, const char* format) const {
        const TM_String stem = folder_->strings().valueAt(i) + "/" + name_->strings().valueAt(i);
        const int frame = frame_->numeric().valueAt<int32_t>(i);
        return text::format(format, stem.c_str(), frame, extension_->strings().valueAt(i).c_str());
    }

    StringAttribute* folder_;
    StringAttribute* name_;
    StringAttribute* extension_;
    EnumAttribute* extensionOrder_;
    NumericAttribute* padding_;
    NumericAttribute* frame_;
    StringAttribute* filePath_;
};

SLUICE_DEFINE_NODE(StringFilePathCompose)

} // namespace tidemark::sluice::graph
