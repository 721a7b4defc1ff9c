// The controls of the demo dialog driven as the program and as a user: which notices each
// sends, in which order, and what a handler sees while it runs.

#include "DemoDialog.h"

#include <gtest/gtest.h>

using koqdde::test::DemoDialog;
using koqdde::test::RunModal;
using Log = std::vector<std::string>;

TEST(UiControls, ButtonsAndEditsNotifyOnlyForUserActions) {
    DemoDialog dlg;
    RunModal(dlg, [&](CDialog&) {
        dlg.check.SetCheck(BST_CHECKED);
        dlg.edit.SetWindowText(L"set by program");
        EXPECT_TRUE(dlg.log.empty());

        dlg.button.Click();
        dlg.check.Click();
        dlg.edit.UserType(L"typed");
        dlg.label.UserClick();
        EXPECT_EQ(dlg.log, (Log{"C1000:0", "C1001:0", "C1002:768", "C1004:0"}));
        EXPECT_EQ(dlg.check.GetCheck(), BST_UNCHECKED);

        // The selection is replaced in place; a limit cuts what is typed, not what is set; a
        // disabled button and a read-only edit take no user action.
        dlg.log.clear();
        dlg.edit.SetWindowText(L"abcdef");
        dlg.edit.SetSel(1, 3);
        dlg.edit.ReplaceSel(L"XY");
        EXPECT_EQ(dlg.edit.GetWindowText(), CString(L"aXYdef"));
        dlg.edit.LimitText(4);
        dlg.edit.UserType(L"123456");
        EXPECT_EQ(dlg.edit.GetWindowText(), CString(L"1234"));
        dlg.button.EnableWindow(FALSE);
        dlg.button.Click();
        dlg.edit.SetReadOnly(TRUE);
        dlg.edit.UserType(L"z");
        EXPECT_EQ(dlg.edit.GetWindowText(), CString(L"1234"));
        EXPECT_EQ(dlg.log, (Log{"C1002:768"}));
    });
}

TEST(UiControls, ListAndComboBoxesFindSortAndNotifyOnlyForTheUser) {
    DemoDialog dlg;
    RunModal(dlg, [&](CDialog&) {
        dlg.list.AddString(L"one");
        dlg.list.AddString(L"two");
        EXPECT_EQ(dlg.list.InsertString(0, L"zero"), 0);
        EXPECT_EQ(dlg.list.GetCurSel(), LB_ERR);
        // SelectString takes a prefix, FindStringExact the whole text, both in any case.
        EXPECT_EQ(dlg.list.SelectString(-1, L"TW"), 2);
        EXPECT_EQ(dlg.list.FindStringExact(-1, L"ONE"), 1);
        EXPECT_EQ(dlg.list.FindStringExact(-1, L"on"), LB_ERR);
        EXPECT_TRUE(dlg.log.empty());

        dlg.list.UserSelect(0);
        dlg.list.UserDoubleClick(1);
        EXPECT_EQ(dlg.log, (Log{"C1005:1", "C1005:1", "C1005:2"}));
        EXPECT_EQ(dlg.list.GetCurSel(), 1);
        dlg.list.ResetContent();
        EXPECT_EQ(dlg.list.SetCurSel(0), LB_ERR);

        // A sorted box: the template's b, A, c went in through the sorted insert, which
        // ignores case; InsertString never sorts.
        EXPECT_EQ(koqdde::test::ItemTexts(dlg, 1007), (std::vector<CString>{L"A", L"b", L"c"}));
        EXPECT_EQ(dlg.dropList.AddString(L"B2"), 2);
        dlg.sortedList.AddString(L"delta");
        EXPECT_EQ(dlg.sortedList.InsertString(0, L"zulu"), 0);

        // Combo boxes tell the user's choice, typing and the list.
        dlg.log.clear();
        dlg.dropList.SetCurSel(1);
        dlg.dropList.SelectString(-1, L"c");
        dlg.dropList.ShowDropDown(TRUE);
        dlg.dropList.ShowDropDown(FALSE);
        EXPECT_TRUE(dlg.log.empty());
        EXPECT_EQ(dlg.dropList.GetWindowText(), CString(L"c"));

        // A handler of CBN_SELCHANGE already reads the new selection.
        int selInHandler = -2;
        dlg.onCommand = [&](UINT id, UINT code) {
            if (id == 1007 && code == CBN_SELCHANGE)
                selInHandler = dlg.dropList.GetCurSel();
        };
        dlg.dropList.UserSelect(0);
        EXPECT_EQ(dlg.log, (Log{"C1007:7", "C1007:8", "C1007:1"}));
        EXPECT_EQ(selInHandler, 0);
        EXPECT_FALSE(dlg.dropList.GetDroppedState());

        dlg.log.clear();
        dlg.dropDown.AddString(L"10");
        dlg.dropDown.AddString(L"20");
        dlg.dropDown.SetWindowText(L"15");
        EXPECT_TRUE(dlg.log.empty());
        EXPECT_EQ(dlg.dropDown.GetCurSel(), CB_ERR);
        dlg.dropDown.UserType(L"25");
        EXPECT_EQ(dlg.log, (Log{"C1008:5"}));
        dlg.dropDown.SetCurSel(1);
        EXPECT_EQ(dlg.dropDown.GetWindowText(), CString(L"20"));
        dlg.dropDown.DeleteString(1);
        EXPECT_EQ(dlg.dropDown.GetCurSel(), CB_ERR);
        dlg.dropDown.ResetContent();
        EXPECT_EQ(dlg.dropDown.GetWindowText(), CString());
    });
}

