// Dialogs from templates: geometry from dialog units, data exchange, the ways a dialog ends,
// and the modal hook answering a dialog opened from inside another.

#include "DemoDialog.h"

#include "ui/ModalHook.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QLineEdit>
#include <QRawFont>
#include <QScreen>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <stdexcept>

using koqdde::test::DemoDialog;
using koqdde::test::RunModal;
using namespace koqdde::ui;

TEST(UiTemplate, ParsesTheLineFormatAndReportsTheFaultyLine) {
    CString error;
    auto tmpl = ParseDialogTemplate("# demo\n"
                                    "DIALOG IDD_X 42 100 50\n"
                                    "CAPTION \"Say \\\"hi\\\"\"\n"
                                    "STYLE popup Caption\n"
                                    "CONTROL 7 combobox \"\" 1 2 30 40 droplist Sorted\n"
                                    "ITEM 7 \"a b\"\n"
                                    "CONTROL -1 static \"名称(&N):\" 5 6 7 8 # trailing note\n",
                                    &error);
    ASSERT_TRUE(tmpl) << ToUtf8(error);
    EXPECT_EQ(tmpl->name, CString(L"IDD_X"));
    EXPECT_EQ(tmpl->id, 42);
    EXPECT_EQ(tmpl->caption, CString(L"Say \"hi\""));
    EXPECT_TRUE(tmpl->HasStyle(L"caption"));
    ASSERT_EQ(tmpl->controls.size(), 2u);
    const ControlTemplate* combo = tmpl->FindControl(7);
    ASSERT_NE(combo, nullptr);
    EXPECT_TRUE(combo->HasStyle(L"sorted"));
    EXPECT_FALSE(combo->HasStyle(L"dropdown"));
    ASSERT_EQ(combo->items.GetSize(), 1);
    EXPECT_EQ(combo->items[0], CString(L"a b"));
    EXPECT_EQ(tmpl->controls[1].text, CString(L"名称(&N):"));
    EXPECT_EQ(tmpl->controls[1].cy, 8);

    EXPECT_FALSE(ParseDialogTemplate("DIALOG A 1 2 3\nCONTROL 1 slider \"\" 0 0 1 1\n", &error));
    EXPECT_EQ(error, CString(L"line 2: unknown control class slider"));
    EXPECT_FALSE(ParseDialogTemplate("CAPTION \"x\"\n", &error));
    EXPECT_EQ(error, CString(L"line 1: DIALOG must come first"));
    EXPECT_FALSE(ParseDialogTemplate("DIALOG A 1 2 3\nITEM 5 \"x\"\n", &error));
    EXPECT_FALSE(ParseDialogTemplate("DIALOG A 1 2 3\nCAPTION \"open\n", &error));
    EXPECT_EQ(error, CString(L"line 2: unclosed quote"));
}

TEST(UiTemplate, DialogUnitsBecomePixelsByTheFontsAverageCharacter) {
    // MulDiv rounds half away from zero.
    EXPECT_EQ(MulDiv(3, 7, 4), 5); // 5.25
    EXPECT_EQ(MulDiv(1, 6, 4), 2); // 1.5
    EXPECT_EQ(MulDiv(-1, 6, 4), -2);
    EXPECT_EQ(MulDiv(5, 5, 0), -1);

    auto tmpl = LoadDialogTemplate(CString(L"IDD_UI_DEMO"));
    ASSERT_TRUE(tmpl);
    EXPECT_EQ(LoadDialogTemplate(3900)->name, CString(L"IDD_UI_DEMO"));
    EXPECT_FALSE(LoadDialogTemplate(CString(L"IDD_NOT_THERE")));

    const QFont font = DialogFont(*tmpl);
    EXPECT_EQ(font.pointSize(), 9);
    EXPECT_EQ(QFontInfo(font).family(), QStringLiteral("DejaVu Sans"));
    // Chinese text is drawn in the CJK face behind it.
    EXPECT_EQ(QRawFont::fromFont(font, QFontDatabase::SimplifiedChinese).familyName(),
              QStringLiteral("Noto Sans CJK SC"));
    const DialogBaseUnits units = MeasureBaseUnits(font);
    // The units of a 9-point UI face: an average letter of 6 or 7 pixels, a line of 13 or 14,
    // not the tall line of the CJK face.
    EXPECT_GE(units.baseX, 6);
    EXPECT_LE(units.baseX, 7);
    EXPECT_GE(units.baseY, 13);
    EXPECT_LE(units.baseY, 14);

    // The workbench, the largest dialog, fits a 1366 by 768 laptop screen with room for its
    // title bar and a panel (1366 by 728 in all).
    auto workbench = LoadDialogTemplate(CString(L"IDD_AUTOCONFIG"));
    ASSERT_TRUE(workbench);
    const DialogBaseUnits own = MeasureBaseUnits(DialogFont(*workbench));
    EXPECT_LE(own.ToPixelsX(workbench->cx), 1366);
    EXPECT_LE(own.ToPixelsY(workbench->cy) + 30, 728);

    DemoDialog dlg;
    RunModal(dlg, [&](CDialog& d) {
        auto x = [&](double du) { return static_cast<int>(std::lround(du * units.baseX / 4)); };
        auto y = [&](double du) { return static_cast<int>(std::lround(du * units.baseY / 8)); };
        EXPECT_EQ(d.GetClientRect(), CRect(0, 0, x(300), y(200)));
        // The list box at 10, 46, 80 x 60 dialog units.
        CRect rc;
        d.GetDlgItem(1005)->GetWindowRect(&rc);
        d.ScreenToClient(&rc);
        EXPECT_EQ(rc, CRect(x(10), y(46), x(10) + x(80), y(46) + y(60)));
        CRect mapped(10, 46, 90, 106);
        d.MapDialogRect(&mapped);
        EXPECT_EQ(mapped, rc);
    });
}

