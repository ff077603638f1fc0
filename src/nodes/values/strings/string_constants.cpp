// SPDX-License-Identifier: Apache-2.0
// Constants of text, file paths and folders.
#include "graph/define_node.h"
#include "nodes/values/strings/string_tools.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::FilePathAttribute;
using weft::FolderAttribute;
using weft::NetworkManager;
using weft::StringAttribute;

namespace {

// "in" and one output of the same class; the output gives what is set at the input.
template <typename Port>
class StringConstantBase : public weft::Node {
public:
    void update(Attribute*) override {
        in_->pull();
        copyUnlessPassedThrough(*in_, *out_);
        out_->valueChanged();
    }

protected:
    StringConstantBase(NetworkManager* manager, const TM_String& name, Node* parent,
                       const char* outputName)
        : Node(manager, name, parent) {
        in_ = addInput<Port>("in", "The constant's value.");
        out_ = addOutput<Port>(outputName, "The value set at the input.");
        setAttributeAffect(in_, out_);
    }

private:
    Port* in_;
    Port* out_;
};

} // namespace

class String : public StringConstantBase<StringAttribute> {
public:
    String(NetworkManager* manager, const TM_String& name, Node* parent)
        : StringConstantBase(manager, name, parent, "out") {
        appendClass<"String">();
        describe("A string constant. Suitable for direct user input.");
    }
};

class StringFilePath : public StringConstantBase<FilePathAttribute> {
public:
    StringFilePath(NetworkManager* manager, const TM_String& name, Node* parent)
        : StringConstantBase(manager, name, parent, "file path") {
        appendClass<"StringFilePath">();
        describe("A file path string constant. Suitable for direct user input by opening a file "
                 "dialog when clicking on the 'in' parameter.");
    }
};

class StringFolder : public StringConstantBase<FolderAttribute> {
public:
    StringFolder(NetworkManager* manager, const TM_String& name, Node* parent)
        : StringConstantBase(manager, name, parent, "folder") {
        appendClass<"StringFolder">();
        describe("A folder string constant. Suitable for direct user input by opening a file "
                 "dialog when clicking on the 'in' parameter.");
    }
};

SLUICE_DEFINE_NODE(String)
SLUICE_DEFINE_NODE(StringFilePath)
SLUICE_DEFINE_NODE(StringFolder)

} // namespace tidemark::sluice::graph
