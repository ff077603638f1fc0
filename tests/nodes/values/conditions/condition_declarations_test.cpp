// SPDX-License-Identifier: Apache-2.0
// The condition nodes as users see them: pins, types, defaults, help and descriptions.
#include <gtest/gtest.h>

#include <map>

#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace sluice_tests;

const char* const operators[] = {"EqualTo",     "NotEqualTo",  "LessThan",
                                 "LessOrEqual", "GreaterThan", "GreaterOrEqual"};

TM_String described(const TM_String& type) {
    LogicNet net;
    return net.add(type, "n").getDescription();
}

TM_String helpOf(const TM_String& type, const TM_String& pin) {
    LogicNet net;
    net.add(type, "n");
    return net.pin("n." + pin).getDescription();
}

TEST(ConditionNodes, MakersTakeANumber) {
    for (const TM_String name : operators) {
        const TM_String type = "Condition" + name;
        EXPECT_EQ(type +
                      "\n"
                      "in value NumericAttribute \"Integer\", \"Real\", \"Vector3\", \"Matrix4\", "
                      "\"Color4\" = Integer:0 Real:0 Vector3:0 "
                      "Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1) Color4:0\n"
                      "out condition ConditionAttribute \"Condition\"\n",
                  declared(type));
    }
}

TEST(ConditionNodes, MakersOfConstantsTakeASingleNumber) {
    for (const TM_String name : operators) {
        const TM_String type = "Condition" + name + "Constant";
        EXPECT_EQ(type + "\n"
                         "in value! NumericAttribute \"Integer\", \"Real\", \"Vector3\", "
                         "\"Matrix4\", \"Color4\" = Integer:0 Real:0 Vector3:0 "
                         "Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1) Color4:0\n"
                         "out condition ConditionAttribute \"Condition\"\n",
                  declared(type));
    }
}

TEST(ConditionNodes, GenericHasAChoice) {
    EXPECT_EQ("ConditionGeneric\n"
              "in value NumericAttribute \"Integer\", \"Real\", \"Vector3\", \"Matrix4\", "
              "\"Color4\" = Integer:0 Real:0 Vector3:0 "
              "Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1) Color4:0\n"
              "in type! EnumAttribute \"List\", \"Integer\", \"String\" = [{0:\"equal to\","
              "1:\"not equal to\",2:\"less than\",3:\"less or equal than\",4:\"greater than\","
              "5:\"greater or equal than\",},4\n"
              "out condition ConditionAttribute \"Condition\"\n",
              declared("ConditionGeneric"));
}

TEST(ConditionNodes, FilterTakesACondition) {
    const TM_String types = "\"Integer\", \"Real\", \"Vector3\", \"Color4\", \"Matrix4\"";
    EXPECT_EQ("ConditionFilterBy\n"
              "in value NumericAttribute " +
                  types +
                  " = Integer:0 Real:0 Vector3:0 Color4:(0,0,0,1) "
                  "Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n"
                  "in condition ConditionAttribute \"Condition\" = equal to\n"
                  "out result NumericAttribute " +
                  types +
                  "\n"
                  "out mask BitArrayAttribute \"Bit\"\n",
              declared("ConditionFilterBy"));
}

TEST(ConditionNodes, FiltersOfTwoArraysTakeBoth) {
    const TM_String types =
        "\"Integer\", \"Integer64\", \"Real\", \"Vector3\", \"Color4\", \"Matrix4\"";
    const TM_String defaults = " = Integer:0 Integer64:0 Real:0 Vector3:0 Color4:(0,0,0,1) "
                               "Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n";
    for (const TM_String name : operators) {
        const TM_String type = "ConditionFilterBy" + name;
        EXPECT_EQ(type + "\nin value0 NumericAttribute " + types + defaults +
                      "in value1 NumericAttribute " + types + defaults +
                      "out result NumericAttribute " + types +
                      "\n"
                      "out mask BitArrayAttribute \"Bit\"\n",
                  declared(type));
    }
}

TEST(ConditionNodes, IsZeroHasATolerance) {
    EXPECT_EQ("ConditionIsZero\n"
              "in value NumericAttribute \"Integer\", \"Real\", \"Vector3\", \"Color4\", "
              "\"Matrix4\" = Integer:0 Real:0 Vector3:0 Color4:(0,0,0,1) "
              "Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n"
              "in tolerance NumericAttribute \"Real\" = 1.1920929e-05\n"
              "out mask BitArrayAttribute \"Bit\"\n",
              declared("ConditionIsZero"));
}