TEST(UiControls, TabsAskOnlyTheUserTreesAlsoTheProgramBeforeTheSelectionChanges) {
    DemoDialog dlg;
    RunModal(dlg, [&](CDialog&) {
        dlg.tab.InsertItem(0, L"等于");
        dlg.tab.InsertItem(1, L"范围");
        EXPECT_EQ(dlg.tab.SetCurSel(1), 0); // the previous tab
        EXPECT_EQ(dlg.tab.SetCurSel(0), 1);
        EXPECT_TRUE(dlg.log.empty());

        // The asking notice sees the old tab, the second one the new tab.
        dlg.tab.UserSelect(1);
        EXPECT_EQ(dlg.log, (Log{"N1009:-552 cur=0", "N1009:-551 cur=1"}));

        // A non-zero answer to the question keeps the old tab.
        dlg.log.clear();
        dlg.notifyResult = [](NMHDR* h) {
            return h->code == static_cast<UINT>(TCN_SELCHANGING) ? LRESULT(1) : LRESULT(0);
        };
        dlg.tab.UserSelect(0);
        EXPECT_EQ(dlg.log, (Log{"N1009:-552 cur=1"}));
        EXPECT_EQ(dlg.tab.GetCurSel(), 1);
        dlg.tab.DeleteAllItems();
        EXPECT_EQ(dlg.tab.GetCurSel(), -1);
        dlg.notifyResult = nullptr;

        // A tree asks for a program's selection too.
        dlg.log.clear();
        HTREEITEM root = dlg.tree.InsertItem(L"给排水");
        HTREEITEM pipes = dlg.tree.InsertItem(L"管道", root);
        HTREEITEM valves = dlg.tree.InsertItem(L"阀门", root);
        HTREEITEM steel = dlg.tree.InsertItem(L"钢管", pipes);
        HTREEITEM first = dlg.tree.InsertItem(L"塑料管", pipes);
        EXPECT_TRUE(dlg.log.empty()); // inserting selects nothing

        // The first notice runs while the old item is still selected.
        EXPECT_TRUE(dlg.tree.SelectItem(steel));
        EXPECT_EQ(dlg.log,
                  (Log{"N1010:-450 old=- new=钢管 cur=-", "N1010:-451 old=- new=钢管 cur=钢管"}));
        dlg.log.clear();
        dlg.tree.UserSelect(valves);
        EXPECT_EQ(dlg.log, (Log{"N1010:-450 old=钢管 new=阀门 cur=钢管",
                                "N1010:-451 old=钢管 new=阀门 cur=阀门"}));
        dlg.log.clear();
        EXPECT_TRUE(dlg.tree.SelectItem(valves)); // already selected: nothing to tell
        EXPECT_TRUE(dlg.log.empty());

        // Refusing the change keeps the old item, for a program and for a user.
        dlg.notifyResult = [](NMHDR* h) {
            return h->code == static_cast<UINT>(TVN_SELCHANGING) ? LRESULT(1) : LRESULT(0);
        };
        EXPECT_FALSE(dlg.tree.SelectItem(first));
        dlg.tree.UserSelect(first);
        EXPECT_EQ(dlg.tree.GetSelectedItem(), valves);
        EXPECT_EQ(dlg.log.size(), 2u);
        dlg.notifyResult = nullptr;

        // A handler may select again inside the notice; the nested change completes first.
        dlg.log.clear();
        bool redirected = false;
        dlg.onNotify = [&](UINT, NMHDR* h) {
            if (h->code == static_cast<UINT>(TVN_SELCHANGED) && !redirected) {
                redirected = true;
                dlg.tree.SelectItem(steel);
            }
        };
        dlg.tree.SelectItem(first);
        EXPECT_EQ(dlg.tree.GetSelectedItem(), steel);
        ASSERT_EQ(dlg.log.size(), 4u);
        EXPECT_EQ(dlg.log[3], "N1010:-451 old=塑料管 new=钢管 cur=钢管");
        dlg.onNotify = nullptr;

        dlg.log.clear();
        dlg.tree.DeleteAllItems();
        EXPECT_EQ(dlg.tree.GetSelectedItem(), nullptr);
        EXPECT_TRUE(dlg.log.empty());
    });
}

