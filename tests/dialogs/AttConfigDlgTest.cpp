// The attribute settings dialog driven as a user does, on a catalog and an AttrConfig.xml
// written here.

#include "dialogs/CDlgAttConfig.h"

#include "platform/ComError.h"
#include "platform/FileSystem.h"
#include "support/TestHost.h"
#include "support/ui/DialogProbe.h"
#include "ui/ModalHook.h"

#include <gtest/gtest.h>

#include <filesystem>

using koqdde::ui::ClickDlgItem;
using koqdde::ui::SelectDlgItem;

using koqdde::test::ItemTexts;

namespace {

constexpr int kVarType = 2009, kCompar = 2010, kSpecRelation = 2011, kTree = 2012;
constexpr int kAttrList = 2013, kApply = 2014, kSmallList = 2015, kCopy = 2016;

using Texts = std::vector<CString>;
using Numbers = std::vector<int>;

// 给排水: 管道 with two small categories among three of wires and lines, and 设备.
void Catalog(TestHost& host, bool withAttributes) {
    for (auto [name, id] : {std::pair{L"给水管", 101},
                            {L"导线·导管", 102},
                            {L"排水管", 103},
                            {L"电气配管配线", 104},
                            {L"组合管线", 105}})
        host.Add(L"给排水", L"管道", name, 1, id);
    host.Add(L"给排水", L"设备", L"水泵", 2, 201);
    if (!withAttributes)
        return;
    auto& larges = host.data.catalog.front().larges;
    larges[0].smalls[0].attributes = {
        {L"", L"管径", L"", L"DN"}, {L"", L"材质", L"", L"CZ"}, {L"", L"系统编号", L"", L"XTBH"}};
    larges[0].smalls[2].attributes = {{L"", L"管径", L"", L"DN"}};
    larges[1].smalls[0].attributes = {{L"", L"功率", L"", L"GL"}};
}

// Records (vartype, compar, specrelation) of all attributes but 水泵's.
const std::string kAttrConfig = R"(<?xml version="1.0" encoding="UTF-8"?>
<属性类型配置信息>
  <给排水 id="2" name="给排水">
    <管道 id="1" name="管道">
      <给水管 id="101" name="给水管">
        <DN name="管径" namecode="DN" vartype="1" compar="1" specrelation="1"/>
        <CZ name="材质" namecode="CZ" vartype="0" compar="0" specrelation="0"/>
        <XTBH name="系统编号" namecode="XTBH" vartype="2" compar="1" specrelation="0"/>
      </给水管>
      <排水管 id="103" name="排水管">
        <DN name="管径" namecode="DN" vartype="2" compar="0" specrelation="0"/>
      </排水管>
    </管道>
  </给排水>
</属性类型配置信息>
)";
const CString kAttrFile = L"config/AttrConfig.xml";

int RunDialog(const std::function<void(CDialog&)>& act) {
    CDlgAttConfig dlg;
    return koqdde::test::RunModal(dlg, act);
}

// The boxes' selections: vartype, compar, specrelation.
Numbers Shown(CDialog& d) {
    Numbers shown;
    for (int id : {kVarType, kCompar, kSpecRelation})
        shown.push_back(dynamic_cast<CComboBox&>(*d.GetDlgItem(id)).GetCurSel());
    return shown;
}

CTreeCtrl& Tree(CDialog& d) {
    return dynamic_cast<CTreeCtrl&>(*d.GetDlgItem(kTree));
}

// The item at a path of child indices from the root.
HTREEITEM Item(CDialog& d, std::initializer_list<int> path) {
    HTREEITEM item = Tree(d).GetRootItem();
    for (int index : path) {
        item = Tree(d).GetChildItem(item);
        for (int i = 0; i < index; ++i)
            item = Tree(d).GetNextSiblingItem(item);
    }
    return item;
}

} // namespace

TEST(AttConfigDlg, TreeAndListsFollowTheCategoryAndTheBoxesTheRecord) {
    TestHost host;
    Catalog(host, true);
    host.dir.Write(kAttrFile, kAttrConfig);
    RunDialog([&](CDialog& d) {
        // Wires, conduits and combined lines are left out; ids ride along as item data.
        CTreeCtrl& tree = Tree(d);
        EXPECT_EQ(tree.GetItemText(Item(d, {})), L"给排水");
        EXPECT_EQ(tree.GetItemText(Item(d, {0, 1})), L"排水管");
        EXPECT_EQ(tree.GetNextSiblingItem(Item(d, {0, 1})), nullptr);
        EXPECT_EQ(tree.GetItemData(Item(d, {0, 1})), 103);
        EXPECT_EQ(tree.GetSelectedItem(), Item(d, {0, 0}));
        EXPECT_EQ(ItemTexts(d, kAttrList), (Texts{L"管径", L"材质", L"系统编号"}));
        EXPECT_EQ(ItemTexts(d, kSmallList), (Texts{L"给水管", L"排水管"}));

        // The first record was shown while the boxes were empty: none is selected yet.
        EXPECT_EQ(ItemTexts(d, kVarType), (Texts{L"1.下拉", L"2.下拉可填", L"3.无下拉项"}));
        EXPECT_EQ(ItemTexts(d, kCompar), (Texts{L"不可比较", L"可比较"}));
        EXPECT_EQ(ItemTexts(d, kSpecRelation), (Texts{L"O.材质相关", L"X.材质无关"}));
        EXPECT_EQ(Shown(d), (Numbers{-1, -1, -1}));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 2));
        EXPECT_EQ(Shown(d), (Numbers{2, 1, 0}));

        // Picking an entry changes nothing until it is applied.
        ASSERT_TRUE(SelectDlgItem(d, kSpecRelation, 1));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 0));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 2));
        EXPECT_EQ(Shown(d), (Numbers{2, 1, 0}));
        EXPECT_TRUE(host.messages.Messages().empty());

        tree.UserSelect(Item(d, {0, 1}));
        EXPECT_EQ(ItemTexts(d, kAttrList), Texts{L"管径"});
        EXPECT_EQ(Shown(d), (Numbers{2, 0, 0}));

        // A large category is no small one: the lists stay, and the empty path has no record.
        tree.UserSelect(Item(d, {0}));
        EXPECT_EQ(ItemTexts(d, kAttrList), Texts{L"管径"});
        EXPECT_EQ(Shown(d), (Numbers{2, 0, 0}));
        ASSERT_EQ(host.messages.Texts(), Texts{L"error"});
        EXPECT_EQ(host.messages.Messages()[0].flags, MB_OK);
    });
}

