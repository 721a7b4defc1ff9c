// Behaviour that depends on the window system, under a real X server: the pointer is moved with
// QCursor::setPos, so the server itself sends the motion and crossing events (and the tooltip
// wake-up that follows a resting pointer). Run by run-under-xvfb.sh.

#include "dialogs/CTTComboBox.h"
#include "host/HostData.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "support/TestHost.h"
#include "support/ui/DialogProbe.h"
#include "ui/CGridCtrl.h"
#include "ui/DialogTemplate.h"
#include "ui/ModalHook.h"
#include "workbench/CAutoConfigDlg.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCursor>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPixmap>
#include <QScreen>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>
#include <QWidget>

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

using namespace AutoConfigIds;

namespace {

// Long enough to need a tip in a narrow box; the cut list line needs more (see below).
const CString kLong = L"镀锌钢管螺纹连接公称直径不大于五十毫米的室内给水管道";

// A top-level window; its controls are made first, then it is shown with them.
struct Window {
    Window() { widget.setGeometry(200, 150, 420, 240); }
    void Show() {
        widget.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    }
    QWidget widget;
};

// Puts the real pointer on a point of a widget, or on a screen point.
void PointAt(const QWidget* widget, QPoint pos) {
    QCursor::setPos(widget->mapToGlobal(pos));
}
void PointAtScreen(QPoint pos) {
    QCursor::setPos(pos);
}
QPoint FarAway() {
    return QGuiApplication::primaryScreen()->geometry().bottomRight() - QPoint(5, 5);
}

// The default configuration of 给排水\管道\给水管.
CPath WaterFallback() {
    CPath path;
    path.SpecId = 2;
    path.LMemberId = 1;
    path.SMemberId = 101;
    path.ConfigId = 1;
    return path;
}

bool TipShows(const CString& text) {
    return QTest::qWaitFor(
        [&] { return CTTComboBox::IsTipVisible() && CTTComboBox::GetTipText() == text; }, 5000);
}

// The tip stays while the pointer rests: no leave event reaches the field under it. With
// KOQDDE_SCREENSHOT_DIR set, the screen is saved there as it stands, to be looked at.
void ExpectTipStays(const CString& text) {
    QTest::qWait(1200);
    EXPECT_TRUE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetTipText(), text);
    if (const char* dir = std::getenv("KOQDDE_SCREENSHOT_DIR")) {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        QGuiApplication::primaryScreen()->grabWindow(0).save(QString::fromLocal8Bit(dir) + "/" +
                                                             test->name() + ".png");
    }
}

} // namespace

TEST(RealPointer, BoxAndFieldTipsStayUntilThePointerLeaves) {
    PointAtScreen(FarAway());
    Window window;
    CTTComboBox box;
    box.Attach(koqdde::test::MakeComboBox(&window.widget, 10, 40, false));
    box.AddString(kLong);
    box.SetCurSel(0);
    CTTComboBox field;
    field.Attach(koqdde::test::MakeComboBox(&window.widget, 120, 40, true));
    field.SetWindowText(kLong);
    window.Show();

    QWidget* combo = box.widget();
    PointAt(combo, QPoint(combo->width() / 3, combo->height() / 2));
    ASSERT_TRUE(TipShows(kLong));
    ExpectTipStays(kLong);
    // Moving inside the box keeps it; leaving the box takes it away.
    PointAt(combo, QPoint(combo->width() / 4, combo->height() / 2));
    QTest::qWait(300);
    EXPECT_TRUE(CTTComboBox::IsTipVisible());
    PointAt(&window.widget, QPoint(300, 200));
    EXPECT_TRUE(QTest::qWaitFor([] { return !CTTComboBox::IsTipVisible(); }, 3000));

    QWidget* edit = field.GetEditWnd();
    ASSERT_NE(edit, nullptr);
    PointAt(edit, QPoint(edit->width() / 2, edit->height() / 2));
    ASSERT_TRUE(TipShows(kLong));
    ExpectTipStays(kLong);
    PointAtScreen(FarAway());
    EXPECT_TRUE(QTest::qWaitFor([] { return !CTTComboBox::IsTipVisible(); }, 3000));
}

TEST(RealPointer, ACutLineOfTheOpenListGetsItsTip) {
    PointAtScreen(FarAway());
    Window window;
    CTTComboBox box;
    box.Attach(koqdde::test::MakeComboBox(&window.widget, 10, 40, false));
    // The list opens as wide as its widest line allows on this screen; the second line is cut
    // there, though it is narrower than the widest.
    const int screenWidth = QGuiApplication::primaryScreen()->geometry().width();
    const QFontMetrics metrics(box.widget()->font());
    CString cut = kLong;
    while (metrics.horizontalAdvance(QString::fromStdWString(cut.GetString())) < screenWidth + 300)
        cut += L"，加长";
    box.AddString(L"钢管");
    box.AddString(cut);
    box.AddString(cut + cut);
    window.Show();
    box.UserDropDown();
    QWidget* list = box.GetListWnd();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(list->window()));
    const CRect line = box.GetListItemRect(1);
    ASSERT_LE(line.right, screenWidth) << "the line is the visible one";
    PointAt(list, QPoint(40, line.top + line.Height() / 2));
    ASSERT_TRUE(TipShows(cut));
    ExpectTipStays(cut);
    // The short line fits: its tip is hidden.
    const CRect first = box.GetListItemRect(0);
    PointAt(list, QPoint(40, first.top + first.Height() / 2));
    EXPECT_TRUE(QTest::qWaitFor([] { return !CTTComboBox::IsTipVisible(); }, 3000));
    box.UserCloseUp();
}

