#include "apps/workbench/LintPanel.h"

#include "FindingText.h"

#include "rules/Linter.h"
#include "ui/QtString.h"
#include "workbench/CAutoConfigDlg.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

using koqdde::ui::FromQString;
using koqdde::ui::ToQString;

namespace {

// Where a row's finding points: its category path, and its configuration's id (0: none).
constexpr int kCategoryRole = Qt::UserRole;
constexpr int kConfigRole = Qt::UserRole + 1;

QString Utf8(const std::string& text) {
    return QString::fromStdString(text);
}

QString PlaceText(const Finding& finding) {
    if (finding.configId == 0)
        return QString();
    return QStringLiteral("#%1（配置 %2）").arg(finding.position).arg(finding.configId);
}

} // namespace

LintPanel::LintPanel(CQdDeConfigPresenter& presenter, CAutoConfigDlg& workbench, QWidget* parent)
    : QWidget(parent, Qt::Tool), m_presenter(presenter), m_workbench(workbench) {
    setWindowTitle(QStringLiteral("规则检查"));
    auto* layout = new QVBoxLayout(this);

    m_findings = new QTreeWidget(this);
    m_findings->setObjectName(QStringLiteral("lintFindings"));
    m_findings->setRootIsDecorated(false);
    m_findings->setUniformRowHeights(true);
    m_findings->setSelectionMode(QAbstractItemView::SingleSelection);
    m_findings->setHeaderLabels({QStringLiteral("级别"), QStringLiteral("类别"),
                                 QStringLiteral("位置"), QStringLiteral("原因")});
    m_findings->header()->setStretchLastSection(true);
    layout->addWidget(m_findings, 1);

    auto* row = new QHBoxLayout;
    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("lintSummary"));
    row->addWidget(m_summary, 1);
    auto* recheck = new QPushButton(QStringLiteral("重新检查"), this);
    recheck->setObjectName(QStringLiteral("lintRecheck"));
    row->addWidget(recheck);
    layout->addLayout(row);

    connect(recheck, &QPushButton::clicked, this, [this] { Recheck(); });
    // A click, or Enter and a double-click (activation), leads to the finding's place.
    connect(m_findings, &QTreeWidget::itemClicked, this,
            [this](QTreeWidgetItem* item) { Select(item); });
    connect(m_findings, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* item) { Select(item); });

    resize(640, 420);
    Recheck();
}

void LintPanel::Recheck() {
    const std::vector<Finding> findings = LintOpenFile(m_presenter);
    m_findings->clear();
    int errors = 0;
    for (const Finding& finding : findings) {
        const bool error = finding.severity == Severity::kError;
        errors += error ? 1 : 0;
        auto* item = new QTreeWidgetItem(m_findings);
        item->setIcon(0, style()->standardIcon(error ? QStyle::SP_MessageBoxCritical
                                                     : QStyle::SP_MessageBoxWarning));
        item->setText(0, Utf8(SeverityText(finding.severity)));
        item->setText(1, ToQString(finding.category));
        item->setText(2, PlaceText(finding));
        item->setText(3, Utf8(FindingText(finding)));
        item->setToolTip(3, item->text(3));
        item->setData(0, kCategoryRole, ToQString(finding.category));
        item->setData(0, kConfigRole, finding.configId);
    }
    for (int column = 0; column < 3; ++column)
        m_findings->resizeColumnToContents(column);
    const int warnings = static_cast<int>(findings.size()) - errors;
    m_summary->setText(findings.empty()
                           ? QStringLiteral("未发现问题")
                           : QStringLiteral("%1 个错误，%2 个警告").arg(errors).arg(warnings));
}

void LintPanel::Select(const QTreeWidgetItem* row) {
    if (!row)
        return;
    m_workbench.SelectConfiguration(FromQString(row->data(0, kCategoryRole).toString()),
                                    row->data(0, kConfigRole).toInt());
}
