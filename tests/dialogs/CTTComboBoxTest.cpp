#include "dialogs/CTTComboBox.h"
#include "support/ui/DialogProbe.h"

#include "ui/DialogTemplate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

namespace {

// A host window placed well inside the screen, so that an open list is never pushed back by
// the screen's edge.
struct Host {
    Host() {
        window.setGeometry(300, 100, 400, 300);
        window.show();
    }
    QWidget window;
};

// Wider than the screen: an open list grows to fit its entries, up to the screen's width.
const CString kLong = CString(L"镀锌钢管螺纹连接公称直径不大于五十毫米的室内给水管道") +
                      L"，采用热浸镀锌钢管，丝扣连接，含管件安装及水压试验、消毒冲洗" +
                      L"，穿墙及楼板处设钢套管，明装部分刷银粉漆两道，暗装部分刷沥青漆两道";
const CString kShort = L"钢";

// Counts the tip's appearances, so that a tip shown and hidden at once is caught.
class ShowCounter : public QObject {
public:
    explicit ShowCounter(QObject* target) { target->installEventFilter(this); }
    int shows = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Show)
            ++shows;
        return false;
    }
};

void SendMouse(QWidget* target, QEvent::Type type, QPoint pos) {
    QMouseEvent event(type, QPointF(pos), target->mapToGlobal(QPointF(pos)), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

} // namespace

TEST(CTTComboBox, ListTipShowsOnlyTextsThatDontFitOncePerLine) {
    Host host;
    CTTComboBox box;
    box.Attach(koqdde::test::MakeComboBox(&host.window, 10, 30, false));
    box.AddString(kShort);
    box.AddString(kLong + kLong); // the widest: the open list can't grow to it
    // Texts just longer and just shorter than the visible line, both narrower than the widest.
    box.UserDropDown();
    const int lineWidth = box.GetListItemRect(0).Width();
    box.UserCloseUp();
    ASSERT_GT(lineWidth, 0);
    const QFontMetrics metrics(QApplication::font("QStatusBar"));
    CString justLonger;
    while (metrics.horizontalAdvance(QString::fromStdWString(justLonger.GetString())) <= lineWidth)
        justLonger += L"管";
    const CString justShorter = justLonger.Left(justLonger.GetLength() - 2);
    box.AddString(justLonger);
    box.AddString(justShorter);
    ASSERT_NE(CTTComboBox::GetTipWnd(), nullptr);
    box.UserLeaveList(); // a line another test left behind doesn't count
    ShowCounter counter(CTTComboBox::GetTipWnd());

    // A text that fits: the tip stays hidden and never flashes up.
    box.UserHoverListItem(0);
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    box.UserHoverListItem(3);
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(counter.shows, 0);

    box.UserHoverListItem(2);
    ASSERT_TRUE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetTipText(), justLonger);
    EXPECT_EQ(CTTComboBox::GetLastItem(), 2);
    EXPECT_EQ(counter.shows, 1);
    // It lies over the line, 2 pixels out on each side, and is as wide as the text needs.
    const CRect line = box.GetListItemRect(2);
    EXPECT_EQ(line.Width(), lineWidth) << "the visible line, not the widest entry";
    const QPoint lineOrigin = box.GetListWnd()->mapToGlobal(QPoint(line.left, line.top));
    const CRect tip = CTTComboBox::GetTipRect();
    EXPECT_EQ(tip.top, lineOrigin.y() - 2);
    EXPECT_EQ(tip.Width(),
              metrics.horizontalAdvance(QString::fromStdWString(justLonger.GetString())) + 4);

    // The timer takes the tip away; staying on the line brings nothing back.
    EXPECT_TRUE(CTTComboBox::IsTipTimerActive());
    EXPECT_TRUE(CTTComboBox::FireTipTimer());
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    EXPECT_FALSE(CTTComboBox::IsTipTimerActive());
    EXPECT_FALSE(CTTComboBox::FireTipTimer());
    box.UserHoverListItem(2);
    EXPECT_FALSE(CTTComboBox::IsTipVisible());

    // A new line shows its tip and starts the timer again.
    box.UserHoverListItem(1);
    EXPECT_TRUE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetTipText(), kLong + kLong);
    EXPECT_TRUE(CTTComboBox::IsTipTimerActive());

    // Leaving the list forgets the line, so the same line shows again on return.
    box.UserHoverListItem(2);
    box.UserLeaveList();
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetLastItem(), -1);
    box.UserHoverListItem(2);
    EXPECT_TRUE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetTipText(), justLonger);

    // A line that fits hides the tip of the one before.
    box.UserHoverListItem(0);
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    box.UserCloseUp();
}

