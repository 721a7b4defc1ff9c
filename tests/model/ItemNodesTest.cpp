#include "model/ConfigNode.h"
#include "model/SMember.h"
#include "model/XmlFixture.h"

#include <gtest/gtest.h>

namespace {
DeStruct Quota(const CString& number) {
    DeStruct de;
    de.strDeId = number;
    de.strName = L"管道安装 " + number;
    return de;
}
QdStruct Bill(const CString& number) {
    QdStruct qd;
    qd.strQdId = number;
    qd.strName = L"镀锌钢管";
    qd.strUnit = L"m";
    qd.strUnitCode = L"1";
    return qd;
}
} // namespace

TEST(QdNode, QuotaIdsComeFromTheHighestReadAndAreNotReused) {
    XmlSnippet xml("<qd id='2' strQdId='031001001001' strName='镀锌钢管'>"
                   "<De><De id='3' strDeId='10-1'/><!-- note --><x id='7' strDeId='10-2'/></De>"
                   "</qd>");
    QdNode qd;
    ASSERT_TRUE(qd.ReadData(xml.Root()));
    // Every child of the list is a quota, whatever its tag: the comment too, with id 0.
    ASSERT_EQ(qd.GetDe().size(), 3u);
    EXPECT_EQ(qd.GetDe()[1]->GetId(), 0);
    EXPECT_EQ(qd.GetLastDeId(), 7);
    EXPECT_EQ(qd.GetDe()[0]->GetParent(), &qd);

    qd.AddDe(Quota(L"10-3"));
    EXPECT_EQ(qd.GetDe().back()->GetId(), 8);
    EXPECT_TRUE(qd.DelDe({8, 99}));
    qd.AddDe(Quota(L"10-4"));
    EXPECT_EQ(qd.GetDe().back()->GetId(), 9) << "a deleted id is not handed out again";

    EXPECT_FALSE(qd.ReSetDe(42, Quota(L"x")));
    EXPECT_TRUE(qd.ReSetDe(3, Quota(L"10-9")));
    EXPECT_EQ(qd.GetDe(3)->m_de.strDeId, L"10-9");
    EXPECT_EQ(qd.GetDe(3)->GetParent(), &qd);
}

TEST(QdNode, WithoutQuotaListReadsEmptyAndWritesOne) {
    XmlSnippet xml("<qd id='1'/>");
    QdNode qd;
    qd.ReadData(xml.Root());
    EXPECT_TRUE(qd.GetDe().empty());
    EXPECT_EQ(qd.GetLastDeId(), 0);
    XmlNode out = xml.NewElement("qd");
    qd.WriteData(out);
    EXPECT_EQ(xml.Serialised(out),
              "<qd id=\"1\" strQdId=\"\" strQdIdUser=\"\" strName=\"\" strUnit=\"\" "
              "strUnitCode=\"\" strtypeid=\"\" strQdCode=\"\" strFormula=\"\" strAnnex=\"\">"
              "<De/></qd>");
}

