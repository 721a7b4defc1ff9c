#include "model/ConditionNode.h"
#include "model/XmlFixture.h"

#include <gtest/gtest.h>

namespace {
ConditionNode Range(const CString& op1, const CString& r1, const CString& op2, const CString& r2) {
    return ConditionNode(L"管径", false, L"", op1, op2, L"", r1, r2);
}
} // namespace

TEST(ConditionNode, DisplayTextOfEveryForm) {
    EXPECT_EQ(
        ConditionNode(L"材质", true, L"＝", L"", L"", L"镀锌钢管", L"", L"").GetConditionString(),
        L"材质＝镀锌钢管");
    EXPECT_EQ(
        ConditionNode(L"材质", true, L"≠", L"＞", L"＜", L"PPR", L"1", L"2").GetConditionString(),
        L"材质≠PPR");
    // Both bounds: read low to high, the lower operator mirrored.
    EXPECT_EQ(Range(L"＞", L"5", L"≤", L"10").GetConditionString(), L"5＜管径≤10");
    EXPECT_EQ(Range(L"≥", L"1", L"＜", L"2").GetConditionString(), L"1≤管径＜2");
    EXPECT_EQ(Range(L"", L"1", L"＜", L"2").GetConditionString(), L"1≤管径＜2");
    EXPECT_EQ(Range(L"?", L"1", L"＜", L"2").GetConditionString(), L"1≤管径＜2");
    EXPECT_EQ(Range(L"＞", L"5", L"≤", L"").GetConditionString(), L"管径＞5");
    EXPECT_EQ(Range(L"＞", L"", L"≤", L"10").GetConditionString(), L"管径≤10");
    EXPECT_EQ(Range(L"＞", L"", L"≤", L"").GetConditionString(), L"管径");
    // A bound of blanks counts as present: bounds are tested by length only.
    EXPECT_EQ(Range(L"＞", L" ", L"≤", L"").GetConditionString(), L"管径＞ ");
}

TEST(ConditionNode, ReadsEqualOnlyFromExactTrueAndWritesAllEightFieldsInOrder) {
    XmlSnippet xml("<list><condition/><condition id='4' bEqual='TRUE' strCFType='a'/>"
                   "<condition id='12abc' bEqual='true' strCFType='b' strEqualoperator='＝' "
                   "strValue='v'/></list>");
    XmlNode first = xml.Root().first_child();
    ConditionNode empty;
    EXPECT_TRUE(empty.ReadData(first));
    EXPECT_EQ(empty.GetId(), 0);
    EXPECT_FALSE(empty.IsEqual()) << "an absent bEqual reads false, though the default is true";
    EXPECT_EQ(empty.GetConditionString(), L"");

    ConditionNode upper;
    upper.ReadData(first.next_sibling());
    EXPECT_EQ(upper.GetId(), 4);
    EXPECT_FALSE(upper.IsEqual());

    ConditionNode value;
    value.ReadData(first.next_sibling().next_sibling());
    EXPECT_EQ(value.GetId(), 12);
    EXPECT_TRUE(value.IsEqual());
    EXPECT_EQ(value.GetConditionString(), L"b＝v");

    ConditionNode c(L"管径", false, L"", L"＞", L"≤", L"", L"5", L"10");
    c.SetId(3);
    XmlNode out = xml.NewElement("condition");
    c.WriteData(out);
    EXPECT_EQ(xml.Serialised(out),
              "<condition id=\"3\" strCFType=\"管径\" bEqual=\"false\" strEqualoperator=\"\" "
              "strRangeoperator1=\"＞\" strRangeoperator2=\"≤\" strValue=\"\" strRange1=\"5\" "
              "strRange2=\"10\"/>");
    ConditionNode back;
    back.ReadData(out);
    EXPECT_EQ(back.GetConditionString(), L"5＜管径≤10");
}

TEST(ConditionNode, CopyLosesIdAssignKeepsItResetKeepsOwn) {
    ConditionNode parent;
    ConditionNode source(L"材质", true, L"＝", L"", L"", L"铜", L"", L"");
    source.SetId(7);
    source.SetParent(&parent);

    ConditionNode copy(source);
    EXPECT_EQ(copy.GetId(), 0);
    EXPECT_EQ(copy.GetParent(), nullptr);

    ConditionNode assigned;
    assigned = source;
    EXPECT_EQ(assigned.GetId(), 7);
    EXPECT_EQ(assigned.GetParent(), &parent);

    ConditionNode reset(L"管径", false, L"", L"＞", L"", L"", L"1", L"");
    reset.SetId(2);
    reset.Reset(source);
    EXPECT_EQ(reset.GetId(), 2);
    EXPECT_EQ(reset.GetParent(), nullptr);
    EXPECT_EQ(reset.GetConditionString(), L"材质＝铜");
}
