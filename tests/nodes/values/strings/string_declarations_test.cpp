// SPDX-License-Identifier: Apache-2.0
// The string nodes as users see them: pins, kinds, types, help and descriptions.
#include <gtest/gtest.h>

#include <vector>

#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;

const TM_String string = "StringAttribute:\"String\"";
const TM_String filePath = "FilePathAttribute:\"FilePath\", \"String\"";
const TM_String folder = "FolderAttribute:\"Folder\", \"String\"";
const TM_String integer = "NumericAttribute:\"Integer\"";
const TM_String real = "NumericAttribute:\"Real\"";
const TM_String bit = "BitArrayAttribute:\"Bit\"";
const TM_String list = "EnumAttribute:\"List\", \"Integer\", \"String\"";

using Pins = std::vector<std::pair<TM_String, TM_String>>;

struct Row {
    TM_String type;
    Pins inputs;
    Pins outputs;
    TM_String description;
};

const std::vector<Row> rows = {
    {"String",
     {{"in", string}},
     {{"out", string}},
     "A string constant. Suitable for direct user input."},
    {"StringFilePath",
     {{"in", filePath}},
     {{"file path", filePath}},
     "A file path string constant. Suitable for direct user input by opening a file dialog when "
     "clicking on the 'in' parameter."},
    {"StringFolder",
     {{"in", folder}},
     {{"folder", folder}},
     "A folder string constant. Suitable for direct user input by opening a file dialog when "
     "clicking on the 'in' parameter."},
    {"StringInfo",
     {{"string", string}},
     {{"length", integer},
      {"is empty", bit},
      {"all uppercase", bit},
      {"all lowercase", bit},
      {"uppercase", string},
      {"lowercase", string},
      {"through", "PassThroughAttribute:\"String\""}},
     "Returns several information about the input string."},
    {"StringUpperLowerCase",
     {{"string", string}},
     {{"uppercase", string}, {"lowercase", string}},
     "Returns an uppercase and lowercase version of the input 'string'."},
    {"StringCompare",
     {{"string0", string}, {"string1", string}, {"ignore case", bit}},
     {{"is equal", bit}, {"is inside", bit}, {"position", integer}},
     "This node performs several comparisons between the input strings."},
    {"StringSplit",
     {{"in", string}, {"separator", string}},
     {{"array", string}},
     "This node takes the input string and splits it into the output 'array' of strings. The "
     "separator determines where to split the strings exactly.\nIt must be a single "
     "character.\nFor example:\n'in' : 'Hi-Sluice-user''separator' : '-'\n'array' : "
     "['Hi','Sluice','user']\n"},
    {"StringSubString",
     {{"in", string}, {"first", integer}, {"size", integer}},
     {{"out", string}},
     "This node returns a substring of the input string. Thus, it contains the fragment of the "
     "input string with the specified size starting from position 'first'."},
    {"StringConcatenate",
     {{"array", string}, {"separator", string}},
     {{"out", string}},
     "This node takes the input 'array' of strings and concatenates all of them placing the "
     "'separator' string between each of them.\nFor example:\n'array' : "
     "['Hi','Sluice','user']\n'separator' : '-SL-'\n'out' : 'Hi-SL-Sluice-SL-user'"},
    {"StringConcat2",
     {{"left", string}, {"right", string}, {"separator", string}},
     {{"out", string}},
     "This node takes the input 'left' and 'right' strings concatenates them in a single one. You "
     "may specify a 'separator' string between both of them.\nFor example:\n'left' : 'Hi'\n'right' "
     ": 'Sluice'\n'separator' : '-SL-'\n'out' : 'Hi-SL-Sluice'"},
    {"StringFilePathCompose",
     {{"folder", string},
      {"name", string},
      {"extension", string},
      {"extension order", list},
      {"padding", integer},
      {"frame", integer}},
     {{"file path", string}},
     "This node composes a full file name path from its components using the convention: "
     "folder/name_frame.extension\nIf padding is set to 0 the output 'filePath' might be "
     "undefined."},
    {"IntegerToString",
     {{"integer", integer}, {"padding", integer}},
     {{"string", string}},
     "This node composes a string from an integer, whereas you may define the padding."},
    {"RealToString",
     {{"real", real}, {"decimal places", integer}},
     {{"string", string}},
     "This node composes a string from a real, whereas you may define the number of decimal "
     "places."},
    {"StringReplace",
     {{"string", string}, {"before", string}, {"after", string}},
     {{"result", string}},
     "Returns a version of the input 'string' with every occurrence of the string 'before' "
     "replaced with 'after'.\nThe operation is case sensitive."},
};