TEST(UiControls, ListViewTellsTheClearedRowBeforeTheSelectedOne) {
    DemoDialog dlg;
    RunModal(dlg, [&](CDialog&) {
        dlg.view.InsertColumn(0, L"序号", LVCFMT_LEFT, 40);
        auto fill = [&] {
            dlg.view.DeleteAllItems();
            for (int i = 0; i < 3; ++i)
                dlg.view.SetItemData(dlg.view.InsertItem(i, L"x"), 100 + i);
        };
        fill();
        EXPECT_EQ(dlg.view.GetNextItem(-1, LVNI_SELECTED), -1);
        EXPECT_TRUE(dlg.log.empty());

        dlg.view.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
        EXPECT_EQ(dlg.log, (Log{"N1011:-101 item=0 sel=0 +S"}));
        dlg.log.clear();
        dlg.view.SetItemState(2, LVIS_SELECTED, LVIS_SELECTED);
        EXPECT_EQ(dlg.log, (Log{"N1011:-101 item=0 sel=-1 -S", "N1011:-101 item=2 sel=2 +S"}));
        EXPECT_EQ(dlg.view.GetSelectionMark(), 2);
        EXPECT_EQ(dlg.view.GetItemData(dlg.view.GetNextItem(-1, LVNI_SELECTED)), 102);

        dlg.log.clear();
        dlg.view.UserClickItem(1);
        EXPECT_EQ(dlg.log, (Log{"N1011:-101 item=2 sel=-1 -S", "N1011:-101 item=1 sel=1 +S"}));
        dlg.log.clear();
        dlg.view.UserClickEmpty();
        EXPECT_EQ(dlg.log, (Log{"N1011:-101 item=1 sel=-1 -S"}));
        EXPECT_EQ(dlg.view.GetSelectedCount(), 0);

        // Emptying the list tells nothing; a refresh inside a notice (rebuilding and selecting
        // row 0) ends the outer change, whose row is gone.
        dlg.view.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
        dlg.log.clear();
        fill();
        EXPECT_TRUE(dlg.log.empty());
        dlg.view.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
        bool refreshed = false;
        dlg.onNotify = [&](UINT, NMHDR* h) {
            auto* nm = reinterpret_cast<NMLISTVIEW*>(h);
            if (h->code == static_cast<UINT>(LVN_ITEMCHANGED) && nm->iItem == 2 && !refreshed) {
                refreshed = true;
                fill();
                dlg.view.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
            }
        };
        dlg.log.clear();
        dlg.view.SetItemState(2, LVIS_SELECTED, LVIS_SELECTED);
        EXPECT_EQ(dlg.view.GetNextItem(-1, LVNI_SELECTED), 0);
        EXPECT_EQ(dlg.log, (Log{"N1011:-101 item=0 sel=-1 -S", "N1011:-101 item=2 sel=2 +S",
                                "N1011:-101 item=0 sel=0 +S"}));
    });
}
