#include "apps/workbench/TrialWindow.h"

#include "VerdictText.h"

#include "host/HostData.h"
#include "model/ConditionNode.h"
#include "model/ConfigNode.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "presenter/ConditionRules.h"
#include "rules/Matcher.h"
#include "ui/QtString.h"

#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <map>

using koqdde::ui::FromQString;
using koqdde::ui::ToQString;

namespace {

// The category list's entries carry the category's ids and its full path.
constexpr int kPathRole = Qt::UserRole;
constexpr int kSpecRole = Qt::UserRole + 1;
constexpr int kLargeRole = Qt::UserRole + 2;
constexpr int kSmallRole = Qt::UserRole + 3;

const QColor kWinnerBackground(0xCD, 0xEB, 0xC5);

// The category's attributes as the condition editor offers them, then those the conditions
// test that the editor does not offer.
std::vector<ConditionAttribute> Attributes(const CString& path,
                                           const std::vector<ConfigNode*>& configs) {
    std::vector<ConditionAttribute> attributes = ConditionAttributes(path);
    for (const CString& name : TestedAttributes(configs))
        if (std::none_of(attributes.begin(), attributes.end(),
                         [&](const ConditionAttribute& a) { return a.name == name; }))
            attributes.push_back(
                {name, CString(), CString(), ConditionAttribute::Source::kWholeComponent});
    return attributes;
}

void Emphasise(QTreeWidgetItem* item) {
    QFont font = item->font(0);
    font.setBold(true);
    for (int column = 0; column < item->columnCount(); ++column) {
        item->setFont(column, font);
        item->setBackground(column, kWinnerBackground);
    }
}

QTreeWidget* MakeList(QWidget* parent, const QString& name, const QStringList& headers) {
    auto* list = new QTreeWidget(parent);
    list->setObjectName(name);
    list->setHeaderLabels(headers);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setUniformRowHeights(true);
    list->header()->setStretchLastSection(true);
    return list;
}

void FitColumns(QTreeWidget* list) {
    for (int column = 0; column + 1 < list->columnCount(); ++column)
        list->resizeColumnToContents(column);
}

} // namespace

TrialWindow::TrialWindow(CQdDeConfigPresenter& presenter, const CString& category, QWidget* parent)
    : QWidget(parent, Qt::Tool), m_presenter(presenter) {
    setWindowTitle(QStringLiteral("试算"));
    auto* layout = new QVBoxLayout(this);

    auto* top = new QFormLayout;
    m_category = new QComboBox(this);
    m_category->setObjectName(QStringLiteral("trialCategory"));
    top->addRow(QStringLiteral("构件类别"), m_category);
    layout->addLayout(top);

    m_formHolder = new QVBoxLayout;
    layout->addLayout(m_formHolder);

    auto* split = new QSplitter(Qt::Vertical, this);
    m_configs = MakeList(split, QStringLiteral("trialConfigs"),
                         {QStringLiteral("序号"), QStringLiteral("条件"), QStringLiteral("结果")});
    auto* lower = new QWidget(split);
    auto* lowerLayout = new QVBoxLayout(lower);
    lowerLayout->setContentsMargins(0, 0, 0, 0);
    m_winner = new QLabel(lower);
    m_winner->setObjectName(QStringLiteral("trialWinner"));
    lowerLayout->addWidget(m_winner);
    m_items = MakeList(lower, QStringLiteral("trialItems"),
                       {QStringLiteral("编号"), QStringLiteral("名称"), QStringLiteral("单位"),
                        QStringLiteral("计算式")});
    lowerLayout->addWidget(m_items, 1);
    split->setSizes({240, 180});
    layout->addWidget(split, 1);

    FillCategories(category);
    FillAttributes();
    Evaluate();
    connect(m_category, &QComboBox::currentIndexChanged, this, [this] {
        FillAttributes();
        Evaluate();
    });
    resize(560, 640);
}

void TrialWindow::FillCategories(const CString& chosen) {
    const HostData* host = CurrentHostData();
    const HostSpecialty* spec = host ? host->FindSpec(host->project.currentSpec) : nullptr;
    if (!spec)
        return;
    for (const HostLargeCategory& large : spec->larges)
        for (const HostSmallCategory& small : large.smalls) {
            const CString path = spec->name + L"\\" + large.name + L"\\" + small.name;
            m_category->addItem(ToQString(large.name + L"\\" + small.name));
            const int row = m_category->count() - 1;
            m_category->setItemData(row, ToQString(path), kPathRole);
            m_category->setItemData(row, spec->id, kSpecRole);
            m_category->setItemData(row, large.id, kLargeRole);
            m_category->setItemData(row, small.id, kSmallRole);
        }
    const int found = m_category->findData(ToQString(chosen), kPathRole);
    m_category->setCurrentIndex(found >= 0 ? found : 0);
}

bool TrialWindow::ChosenCategory(CPath& path, CString& name) const {
    const int row = m_category->currentIndex();
    if (row < 0)
        return false;
    path.SpecId = m_category->itemData(row, kSpecRole).toInt();
    path.LMemberId = m_category->itemData(row, kLargeRole).toInt();
    path.SMemberId = m_category->itemData(row, kSmallRole).toInt();
    name = FromQString(m_category->itemData(row, kPathRole).toString());
    return true;
}

std::vector<CString> TrialWindow::FieldNames() const {
    std::vector<CString> names;
    for (const auto& field : m_fields)
        names.push_back(field.first);
    return names;
}