TEST(ConfigNode, CountersAreMendedByIdsButNotLoweredAndListsFoundByExactName) {
    XmlSnippet xml("<list>"
                   "<Config id='3' LastQdId='2' LastConditionId='0' bDefault='0' LastDeId='x'>"
                   "<Condition><condition id='4' strCFType='a' bEqual='true'/></Condition>"
                   "<Qd><qd id='1'/><qd id='5'/></Qd><De><De id='6'/></De></Config>"
                   "<Config id='4' LastQdId='9' bDefault='7'><Qd><qd id='1'/><qd id='5'/></Qd>"
                   "</Config>"
                   "<config id='1'/>"
                   "<Config id='2'><condition><c id='1'/></condition>"
                   "<Qd><Qd id='3'/></Qd><de><x id='1'/></de></Config>"
                   "</list>");
    XmlNode first = xml.Root().first_child();
    ConfigNode mended;
    mended.ReadData(first);
    EXPECT_EQ(mended.GetLastQdId(), 5);
    EXPECT_EQ(mended.GetLastConditionId(), 4);
    EXPECT_EQ(mended.GetLastDeId(), 6);
    EXPECT_FALSE(mended.IfDefault());
    EXPECT_EQ(mended.GetConditionString(), L"a;");

    ConfigNode high;
    high.ReadData(first.next_sibling());
    EXPECT_EQ(high.GetLastQdId(), 9);
    EXPECT_TRUE(high.IfDefault()) << "any non-zero bDefault is the default flag";
    EXPECT_EQ(high.GetConditionString(), L"其它");

    // A configuration with no list elements at all (a freshly created file) reads empty.
    ConfigNode bare;
    bare.ReadData(first.next_sibling().next_sibling());
    EXPECT_TRUE(bare.GetCondition().empty());
    EXPECT_TRUE(bare.GetQd().empty());
    EXPECT_TRUE(bare.GetDe().empty());

    // List elements are found only by their exact capitalised name; members load whatever
    // their tag.
    ConfigNode config;
    config.ReadData(xml.Root().last_child());
    EXPECT_TRUE(config.GetCondition().empty());
    ASSERT_EQ(config.GetQd().size(), 1u);
    EXPECT_EQ(config.GetQd()[0]->GetId(), 3);
    EXPECT_TRUE(config.GetDe().empty());
}

