#include "apps/workbench/DesktopWorkbench.h"

#include <QPushButton>

DesktopWorkbench::DesktopWorkbench(SideWindows open)
    : CAutoConfigDlg(CString(), nullptr), m_open(std::move(open)) {}

BOOL DesktopWorkbench::OnInitDialog() {
    const BOOL result = CAutoConfigDlg::OnInitDialog();
    // The top row has room right of "从云盘导入": the program's buttons follow it there, alike
    // in size and spacing.
    CWnd* last = GetDlgItem(AutoConfigIds::kImportFromCloud);
    CWnd* before = GetDlgItem(AutoConfigIds::kSaveFileAs);
    if (last && last->widget() && before && before->widget()) {
        const QRect at = last->widget()->geometry();
        const int step = at.left() - before->widget()->geometry().left();
        const int width = before->widget()->width();
        auto* lint = new QPushButton(QStringLiteral("规则检查"), widget());
        lint->setAutoDefault(false);
        lint->setObjectName(QStringLiteral("desktopLint"));
        lint->setGeometry(at.right() + 1 + (step - width), at.top(), width, at.height());
        auto* trial = new QPushButton(QStringLiteral("试算"), widget());
        trial->setAutoDefault(false);
        trial->setObjectName(QStringLiteral("desktopTrial"));
        trial->setGeometry(lint->geometry().translated(step, 0));
        QObject::connect(lint, &QPushButton::clicked, widget(), [this] { OpenLintPanel(); });
        QObject::connect(trial, &QPushButton::clicked, widget(), [this] { OpenTrialWindow(); });
    }
    if (m_open.lint)
        OpenLintPanel();
    if (m_open.trial) {
        TrialWindow* window = OpenTrialWindow();
        for (const auto& [attribute, value] : m_open.values)
            window->GiveValue(attribute, value);
    }
    return result;
}

// Tool windows start at the workbench's right edge, each a step lower than the one before so
// that both title bars show.
void DesktopWorkbench::PlaceBeside(QWidget* window, int step) {
    const CRect frame = GetWindowRect();
    window->move(frame.right, frame.top + step * 32);
}

LintPanel* DesktopWorkbench::OpenLintPanel() {
    if (!m_lint) {
        m_lint = new LintPanel(*m_pPresenter, *this, widget());
        PlaceBeside(m_lint, 0);
    } else {
        m_lint->Recheck();
    }
    m_lint->show();
    m_lint->raise();
    return m_lint;
}

TrialWindow* DesktopWorkbench::OpenTrialWindow() {
    if (!m_trial) {
        m_trial = new TrialWindow(*m_pPresenter, GetSmallCategoryPath(), widget());
        PlaceBeside(m_trial, 1);
    } else {
        m_trial->Evaluate();
    }
    m_trial->show();
    m_trial->raise();
    return m_trial;
}

void RunDesktopWorkbench(const SideWindows& open) {
    DesktopWorkbench workbench(open);
    workbench.DoModal();
}
