#include "workbench/CExListBox.h"

#include "support/ui/DialogProbe.h"

#include <QWidget>

#include <gtest/gtest.h>

namespace {

// A list box as the dialogs make it, 60 by 40 dialog units, in a window of its own.
QWidget* MakeList(QWidget* host) {
    return koqdde::test::MakeControl(host, L"listbox", 1009, 4, 4, 60, 40, {L"notify"});
}

} // namespace

TEST(CExListBox, TipOfAnEntryIsItsWholeTextHoweverLongAndAPlainListBoxHasNone) {
    QWidget host;
    host.resize(400, 300);
    CExListBox list;
    list.Attach(MakeList(&host));
    CListBox plain;
    plain.Attach(MakeList(&host));
    host.show();

    CString longText;
    for (int i = 0; i < 12; ++i)
        longText += L"管道材质为镀锌钢管且公称直径";
    ASSERT_GT(longText.GetLength(), 80) << "longer than a tooltip's fixed buffer";
    list.AddString(L"短");
    list.AddString(longText);
    plain.AddString(longText);

    CRect row0, row1;
    ASSERT_NE(list.GetItemRect(0, &row0), LB_ERR);
    ASSERT_NE(list.GetItemRect(1, &row1), LB_ERR);
    EXPECT_EQ(list.UserHoverTip(row0.CenterPoint()), L"短");
    EXPECT_EQ(list.UserHoverTip(row1.CenterPoint()), longText);
    EXPECT_EQ(plain.UserHoverTip(row0.CenterPoint()), L"");
    // Below the last entry the nearest entry is the last one, and the tip names it.
    EXPECT_EQ(list.UserHoverTip(CPoint(row1.left + 2, row1.bottom + 5)), longText);

    // An index that is no longer an entry gives an empty text.
    CString text = L"stale";
    EXPECT_TRUE(list.OnToolTipText(5, text));
    EXPECT_EQ(text, L"");
    list.ResetContent();
    EXPECT_EQ(list.UserHoverTip(row0.CenterPoint()), L"");
}