TEST(ConfigNode, WhatIsWrittenReadsBack) {
    XmlSnippet xml("<x/>");
    ConfigNode config;
    config.SetDefault(true);
    config.AddCondition(ConditionNode(L"材质", true, L"＝", L"", L"", L"铜", L"", L""));
    config.AddQd(Bill(L"031001001001"));
    config.AddDe(Quota(L"10-1"));
    config.GetQd(1)->AddDe(Quota(L"10-2"));
    XmlNode full = xml.NewElement("Config");
    config.WriteData(full);
    ConfigNode back;
    back.ReadData(full);
    XmlNode again = xml.NewElement("Config");
    back.WriteData(again);
    // What is written reads back as it was: written again, it is the same text. Members are
    // written in lower case, quotas as "De", a bill's own quotas inside the bill.
    const std::string text = xml.Serialised(full);
    EXPECT_EQ(xml.Serialised(again), text);
    for (const char* part :
         {"<Condition><condition id=\"1\"", "<Qd><qd id=\"1\"", "strDeId=\"10-1\"",
          "<De><De id=\"1\" strName=\"管道安装 10-2\" strUnit=\"\" strUnitCode=\"\" "
          "strDeId=\"10-2\" strDeCode=\"\" strFormula=\"\" strAnnex=\"\"/></De></qd>"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
}

TEST(ConfigNode, EditsByIdTheirResultsAndConditionsTakenOut) {
    ConfigNode config;
    ConditionNode a(L"材质", true, L"＝", L"", L"", L"铜", L"", L"");
    ConditionNode b(L"管径", false, L"", L"＞", L"", L"", L"50", L"");
    config.AddCondition(a);
    config.AddCondition(b);
    EXPECT_EQ(config.GetConditionString(), L"材质＝铜;管径＞50;");
    EXPECT_EQ(config.GetCondition()[1]->GetId(), 2);
    EXPECT_EQ(config.GetCondition()[1]->GetParent(), nullptr);

    EXPECT_FALSE(config.DelCondition(9));
    EXPECT_FALSE(config.ResetCondition(9, b));
    EXPECT_TRUE(config.ResetCondition(1, b));
    EXPECT_EQ(config.GetConditionString(), L"管径＞50;管径＞50;");
    EXPECT_TRUE(config.DelCondition(1));
    EXPECT_EQ(config.GetCondition().size(), 1u);

    config.AddQd(Bill(L"1"));
    config.AddQd(Bill(L"2"));
    config.AddQd(Bill(L"3"));
    EXPECT_TRUE(config.DelQd({7, 8}));
    EXPECT_EQ(config.GetQd().size(), 3u);
    EXPECT_TRUE(config.DelQd({2}));
    ASSERT_EQ(config.GetQd().size(), 2u);
    EXPECT_EQ(config.GetQd()[1]->m_qd.strQdId, L"3");
    EXPECT_FALSE(config.ResetQd(2, Bill(L"x")));
    EXPECT_FALSE(config.ResetDe(1, Quota(L"x")));

    std::vector<CString> numbers = {L"kept", L"too"};
    EXPECT_TRUE(config.GetExistQdIndex(numbers));
    EXPECT_EQ(numbers, (std::vector<CString>{L"kept", L"too", L"1", L"3"}));

    // Conditions taken out belong to the caller: one goes back as it stands (id, no parent),
    // the other the caller deletes itself; the configuration then frees only what it holds.
    config.AddCondition(ConditionNode(L"系统", true, L"≠", L"", L"", L"排水", L"", L""));
    std::vector<ConditionNode*> taken = config.GetCondition();
    config.DeleteAllCondition();
    EXPECT_EQ(config.GetConditionString(), L"");
    config.AddCondition(taken[0]);
    std::unique_ptr<ConditionNode>(taken[1]).reset();
    EXPECT_EQ(config.GetCondition(), std::vector<ConditionNode*>{taken[0]});
    EXPECT_EQ(taken[0]->GetId(), 2);
    EXPECT_EQ(config.GetConditionString(), L"管径＞50;");
    EXPECT_EQ(config.GetLastConditionId(), 3);

    // The default shows "其它" whatever its conditions.
    config.SetDefault(true);
    EXPECT_EQ(config.GetConditionString(), L"其它");
}

TEST(ConfigNode, CloneCopiesEverythingButConditionIds) {
    SMember owner;
    ConfigNode config;
    config.SetId(4);
    config.SetParent(&owner);
    config.AddCondition(ConditionNode(L"材质", true, L"＝", L"", L"", L"铜", L"", L""));
    config.AddCondition(ConditionNode(L"管径", true, L"＝", L"", L"", L"50", L"", L""));
    config.AddQd(Bill(L"1"));
    config.AddQd(Bill(L"2"));
    config.DelQd({1});
    config.GetQd(2)->AddDe(Quota(L"a"));
    config.GetQd(2)->AddDe(Quota(L"b"));
    config.GetQd(2)->DelDe({1});
    config.AddDe(Quota(L"q"));
    config.AddDe(Quota(L"r"));
    config.AddDe(Quota(L"s"));
    config.DelDe({2});
    config.AddDe(Quota(L"t"));
    std::unique_ptr<ConfigNode> copy(config.Clone());
    // The copied conditions have id 0, which reaches the first of them.
    ASSERT_EQ(copy->GetCondition().size(), 2u);
    EXPECT_EQ(copy->GetCondition()[0]->GetParent(), copy.get());
    EXPECT_TRUE(copy->DelCondition(0));
    EXPECT_EQ(copy->GetConditionString(), L"管径＝50;");
    EXPECT_TRUE(copy->DelCondition(0));
    EXPECT_TRUE(config.DelCondition(1));
    EXPECT_TRUE(config.DelCondition(2));

    // All the rest is copied, ids, counters and order included, and belongs to the copy.
    XmlSnippet xml("<x/>");
    XmlNode original = xml.NewElement("Config");
    XmlNode copied = xml.NewElement("Config");
    config.WriteData(original);
    copy->WriteData(copied);
    ASSERT_EQ(xml.Serialised(copied), xml.Serialised(original));
    EXPECT_EQ(copy->GetParent(), &owner);
    const QdNode* bill = copy->GetQd(2);
    EXPECT_EQ(bill->GetParent(), copy.get());
    EXPECT_EQ(bill->GetDe()[0]->GetParent(), bill);
    EXPECT_EQ(bill->GetLastDeId(), 2) << "a bill does not write its counter";
    EXPECT_NE(bill->GetDe()[0], config.GetQd(2)->GetDe()[0]);
    EXPECT_EQ(copy->GetDe()[0]->GetParent(), copy.get());
}