template <typename List>
void expectPins(const Pins& expected, const List& pins) {
    ASSERT_EQ(expected.size(), pins.size());
    for (uint32_t i = 0; i < pins.size(); ++i) {
        EXPECT_EQ(expected[i].first, pins[i]->name());
        EXPECT_EQ(expected[i].second,
                  pins[i]->className() + ":" + pins[i]->allowedSpecializationsText());
        EXPECT_NE("", pins[i]->getDescription()) << pins[i]->name();
    }
}

TEST(StringNodes, DeclareTheirPinsAndTexts) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.type);
        LogicNet net;
        Node& node = net.add(row.type, "n");
        EXPECT_EQ(row.type, node.className());
        EXPECT_EQ(row.description, node.getDescription());
        expectPins(row.inputs, node.refInputAttributes());
        expectPins(row.outputs, node.refOutputAttributes());
    }
}

TEST(StringNodes, AllInputsAffectAllOutputs) {
    for (const Row& row : rows) {
        LogicNet net;
        Node& node = net.add(row.type, "n");
        for (const Attribute* in : node.refInputAttributes()) {
            for (Attribute* out : node.refOutputAttributes()) {
                EXPECT_TRUE(in->affects().contains(out))
                    << row.type << " " << in->name() << " " << out->name();
            }
        }
    }
}

TEST(StringNodes, HelpTexts) {
    const char* helps[][3] = {
        {"StringSubString", "first",
         "The position of the character that will be the first of the output string"},
        {"StringSubString", "size",
         "The total number of characters to copy from the input string. If value is negative, all "
         "the characters from 'first' are copied to the output string."},
        {"StringCompare", "position",
         "The position of 'string0' inside 'string1'. If 'string0' is not contained in 'string1' "
         "the returned value is -1"},
        {"IntegerToString", "padding",
         "The number of digits used to represent the integer value (1..9)."},
        {"StringFilePathCompose", "padding",
         "The number of digits used to represent the frame number."},
        {"StringFilePathCompose", "extension order",
         "The separator between filename and frame number."},
        {"StringFilePathCompose", "name", "The file root name"},
        {"StringFilePathCompose", "extension", "The file extension (without the dot)"},
        {"StringFilePathCompose", "frame", "The frame number"},
        {"RealToString", "decimal places",
         "The number of digits used to represent the decimal places."}};
    for (const auto& [type, pin, help] : helps) {
        LogicNet net;
        net.add(type, "n");
        EXPECT_EQ(help, net.pin(TM_String("n.") + pin).getDescription()) << type << " " << pin;
    }
}

// Every pin of every node reads safely from a source whose value is of another class.
TEST(StringNodes, SourcesOfAnotherClassAreSafe) {
    for (const Row& row : rows) {
        LogicNet net;
        Node& node = net.add(row.type, "n");
        net.add("Bit", "b");
        net.add("Real", "r");
        for (Attribute* in : node.refInputAttributes()) {
            Attribute& wrong =
                in->className() == "BitArrayAttribute" ? net.pin("r.real") : net.pin("b.bit");
            wrong.connectTo(in, nullptr);
            ASSERT_EQ(wrong.value(), in->currentValue()) << row.type;
        }
        for (Attribute* out : node.refOutputAttributes()) {
            EXPECT_NO_THROW(out->computeNow()) << row.type << " " << out->name();
        }
    }
}

// The same with arrays of no elements.
TEST(StringNodes, EmptyArraysAreSafe) {
    for (const Row& row : rows) {
        LogicNet net;
        Node& node = net.add(row.type, "n");
        for (Attribute* in : node.refInputAttributes()) {
            if (auto* strings = valueAs<StringValue>(in->value())) strings->setSize(0);
            if (auto* number = valueAs<Numeric>(in->value())) number->resize(0);
            if (auto* bits = valueAs<BitArrayValue>(in->value())) bits->purge();
            if (auto* keys = valueAs<Enum>(in->value())) keys->refKeys().clear();
        }
        for (Attribute* out : node.refOutputAttributes()) {
            EXPECT_NO_THROW(out->computeNow()) << row.type << " " << out->name();
        }
    }
}

} // namespace
