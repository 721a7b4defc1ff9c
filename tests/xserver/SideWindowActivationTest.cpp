// The trial window beside the workbench reads the configurations again when the user comes back
// to it: window activation is the window system's, so this runs under the real X server.

#include "apps/workbench/DesktopWorkbench.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "support/TestHost.h"
#include "ui/CDialog.h"
#include "ui/ModalHook.h"

#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

TEST(XServerSideWindows, TrialTakesTheWorkbenchsEditWhenTheUserComesBackToIt) {
    TestHost host;
    host.Add(L"给排水", L"管道", L"给水管", 1, 101);
    host.data.catalog[0].larges[0].smalls[0].attributes = {{L"GDCZ", L"材质", L"材质", L"CZ"}};
    host.data.dropLists[L"材质"] = {L"镀锌钢管", L"PP-R管"};
    {
        CQdDeConfigPresenter presenter;
        int id = -1;
        CPath config;
        config.SpecId = 2;
        config.LMemberId = 1;
        config.SMemberId = 101;
        ASSERT_TRUE(presenter.AddConfig(config, id));
        config.ConfigId = id;
        ASSERT_TRUE(presenter.AddCondition(
            config, {L"材质", L"1", L"＝", L"", L"", L"镀锌钢管", L"", L""}));
        ASSERT_TRUE(presenter.Save());
    }
    auto results = [](QTreeWidget* configs) {
        QStringList texts;
        for (int i = 0; i < configs->topLevelItemCount(); ++i)
            texts << configs->topLevelItem(i)->text(2);
        return texts;
    };
    bool ran = false;
    koqdde::ui::ModalHookScope hook([&](CDialog& dialog) {
        ran = true;
        QWidget* workbench = dialog.widget();
        workbench->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(workbench));
        workbench->findChild<QPushButton*>(QStringLiteral("desktopTrial"))->click();
        auto* configs = workbench->findChild<QTreeWidget*>(QStringLiteral("trialConfigs"));
        auto* material = workbench->findChild<QComboBox*>(QStringLiteral("trialValue"));
        EXPECT_TRUE(configs && material);
        if (!configs || !material)
            return IDCANCEL;
        QWidget* trial = configs->window();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(trial));
        material->setCurrentIndex(material->findText(QStringLiteral("镀锌钢管")));
        EXPECT_EQ(results(configs), (QStringList{"套用", "未比较"}));

        // In the workbench the user deletes the configuration the trial found (row 1, selected
        // as the workbench opened), then goes back to the trial.
        // A tool window shares its parent's activation, so the wait is for the window the
        // application has made active, not for isActiveWindow().
        workbench->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == workbench; }));
        koqdde::ui::ClickDlgItem(dialog, AutoConfigIds::kDelConfig);
        trial->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == trial; }));
        EXPECT_EQ(results(configs), QStringList{"套用"});
        return IDCANCEL;
    });
    DesktopWorkbench workbench;
    workbench.DoModal();
    EXPECT_TRUE(ran);
}
