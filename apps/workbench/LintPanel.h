#pragma once
// "规则检查": the lint's findings on the workbench's open configuration, in a tool window beside
// the workbench. Each row is one finding (级别, 类别, 位置, 原因); a click on a row selects its
// category and configuration in the workbench. The checks read the model as the workbench
// holds it, so an edit shows at the next "重新检查", before it is saved.
//
// Object names, for tests that act as a user: "lintFindings" (QTreeWidget, one top-level row
// per finding), "lintRecheck" (QPushButton), "lintSummary" (QLabel).

#include <QWidget>

class CAutoConfigDlg;
class CQdDeConfigPresenter;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

class LintPanel : public QWidget {
public:
    // A tool window of `parent` (the workbench's window), checked once on the spot.
    LintPanel(CQdDeConfigPresenter& presenter, CAutoConfigDlg& workbench, QWidget* parent);

    // Checks again and lists what is found now.
    void Recheck();

private:
    void Select(const QTreeWidgetItem* row);

    CQdDeConfigPresenter& m_presenter;
    CAutoConfigDlg& m_workbench;
    QTreeWidget* m_findings = nullptr;
    QLabel* m_summary = nullptr;
};