TEST(CTTComboBox, BoxAndEditFieldShowTheirWholeText) {
    Host host;
    CTTComboBox list;
    list.Attach(koqdde::test::MakeComboBox(&host.window, 10, 30, false));
    CTTComboBox edit;
    edit.Attach(koqdde::test::MakeComboBox(&host.window, 60, 30, true));
    list.AddString(kShort);
    list.AddString(kLong);

    list.SetCurSel(0);
    list.UserHoverBox();
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    // One hover for each time the pointer comes in: resting on longer doesn't raise another.
    list.SetCurSel(1);
    list.UserHoverBox();
    EXPECT_FALSE(CTTComboBox::IsTipVisible());

    list.UserLeaveBox();
    list.UserHoverBox();
    ASSERT_TRUE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetTipText(), kLong);
    // Over the box: from its client corner (2 in, then 2 out) down to its bottom.
    const QPoint corner = list.widget()->mapToGlobal(QPoint(0, 0));
    const CRect tip = CTTComboBox::GetTipRect();
    EXPECT_EQ(tip.left, corner.x());
    EXPECT_EQ(tip.top, corner.y());
    EXPECT_EQ(tip.bottom, corner.y() + list.GetClientRect().Height());

    // Leaving the box hides the tip but keeps the list line the tip last stood for.
    list.UserHoverListItem(1);
    list.UserCloseUp();
    ASSERT_EQ(CTTComboBox::GetLastItem(), 1);
    list.UserLeaveBox();
    list.UserHoverBox();
    EXPECT_TRUE(CTTComboBox::IsTipVisible());
    list.UserLeaveBox();
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetLastItem(), 1);

    edit.UserType(kShort);
    edit.UserHoverEdit();
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    edit.UserType(kLong);
    edit.UserLeaveBox();
    edit.UserHoverEdit();
    ASSERT_TRUE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetTipText(), kLong);
    const QPoint editCorner = edit.GetEditWnd()->mapToGlobal(QPoint(0, 0));
    EXPECT_EQ(CTTComboBox::GetTipRect().left, editCorner.x() - 2);
    // Leaving the edit field forgets the list line as well.
    edit.UserLeaveBox();
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    EXPECT_EQ(CTTComboBox::GetLastItem(), -1);
}

TEST(CTTComboBox, DisabledEntriesCantBeClickedAndTheWheelStepsOverThemInTheArraysOrder) {
    Host host;
    CTTComboBox box;
    box.Attach(koqdde::test::MakeComboBox(&host.window, 10, 60, false));
    for (const wchar_t* text : {L"一", L"二", L"三", L"四", L"五"})
        box.AddString(text);
    box.SetCurSel(0);

    // Index, flag, then the answer and whether the entry is disabled after. A flag of 0 takes
    // an entry off the list, or puts it on when it isn't there.
    const int steps[][4] = {{-1, 1, 0, 0}, {5, 1, 0, 0}, {1, 1, 1, 1},
                            {1, 1, 1, 1},  {1, 0, 1, 0}, {1, 0, 1, 1}};
    for (const auto& [index, flag, answer, disabled] : steps) {
        EXPECT_EQ(box.SetItemDisabled(index, flag), answer) << index << " " << flag;
        EXPECT_EQ(box.IsItemDisabled(index), disabled != 0) << index << " " << flag;
    }

    // A click on the disabled line, by the list's own call or by the mouse itself, leaves the
    // list open and the selection as it was.
    box.UserClickListItem(1);
    EXPECT_TRUE(box.GetDroppedState());
    EXPECT_EQ(box.GetCurSel(), 0);
    QWidget* viewport = qobject_cast<QComboBox*>(box.widget())->view()->viewport();
    const CPoint center = box.GetListItemRect(1).CenterPoint();
    for (QEvent::Type type :
         {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick})
        SendMouse(viewport, type, QPoint(center.x, center.y));
    EXPECT_TRUE(box.GetDroppedState());
    EXPECT_EQ(box.GetCurSel(), 0);
    // Other lines are chosen as usual.
    box.UserClickListItem(2);
    EXPECT_FALSE(box.GetDroppedState());
    EXPECT_EQ(box.GetCurSel(), 2);

    box.SetCurSel(0);
    box.UserWheel(-120); // down: onto 1, which is passed
    EXPECT_EQ(box.GetCurSel(), 2);
    box.UserWheel(120); // up: onto 1 again, passed the other way
    EXPECT_EQ(box.GetCurSel(), 0);
    box.UserWheel(-120);
    box.UserWheel(-120);
    EXPECT_EQ(box.GetCurSel(), 3) << "entries that can be chosen are stepped one at a time";

    // A run of two is left only when the array meets them in the wheel's order.
    box.SetItemDisabled(2, 1); // array 1, 2
    box.SetCurSel(0);
    box.UserWheel(-120);
    EXPECT_EQ(box.GetCurSel(), 3);
    box.UserWheel(120); // up from 3 lands on 2; the array has 1 before 2, so 1 stays
    EXPECT_EQ(box.GetCurSel(), 1);
}

