#pragma once
// The workbench as the desktop program shows it: the module's workbench with two buttons of the
// program's own at the end of its top row, "规则检查" and "试算", which open the lint panel and
// the trial window as tool windows beside it. The module's workbench itself is left as a host
// gets it.
//
// The buttons' object names: "desktopLint", "desktopTrial".

#include "apps/workbench/LintPanel.h"
#include "apps/workbench/TrialWindow.h"
#include "workbench/CAutoConfigDlg.h"

#include <QPointer>

#include <utility>
#include <vector>

// What the program opens with the workbench, from its command line.
struct SideWindows {
    bool lint = false;
    bool trial = false;
    // Attribute values the trial window starts with, as the user would type them.
    std::vector<std::pair<CString, CString>> values;
};

class DesktopWorkbench : public CAutoConfigDlg {
public:
    explicit DesktopWorkbench(SideWindows open = {});

    // Open the window (made on first use), put it in front and bring it up to date.
    LintPanel* OpenLintPanel();
    TrialWindow* OpenTrialWindow();

protected:
    BOOL OnInitDialog() override;

private:
    void PlaceBeside(QWidget* window, int step);

    SideWindows m_open;
    QPointer<LintPanel> m_lint;
    QPointer<TrialWindow> m_trial;
};

// Runs the desktop program's workbench on the project's current configuration, as the facade's
// StartQdDeConfig runs the module's.
void RunDesktopWorkbench(const SideWindows& open);