void TrialWindow::FillAttributes() {
    std::map<CString, QString> given;
    for (const auto& [name, field] : m_fields)
        given[name] = field->currentText();
    m_fields.clear();
    delete m_form;
    m_form = new QWidget(this);
    // Two attributes a row, so that a category's dozen leave room for the configurations.
    auto* form = new QGridLayout(m_form);
    form->setContentsMargins(0, 0, 0, 0);
    form->setColumnStretch(1, 1);
    form->setColumnStretch(3, 1);
    m_formHolder->addWidget(m_form);

    CPath path;
    CString category;
    if (!ChosenCategory(path, category))
        return;
    std::vector<ConfigNode*> configs;
    m_presenter.GetConfig(path, configs);
    const std::vector<ConditionAttribute> attributes = Attributes(category, configs);
    for (const ConditionAttribute& attribute : attributes) {
        auto* field = new QComboBox(m_form);
        field->setObjectName(QStringLiteral("trialValue"));
        field->setAccessibleName(ToQString(attribute.name));
        field->setEditable(true);
        field->setInsertPolicy(QComboBox::NoInsert);
        CStringArray values;
        if (ValueListOf(attribute, attributes, values))
            for (int i = 0; i < values.GetSize(); ++i)
                field->addItem(ToQString(values.GetAt(i)));
        // Nothing given yet: the component lacks the attribute.
        field->setCurrentIndex(-1);
        field->setEditText(given.count(attribute.name) ? given[attribute.name] : QString());
        connect(field, &QComboBox::editTextChanged, this, [this] { Evaluate(); });
        const int at = static_cast<int>(m_fields.size());
        form->addWidget(new QLabel(ToQString(attribute.name), m_form), at / 2, (at % 2) * 2);
        form->addWidget(field, at / 2, (at % 2) * 2 + 1);
        m_fields.emplace_back(attribute.name, field);
    }
}

bool TrialWindow::GiveValue(const CString& attribute, const CString& value) {
    for (const auto& [name, field] : m_fields)
        if (name == attribute) {
            field->setEditText(ToQString(value));
            return true;
        }
    return false;
}

void TrialWindow::Evaluate() {
    m_configs->clear();
    m_items->clear();
    CPath path;
    CString category;
    if (!ChosenCategory(path, category)) {
        m_winner->clear();
        return;
    }
    std::vector<ConfigNode*> configs;
    m_presenter.GetConfig(path, configs);
    Component component;
    for (const auto& [name, field] : m_fields)
        if (!field->currentText().isEmpty())
            component[name] = FromQString(field->currentText());
    const MatchResult result = Match(configs, component);
    const ConfigNode* winner = result.Winner();

    for (size_t i = 0; i < configs.size(); ++i) {
        const ConfigNode& config = *configs[i];
        const bool tried = i < result.trials.size();
        auto* row = new QTreeWidgetItem(m_configs);
        row->setText(0, QStringLiteral("#%1").arg(i + 1));
        row->setText(1, ToQString(config.GetConditionString()));
        row->setText(2, &config == winner ? QStringLiteral("套用")
                        : tried           ? QStringLiteral("不符")
                                          : QStringLiteral("未比较"));
        if (&config == winner)
            Emphasise(row);
        if (config.IfDefault())
            continue;
        const std::vector<ConditionNode*> conditions = config.GetCondition();
        for (size_t k = 0; k < conditions.size(); ++k) {
            auto* line = new QTreeWidgetItem(row);
            line->setText(1, ToQString(conditions[k]->GetConditionString()));
            if (tried && k < result.trials[i].conditions.size()) {
                const ConditionTrial& trial = result.trials[i].conditions[k];
                line->setText(2, (trial.Held() ? QStringLiteral("✓ ") : QStringLiteral("✗ ")) +
                                     QString::fromStdString(VerdictText(trial)));
            }
        }
        row->setExpanded(tried);
    }
    FitColumns(m_configs);

    if (!winner) {
        m_winner->setText(QStringLiteral("没有配置套用：该类别缺少默认配置"));
        return;
    }
    m_winner->setText(QStringLiteral("套用 #%1 的清单定额：").arg(result.trials.size()));
    for (const QdNode* qd : winner->GetQd()) {
        auto* bill = new QTreeWidgetItem(
            m_items, {ToQString(qd->m_qd.strQdId), ToQString(qd->m_qd.strName),
                      ToQString(qd->m_qd.strUnit), ToQString(qd->m_qd.strFormula)});
        for (const DeNode* de : qd->GetDe())
            new QTreeWidgetItem(bill,
                                {ToQString(de->m_de.strDeId), ToQString(de->m_de.strName),
                                 ToQString(de->m_de.strUnit), ToQString(de->m_de.strFormula)});
        bill->setExpanded(true);
    }
    for (const DeNode* de : winner->GetDe())
        new QTreeWidgetItem(m_items, {ToQString(de->m_de.strDeId), ToQString(de->m_de.strName),
                                      ToQString(de->m_de.strUnit), ToQString(de->m_de.strFormula)});
    FitColumns(m_items);
}

// Back from the workbench, whose edits may have changed the configurations or the attributes
// their conditions test.
void TrialWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow())
        return;
    CPath path;
    CString category;
    if (ChosenCategory(path, category)) {
        std::vector<ConfigNode*> configs;
        m_presenter.GetConfig(path, configs);
        std::vector<CString> names;
        for (const ConditionAttribute& attribute : Attributes(category, configs))
            names.push_back(attribute.name);
        if (names != FieldNames())
            FillAttributes();
    }
    Evaluate();
}
