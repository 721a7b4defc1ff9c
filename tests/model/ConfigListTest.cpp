#include "model/SMember.h"
#include "model/XmlFixture.h"

#include <gtest/gtest.h>

namespace {
std::vector<int> Ids(const SMember& small) {
    std::vector<int> ids;
    for (ConfigNode* c : small.GetAllConfig())
        ids.push_back(c->GetId());
    return ids;
}
CPath ConfigPath(int id) {
    CPath path;
    path.ConfigId = id;
    return path;
}
} // namespace

TEST(SMemberRead, MissingOrEmptyListGivesOneDefaultConfiguration) {
    XmlSnippet xml("<list><SMember name='给水管'/><SMember name='x' LastConfigId='50'>"
                   "<Config/></SMember></list>");
    for (XmlNode node : xml.Root().children()) {
        SMember small;
        ASSERT_TRUE(small.ReadData(node));
        ASSERT_EQ(Ids(small), std::vector<int>{1});
        EXPECT_TRUE(small.GetConfig(1)->IfDefault());
        EXPECT_EQ(small.GetConfig(1)->GetParent(), &small);
        EXPECT_EQ(small.GetLastConfigId(), 1);
    }
}

TEST(SMemberRead, CounterComesFromTheIdsReadAndALostDefaultIsAddedWithIdOne) {
    XmlSnippet xml("<list><SMember name='a' LastConfigId='50'><Config>"
                   "<Config id='1' bDefault='0'/><Config id='2' bDefault='0'/></Config></SMember>"
                   "<SMember name='b' LastConfigId='50'><Config>"
                   "<Config id='2' bDefault='0'/><Config id='1' bDefault='1'/></Config></SMember>"
                   "</list>");
    SMember lost;
    lost.ReadData(xml.Root().first_child());
    EXPECT_EQ(Ids(lost), (std::vector<int>{1, 2, 1}));
    EXPECT_EQ(lost.GetLastConfigId(), 3);
    EXPECT_FALSE(lost.GetConfig(1)->IfDefault()) << "lookups reach the first of the clash";
    EXPECT_TRUE(lost.GetAllConfig().back()->IfDefault());

    SMember small;
    small.ReadData(xml.Root().last_child());
    EXPECT_EQ(small.GetLastConfigId(), 2) << "the file's counter is ignored";
    int id = 0;
    small.AddConfig(CPath(), id);
    EXPECT_EQ(id, 3);
    EXPECT_EQ(Ids(small), (std::vector<int>{2, 3, 1}));
}

TEST(SMemberList, NewEntriesGoInFrontOfTheLastWhichMovesNeverReachAndDeletesKeepTheCounter) {
    XmlSnippet xml("<SMember name='a'/>");
    SMember small;
    small.ReadData(xml.Root());
    int id = 0;
    ASSERT_TRUE(small.AddConfig(CPath(), id));
    EXPECT_EQ(id, 2);
    EXPECT_EQ(Ids(small), (std::vector<int>{2, 1}));
    small.AddConfig(CPath(), id);
    EXPECT_EQ(Ids(small), (std::vector<int>{2, 3, 1}));
    EXPECT_EQ(small.GetConfig(3)->GetParent(), &small);

    QdStruct bill;
    bill.strQdId = L"031001001001";
    small.GetConfig(2)->AddQd(bill);
    int copyId = -5;
    EXPECT_FALSE(small.AddConfigByCopy(77, copyId));
    EXPECT_EQ(copyId, -5);
    EXPECT_EQ(Ids(small), (std::vector<int>{2, 3, 1}));
    ASSERT_TRUE(small.AddConfigByCopy(2, copyId));
    EXPECT_EQ(copyId, 4);
    EXPECT_EQ(Ids(small), (std::vector<int>{2, 3, 4, 1}));
    EXPECT_EQ(small.GetConfig(4)->GetQd().size(), 1u);
    EXPECT_EQ(small.GetConfig(4)->GetParent(), &small);
    // Copying the default gives a second default: guarding that is the dialogs' business.
    small.AddConfigByCopy(1, copyId);
    EXPECT_TRUE(small.GetConfig(5)->IfDefault());

    EXPECT_FALSE(small.MoveUpConfig(ConfigPath(2)));
    EXPECT_FALSE(small.MoveDownConfig(ConfigPath(5)));
    for (int refused : {1, 9}) {
        EXPECT_FALSE(small.MoveUpConfig(ConfigPath(refused)));
        EXPECT_FALSE(small.MoveDownConfig(ConfigPath(refused)));
    }
    EXPECT_TRUE(small.MoveDownConfig(ConfigPath(2)));
    EXPECT_EQ(Ids(small), (std::vector<int>{3, 2, 4, 5, 1}));
    EXPECT_TRUE(small.MoveUpConfig(ConfigPath(2)));
    EXPECT_EQ(Ids(small), (std::vector<int>{2, 3, 4, 5, 1}));

    small.GetConfig(3)->AddCondition(
        ConditionNode(L"材质", true, L"＝", L"", L"", L"铜", L"", L""));
    EXPECT_TRUE(small.DelConfig(99));
    for (int deleted : {3, 2, 4, 5})
        EXPECT_TRUE(small.DelConfig(deleted));
    EXPECT_EQ(Ids(small), std::vector<int>{1});
    small.AddConfig(CPath(), id);
    EXPECT_EQ(id, 6);
    // The default configuration can be deleted too; the list may then be empty.
    EXPECT_TRUE(small.DelConfig(1));
    EXPECT_TRUE(small.DelConfig(6));
    EXPECT_TRUE(small.GetAllConfig().empty());
    small.AddConfig(CPath(), id);
    EXPECT_EQ(Ids(small), std::vector<int>{7});
}

TEST(SMemberWrite, WritesCounterAndConfigurations) {
    XmlSnippet xml("<SMember name='给水管'/>");
    SMember small;
    small.SetId(20101);
    small.ReadData(xml.Root());
    int id = 0;
    small.AddConfig(CPath(), id);
    XmlNode out = xml.NewElement("SMember");
    small.WriteData(out);
    // Every configuration writes its values and all three lists, empty or not.
    EXPECT_EQ(xml.Serialised(out),
              "<SMember id=\"20101\" name=\"给水管\" LastConfigId=\"2\"><Config>"
              "<Config id=\"2\" LastQdId=\"0\" LastConditionId=\"0\" bDefault=\"0\" "
              "LastDeId=\"0\"><Condition/><Qd/><De/></Config>"
              "<Config id=\"1\" LastQdId=\"0\" LastConditionId=\"0\" bDefault=\"1\" "
              "LastDeId=\"0\"><Condition/><Qd/><De/></Config></Config></SMember>");
}