TEST(RealPointer, ARowHeadClickSelectsTheRowAndDeleteTakesItsBill) {
    PointAtScreen(FarAway());
    TestHost host;
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    host.data.project.bill.code = L"{BILL}";
    {
        CQdDeConfigPresenter presenter;
        std::vector<ConfigNode*> configs;
        for (const wchar_t* number : {L"031001001001", L"031001006001"}) {
            QdStruct qd;
            qd.strQdId = number;
            qd.strName = L"管道";
            qd.strUnit = L"m";
            qd.strQdCode = L"{BILL}";
            ASSERT_TRUE(presenter.AddQd(qd, WaterFallback(), configs));
        }
        ASSERT_TRUE(presenter.Save());
    }
    bool selectedRow = false;
    int rowsAfterDelete = -1;
    koqdde::ui::ModalHookScope hook([&](CDialog& dialog) {
        auto* grid = dynamic_cast<CGridCtrl*>(dialog.GetDlgItem(kGrid));
        auto* table = grid ? dynamic_cast<QTableWidget*>(grid->widget()) : nullptr;
        if (!table)
            return IDCANCEL;
        dialog.widget()->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(dialog.widget()));
        // The head of row 2, the second bill: a real move, then the click where it rests.
        const QRect head = table->visualRect(table->model()->index(2, 0));
        PointAt(table->viewport(), head.center());
        QTest::qWait(100);
        QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, head.center());
        selectedRow =
            grid->GetSelectedCellRange() == CCellRange(2, 1, 2, grid->GetColumnCount() - 1);
        koqdde::ui::ClickDlgItem(dialog, kDeleteRows);
        rowsAfterDelete = grid->GetRowCount();
        dialog.SendMessage(WM_CLOSE);
        return dialog.GetEndResult();
    });
    CAutoConfigDlg workbench(CString(), nullptr);
    workbench.DoModal();
    EXPECT_TRUE(selectedRow);
    EXPECT_EQ(rowsAfterDelete, 2);
    CQdDeConfigPresenter presenter;
    ConfigNode* config = presenter.GetConfig(WaterFallback());
    ASSERT_NE(config, nullptr);
    ASSERT_EQ(config->GetQd().size(), 1u);
    EXPECT_EQ(config->GetQd()[0]->m_qd.strQdId, L"031001001001");
}

TEST(RealPointer, ThePickerStandsBesideTheWorkbenchAndADoubleClickedBillEntersTheGrid) {
    PointAtScreen(FarAway());
    TestHost host;
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    host.data.project.bill.code = L"{BILL}";
    host.AddLibrary(
        L"bills",
        "INSERT INTO library (key, value) VALUES ('kind', 'bill'), ('code', '{BILL}'),"
        " ('code_len', '9'), ('suffix_len', '3');\n"
        "INSERT INTO chapter (id, parent, position, code, name) VALUES (1, NULL, 0, '0310', "
        "'给排水');\nINSERT INTO bill (number, chapter, position, name, unit, formula) VALUES"
        " ('031001001', 1, 0, '镀锌钢管', 'm', 'L'), ('031001006', 1, 1, '塑料管', 'm', 'L');\n");

    QRect workbenchFrame, pickerFrame;
    int numberDialogs = 0;
    std::vector<CString> grid;
    koqdde::ui::ModalHookScope hook([&](CDialog& dialog) {
        if (dialog.GetTemplateId() != CAutoConfigDlg::IDD) {
            ++numberDialogs; // the bill number dialog: its proposal taken
            koqdde::ui::ClickDlgItem(dialog, IDOK);
            return dialog.GetEndResult();
        }
        QWidget* window = dialog.widget();
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window));
        QWidget* button = dialog.GetDlgItem(kPick)->widget();
        PointAt(button, button->rect().center());
        QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, button->rect().center());
        QWidget* picker = nullptr;
        for (QWidget* child : window->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (child->isWindow() && child->isVisible())
                picker = child;
        if (!picker || !QTest::qWaitForWindowExposed(picker)) {
            ADD_FAILURE() << "no picker shown";
            return IDCANCEL;
        }
        workbenchFrame = window->frameGeometry();
        pickerFrame = picker->frameGeometry();
        // A number typed into the search field, then the found row double-clicked where it lies.
        auto* search = picker->findChild<QLineEdit*>(QStringLiteral("pickerSearch"));
        auto* items = picker->findChild<QTreeWidget*>(QStringLiteral("pickerItems"));
        if (!search || !items) {
            ADD_FAILURE() << "picker without its search field or list";
            return IDCANCEL;
        }
        QTest::mouseClick(search, Qt::LeftButton);
        QTest::keyClicks(search, QStringLiteral("031001006"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return items->topLevelItemCount() == 1; }, 2000));
        if (items->topLevelItemCount() == 1) {
            const QRect row = items->visualItemRect(items->topLevelItem(0));
            PointAt(items->viewport(), row.center());
            // The first click of the pair, then the second, which the view takes as a double.
            QTest::mouseClick(items->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
            QTest::mouseDClick(items->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
        }
        auto* table = dynamic_cast<CGridCtrl*>(dialog.GetDlgItem(kGrid));
        for (int r = 1; table && r < table->GetRowCount(); ++r)
            grid.push_back(table->GetItemText(r, 1));
        dialog.SendMessage(WM_CLOSE);
        return dialog.GetEndResult();
    });
    CAutoConfigDlg workbench(CString(), nullptr);
    workbench.DoModal();
    EXPECT_EQ(pickerFrame.left(), workbenchFrame.right() + 1) << "at the workbench's right edge";
    EXPECT_EQ(pickerFrame.top(), workbenchFrame.top());
    EXPECT_EQ(numberDialogs, 1);
    EXPECT_EQ(grid, std::vector<CString>{L"031001006001"});
}