TEST(AttConfigDlg, ApplyAndCopyChangeTheDialogsRecordsOnly) {
    TestHost host;
    Catalog(host, true);
    host.dir.Write(kAttrFile, kAttrConfig);
    const int result = RunDialog([&](CDialog& d) {
        // Nothing chosen in the boxes: -1 is stored, and shows as no choice.
        ClickDlgItem(d, kApply);
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 1));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 0));
        EXPECT_EQ(Shown(d), (Numbers{-1, -1, -1}));

        for (auto [id, index] : {std::pair{kVarType, 0}, {kCompar, 1}, {kSpecRelation, 0}})
            ASSERT_TRUE(SelectDlgItem(d, id, index));
        ClickDlgItem(d, kApply);
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 1));
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 0));
        EXPECT_EQ(Shown(d), (Numbers{0, 1, 0}));

        // 排水管 has no 系统编号: the copy is refused and nothing changes.
        ASSERT_TRUE(SelectDlgItem(d, kAttrList, 2));
        ASSERT_TRUE(SelectDlgItem(d, kSmallList, 1));
        ClickDlgItem(d, kCopy);
        ASSERT_EQ(host.messages.Texts(), Texts{L"源属性配置获取失败!"});
        EXPECT_EQ(host.messages.Messages()[0].flags, kWarningFlags);
        EXPECT_EQ(Shown(d), (Numbers{2, 1, 0}));
        host.messages.Clear();

        // 排水管's 管径 takes what 给水管's has now: attributes match by name.
        Tree(d).UserSelect(Item(d, {0, 1}));
        ASSERT_TRUE(SelectDlgItem(d, kSmallList, 0));
        ClickDlgItem(d, kCopy);
        EXPECT_EQ(Shown(d), (Numbers{0, 1, 0}));
        EXPECT_TRUE(host.messages.Messages().empty());

        // 水泵's attribute has no record to show or to apply to.
        Tree(d).UserSelect(Item(d, {1, 0}));
        ClickDlgItem(d, kApply);
        EXPECT_EQ(host.messages.Texts(), (Texts{L"error", L"save error"}));
        ClickDlgItem(d, IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_EQ(host.dir.Read(kAttrFile), kAttrConfig) << "changes stay in the dialog's store";
}

TEST(AttConfigDlg, OkAndCloseGenerateTheFileCancelDoesNot) {
    // Settings are generated from attribute types, which the dialog's store doesn't hold: with
    // any attribute in the catalog, saving raises and writes nothing.
    {
        TestHost host;
        Catalog(host, true);
        host.dir.Write(kAttrFile, kAttrConfig);
        RunDialog([&](CDialog& d) {
            // Sent as the button sends it: an exception can't cross the widget's signal.
            EXPECT_THROW(d.SendMessage(WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED)), ComError);
            EXPECT_FALSE(d.IsEnded());
        });
        EXPECT_EQ(host.dir.Read(kAttrFile), kAttrConfig);
    }

    // Without attributes the file is made, with the categories of every specialty.
    TestHost host;
    Catalog(host, false);
    host.Add(L"电气", L"照明", L"灯具", 1, 101);
    const CString file = host.dir.File(kAttrFile);
    EXPECT_EQ(RunDialog([](CDialog& d) { ClickDlgItem(d, IDCANCEL); }), IDCANCEL);
    EXPECT_FALSE(PathExists(file));
    EXPECT_EQ(RunDialog([](CDialog& d) { d.SendMessage(WM_CLOSE); }), IDCANCEL);
    EXPECT_TRUE(PathExists(file));
    std::filesystem::remove(ToUtf8(file));
    EXPECT_EQ(RunDialog([](CDialog& d) { ClickDlgItem(d, IDOK); }), IDOK);
    const std::string text = host.dir.Read(kAttrFile);
    for (const char* element : {"<给排水 ", "<给水管 ", "<水泵 ", "<电气 ", "<灯具 "})
        EXPECT_NE(text.find(element), std::string::npos) << element;
}