TEST(UiTemplate, StyleFlagsLimitTypingAndKeepTheSelectionShown) {
    QWidget parent;
    auto make = [&](const wchar_t* cls, std::vector<const wchar_t*> styles) {
        return koqdde::test::MakeControl(&parent, cls, 1, 0, 0, 40, 40, styles);
    };
    // A field without automatic scrolling takes no more typing than its width shows.
    auto* fixed = qobject_cast<QLineEdit*>(make(L"edit", {}));
    ASSERT_NE(fixed, nullptr);
    fixed->insert(QString(50, QLatin1Char('1')));
    EXPECT_LT(fixed->text().size(), 50);
    // Without "showselalways" an unfocused selection is drawn as plain text.
    for (const wchar_t* cls : {L"listview", L"treeview"}) {
        const QPalette hidden = make(cls, {})->palette();
        const QPalette shown = make(cls, {L"showselalways"})->palette();
        EXPECT_EQ(hidden.color(QPalette::Inactive, QPalette::Highlight),
                  hidden.color(QPalette::Inactive, QPalette::Base));
        EXPECT_NE(shown.color(QPalette::Inactive, QPalette::Highlight),
                  shown.color(QPalette::Inactive, QPalette::Base));
    }
}

TEST(UiDialog, InitBindsControlsAndOkEndsTheDialog) {
    DemoDialog dlg;
    const int result = RunModal(dlg, [&](CDialog& d) {
        EXPECT_EQ(dlg.initCalls, 1);
        EXPECT_TRUE(dlg.initSawBoundControls);
        EXPECT_EQ(d.GetWindowText(), CString(L"Demo"));
        EXPECT_TRUE(d.IsWindowVisible());
        // Template flags: hidden, disabled; a control without a member still answers.
        EXPECT_FALSE(dlg.readOnly.IsWindowVisible());
        EXPECT_TRUE(dlg.readOnly.IsReadOnly());
        CWnd* custom = d.GetDlgItem(1013);
        ASSERT_NE(custom, nullptr);
        EXPECT_FALSE(custom->IsWindowEnabled());
        EXPECT_EQ(custom->GetParent(), &d);
        EXPECT_EQ(d.GetDlgItem(1005), &dlg.list);
        EXPECT_EQ(d.GetDlgItem(4711), nullptr);
        EXPECT_TRUE(ClickDlgItem(d, IDOK));
        EXPECT_TRUE(dlg.IsEnded());
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_FALSE(dlg.IsWindow()); // the window goes with DoModal
    EXPECT_FALSE(dlg.list.IsWindow());
    EXPECT_EQ(dlg.list.GetCount(), 0); // calls on an unbound control do nothing
}

TEST(UiDialog, CancelAndTheCloseBoxReachOnCancel) {
    const std::function<void(CDialog&)> ways[] = {
        [](CDialog& d) { d.GetSafeHwnd()->close(); },
        [](CDialog& d) { ClickDlgItem(d, IDCANCEL); },
    };
    for (const auto& way : ways) {
        DemoDialog dlg;
        dlg.name = L"kept";
        EXPECT_EQ(RunModal(dlg,
                           [&](CDialog& d) {
                               dlg.edit.UserType(L"dropped");
                               way(d);
                           }),
                  IDCANCEL);
        EXPECT_TRUE(dlg.cancelled);
        EXPECT_EQ(dlg.name, CString(L"kept"));
        EXPECT_EQ(dlg.log.back(), "C2:0");
    }
    // Nothing ends it: the hook's answer is the result.
    DemoDialog open;
    EXPECT_EQ(RunModal(open, [](CDialog&) {}), -1);
    EXPECT_FALSE(open.cancelled);
    CDialog missing(CString(L"IDD_NOT_THERE"));
    EXPECT_EQ(missing.DoModal(), -1);
}

namespace {
// A dialog whose button opens a second dialog and takes over what was typed there.
class OuterDialog : public DemoDialog {
public:
    int innerResult = 0;
    CString innerName;

protected:
    BOOL OnCommand(UINT id, UINT code) override {
        if (id == 1000 && code == BN_CLICKED) {
            DemoDialog inner(this);
            innerResult = inner.DoModal();
            innerName = inner.name;
            return TRUE;
        }
        return DemoDialog::OnCommand(id, code);
    }
};
} // namespace

TEST(UiDialog, ModalHookAnswersANestedDialog) {
    OuterDialog outer;
    ModalHookScope hook([&](CDialog& d) {
        if (&d == &outer) {
            ClickDlgItem(d, 1000); // opens the inner dialog, answered by this same hook
            ClickDlgItem(d, IDOK);
        } else {
            EXPECT_EQ(d.GetParentWnd(), &outer);
            TypeDlgItem(d, 1002, L"内层");
            ClickDlgItem(d, IDOK);
        }
        return d.GetEndResult();
    });
    EXPECT_EQ(outer.DoModal(), IDOK);
    EXPECT_EQ(hook.Calls(), 2);
    EXPECT_EQ(outer.innerResult, IDOK);
    EXPECT_EQ(outer.innerName, CString(L"内层"));

    {
        // An inner scope wins while it lives; the outer one is back after it.
        ModalHookScope inner([](CDialog& d) {
            ClickDlgItem(d, IDCANCEL);
            return d.GetEndResult();
        });
        DemoDialog dlg;
        EXPECT_EQ(dlg.DoModal(), IDCANCEL);
        EXPECT_EQ(inner.Calls(), 1);
    }
    EXPECT_EQ(hook.Calls(), 2);
}

TEST(UiDialog, PrivateMessagesAndCenteringGoThroughTheWindow) {
    class MessageDialog : public DemoDialog {
    public:
        std::vector<LPARAM> received;

    protected:
        LRESULT WindowProc(UINT message, WPARAM w, LPARAM l) override {
            if (message == WM_USER + 80) {
                received.push_back(l);
                return 7;
            }
            return DemoDialog::WindowProc(message, w, l);
        }
    };
    MessageDialog dlg;
    RunModal(dlg, [&](CDialog& d) {
        EXPECT_EQ(d.SendMessage(WM_USER + 80, 3, 4), 7);
        EXPECT_EQ(dlg.received, std::vector<LPARAM>{4});

        // Without a parent, centred on the screen's free area.
        d.MoveWindow(CRect(10, 20, 10 + 300, 20 + 200));
        d.CenterWindow();
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const CRect placed = d.GetWindowRect();
        EXPECT_LE(std::abs(placed.left + placed.right - screen.left() * 2 - screen.width()), 1);
        EXPECT_LE(std::abs(placed.top + placed.bottom - screen.top() * 2 - screen.height()), 1);
    });
}

TEST(UiDialog, AnExceptionOfAHandlerInARealModalLoopEndsTheLoopAndLeavesDoModal) {
    // A real loop, no hook: the user's click arrives from Qt's event dispatch, which an
    // exception must not cross. The outer dialog's click opens the inner one.
    DemoDialog outer;
    DemoDialog inner;
    inner.onCommand = [](UINT id, UINT) {
        if (id == 1000)
            throw std::runtime_error("handler failed");
    };
    outer.onCommand = [&](UINT id, UINT) {
        if (id == 1000)
            inner.DoModal();
    };
    // Each loop clicks its own button once it runs.
    auto clickWhenShown = [](DemoDialog& dialog) {
        QTimer::singleShot(0, [&dialog] { ClickDlgItem(dialog, 1000); });
    };
    outer.onInit = [&] { clickWhenShown(outer); };
    inner.onInit = [&] { clickWhenShown(inner); };
    try {
        outer.DoModal();
        ADD_FAILURE() << "DoModal returned";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "handler failed");
    }
    EXPECT_FALSE(outer.IsWindow());
    EXPECT_FALSE(inner.IsWindow());
}