TEST(ConditionNodes, IfTakesAnything) {
    EXPECT_EQ("ConditionIf\n"
              "in condition! BitArrayAttribute \"Bit\" = 0\n"
              "in true value AnyAttribute All = none\n"
              "in false value AnyAttribute All = none\n"
              "out value AnyAttribute All\n",
              declared("ConditionIf"));
}

TEST(ConditionNodes, AllPinsHaveHelpAndAllInputsCount) {
    std::vector<TM_String> types = {"ConditionGeneric", "ConditionFilterBy", "ConditionIsZero",
                                    "ConditionIf"};
    for (const TM_String name : operators) {
        types.push_back("Condition" + name);
        types.push_back("Condition" + name + "Constant");
        types.push_back("ConditionFilterBy" + name);
    }
    ASSERT_EQ(22u, types.size());
    for (const TM_String& type : types) {
        EXPECT_EQ("", missingTexts(type)) << type;
        EXPECT_EQ("", missingAffects(type)) << type;
    }
}

TEST(ConditionNodes, MakersDescribeTheirComparison) {
    const std::map<TM_String, TM_String> texts = {
        {"EqualTo",
         "Condition is evaluated as true if the reference value is equal to the input 'value'."},
        {"NotEqualTo",
         "Condition is evaluated as true if the other value is not equal to the input 'value'."},
        {"LessThan", "Condition is evaluated as true if the other value is strictly less than the "
                     "input 'value'."},
        {"LessOrEqual", "Condition is evaluated as true if the other value is less or equal than "
                        "the input 'value'."},
        {"GreaterThan", "Condition is evaluated as true if the other value is strictly greater "
                        "than the input 'value'."},
        {"GreaterOrEqual", "Condition is evaluated as true if the other value is greater or equal "
                           "than the input 'value'."},
    };
    ASSERT_EQ(6u, texts.size());
    for (const auto& [name, text] : texts) {
        EXPECT_EQ(text, described("Condition" + name));
        EXPECT_EQ(text, described("Condition" + name + "Constant"));
    }
    EXPECT_EQ(texts.at("GreaterThan"), described("ConditionGeneric"));
}

TEST(ConditionNodes, OthersDescribeThemselves) {
    EXPECT_EQ("Filters the input values according to the 'condition'.\nThe 'result' is an array "
              "reduced by the elements that evaluate the condition as false.",
              described("ConditionFilterBy"));
    for (const TM_String name : operators) {
        EXPECT_EQ("Filters the input value acording to the 'condition'.\nThe comparison is "
                  "performed for as many elements as it contains the 'value0' input. If 'value1' "
                  "size is smaller it's last element is used for the comparison of the remaining "
                  "elements.\nThe 'result' is an array without the elements that evaluate the "
                  "condition as false.",
                  described("ConditionFilterBy" + name));
    }
    EXPECT_EQ("Checks if the input elements are zero with respect to the input 'tolerance' "
              "value.\nFor every input position equal to zero the output mask's bit is set to 1.",
              described("ConditionIsZero"));
    EXPECT_EQ("This node sets its output 'value' to the input 'true value' if the condition bit is "
              "set to 'true'.\nOtherwise, the output is set to 'false'.",
              described("ConditionIf"));
}

TEST(ConditionNodes, StatedHelp) {
    EXPECT_EQ("The value to check the condition against", helpOf("ConditionFilterBy", "value"));
    EXPECT_EQ("The result after applying the condition", helpOf("ConditionFilterBy", "result"));
    EXPECT_EQ("A mask to apply to other array with the same size to apply the same filter without "
              "the need of reevaluation.",
              helpOf("ConditionFilterBy", "mask"));
    EXPECT_EQ("The left side of the comparison operation",
              helpOf("ConditionFilterByLessThan", "value0"));
    EXPECT_EQ("The right side of the comparison operation",
              helpOf("ConditionFilterByLessThan", "value1"));
    EXPECT_EQ("The result after applying the condition",
              helpOf("ConditionFilterByLessThan", "result"));
    EXPECT_EQ("A mask to apply to other same size array to apply the same filter without the need "
              "of reevaluation.",
              helpOf("ConditionFilterByLessThan", "mask"));
    EXPECT_EQ("The value to check if is zero", helpOf("ConditionIsZero", "value"));
}

} // namespace