TEST(CTTComboBox, BoxesShareOneTipThatGoesWithTheLastOfThemAndBoxesWithoutTipsHaveNone) {
    Host host;
    {
        auto first = std::make_unique<CTTComboBox>();
        first->Attach(koqdde::test::MakeComboBox(&host.window, 10, 30, false));
        CTTComboBox second;
        second.Attach(koqdde::test::MakeComboBox(&host.window, 60, 30, false));
        first->AddString(kLong);
        second.AddString(kLong + L"乙");

        first->UserHoverListItem(0);
        QWidget* tip = CTTComboBox::GetTipWnd();
        ASSERT_TRUE(CTTComboBox::IsTipVisible());
        first->UserLeaveList();
        first->UserCloseUp();
        // The other box reuses the same window: the first box's tip moves over.
        second.UserHoverListItem(0);
        EXPECT_EQ(CTTComboBox::GetTipWnd(), tip);
        EXPECT_EQ(CTTComboBox::GetTipText(), kLong + L"乙");
        second.UserCloseUp();

        first.reset();
        ASSERT_EQ(CTTComboBox::GetTipWnd(), tip) << "kept for the box still there";
        second.UserLeaveList();
        second.UserHoverListItem(0);
        EXPECT_TRUE(CTTComboBox::IsTipVisible());
        second.UserCloseUp();
    }
    EXPECT_EQ(CTTComboBox::GetTipWnd(), nullptr) << "the last box takes the tip with it";

    CTTComboBox plain;
    plain.SetTipEnabled(0);
    plain.Attach(koqdde::test::MakeComboBox(&host.window, 10, 30, false));
    plain.SetTipEnabled(1); // too late: the box was bound without tips
    plain.AddString(kLong);
    plain.AddString(kShort);
    plain.SetItemDisabled(0, 1);
    plain.UserHoverListItem(0);
    EXPECT_FALSE(CTTComboBox::IsTipVisible());
    // Without its hooks the list lets every click through.
    plain.UserClickListItem(0);
    EXPECT_EQ(plain.GetCurSel(), 0);
}

TEST(CTTComboBox, OpenListIsShiftedByItsAlignment) {
    Host host;
    CTTComboBox box;
    box.Attach(koqdde::test::MakeComboBox(&host.window, 10, 40, false));
    box.AddString(kShort);

    auto popupX = [&](int align) {
        box.SetDropAlign(align);
        box.UserDropDown();
        const int x = box.GetListWnd()->window()->x();
        box.UserCloseUp();
        return x;
    };
    // As wide as the box: no shift, whichever way it is aligned.
    const int left = popupX(CTTComboBox::kAlignLeft);
    EXPECT_EQ(popupX(CTTComboBox::kAlignRight), left);
    EXPECT_EQ(popupX(CTTComboBox::kAlignCenter), left);

    // Wider than the box: right edges together, or centred.
    box.GetListWnd()->setMinimumWidth(box.GetWindowRect().Width() + 61);
    const int wideLeft = popupX(CTTComboBox::kAlignLeft);
    box.UserDropDown();
    const int extra = box.GetDroppedWidth() - box.GetWindowRect().Width();
    box.UserCloseUp();
    ASSERT_GT(extra, 0);
    EXPECT_EQ(popupX(CTTComboBox::kAlignRight), wideLeft - extra);
    EXPECT_EQ(popupX(CTTComboBox::kAlignCenter), wideLeft - extra / 2);
    EXPECT_EQ(popupX(7), wideLeft) << "an unknown alignment doesn't shift";
}
