// The workbench's condition editor: the attribute list, the value and range pages, and the
// condition list of the selected configuration.
#include "workbench/CAutoConfigDlg.h"

#include "host/QvKoProject/QvKoProject.h"
#include "host/ui/QvOptionKit/QvOptionKit.h"
#include "presenter/ConditionRules.h"
#include "ui/QtString.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFontMetrics>
#include <QStyle>

using namespace AutoConfigIds;

void CAutoConfigDlg::InitValueEditor() {
    UpdateData(FALSE);
    m_tabValue.InsertItem(0, L"取值");
    m_tabValue.InsertItem(1, L"范围");
    m_cmbEqualOp.AddString(ConditionOperator::kEqual);
    m_cmbEqualOp.AddString(ConditionOperator::kNotEqual);
    m_cmbEqualOp.SetCurSel(0);
    m_cmbRangeOp2.AddString(ConditionOperator::kBelow);
    m_cmbRangeOp2.AddString(ConditionOperator::kAtMost);
    m_cmbRangeOp2.SetCurSel(0);
    m_cmbRangeOp1.AddString(ConditionOperator::kAbove);
    m_cmbRangeOp1.AddString(ConditionOperator::kAtLeast);
    m_cmbRangeOp1.SetCurSel(0);
    m_cmbRangeOp1.ShowWindow(SW_HIDE);
    m_cmbRangeOp2.ShowWindow(SW_HIDE);
    m_cmbRange1.ShowWindow(SW_HIDE);
    m_cmbRange2.ShowWindow(SW_HIDE);
    m_tabValue.SetCurSel(0);
    m_tabValue.EnableWindow(TRUE);
    UpdateData(TRUE);
}

// The texts of the hidden page stay in their boxes; they are simply not read.
void CAutoConfigDlg::ShowValuePage() {
    int page = m_tabValue.GetCurSel();
    if (page == 0) {
        m_cmbEqualOp.ShowWindow(SW_SHOW);
        m_cmbValue.ShowWindow(SW_SHOW);
        m_cmbRangeOp1.ShowWindow(SW_HIDE);
        m_cmbRangeOp2.ShowWindow(SW_HIDE);
        m_cmbRange1.ShowWindow(SW_HIDE);
        m_cmbRange2.ShowWindow(SW_HIDE);
    } else if (page == 1) {
        m_cmbEqualOp.ShowWindow(SW_HIDE);
        m_cmbValue.ShowWindow(SW_HIDE);
        m_cmbRangeOp1.ShowWindow(SW_SHOW);
        m_cmbRangeOp2.ShowWindow(SW_SHOW);
        m_cmbRange1.ShowWindow(SW_SHOW);
        m_cmbRange2.ShowWindow(SW_SHOW);
    }
}

LRESULT CAutoConfigDlg::OnValueTabSelChange() {
    ShowValuePage();
    return 0;
}

void CAutoConfigDlg::FillAttributeList() {
    CString categoryPath = GetSmallCategoryPath();
    if (categoryPath.IsEmpty())
        return;
    m_listAtt.ResetContent();
    m_mapAttCode.clear();
    m_arrAttDropKey.RemoveAll();

    // The whole component has no code: its absence from the map marks it.
    for (const ConditionAttribute& attribute : ConditionAttributes(categoryPath)) {
        m_listAtt.AddString(attribute.name);
        if (attribute.source == ConditionAttribute::Source::kWholeComponent)
            continue;
        m_mapAttCode[attribute.name] = attribute.code;
        if (attribute.source == ConditionAttribute::Source::kCatalog)
            m_arrAttDropKey.Add(attribute.dropKey);
    }
    if (m_listAtt.GetCount() > 0)
        m_listAtt.SetCurSel(0);
}

void CAutoConfigDlg::OnAttributeSelChange() {
    UpdateData(TRUE);
    int row = m_listAtt.GetCurSel();
    CString name = row >= 0 ? m_listAtt.GetText(row) : CString();
    auto found = m_mapAttCode.find(name);
    if (found == m_mapAttCode.end()) {
        // The whole component: the value is free text, on either page.
        m_cmbValue.ResetContent();
        m_tabValue.EnableWindow(TRUE);
        return;
    }
    const CString code = found->second;

    // An attribute set to "not comparable" can only be tested for a value.
    AttrConfig config;
    const bool hasSetting = m_pPresenter->GetAttConfig(GetSmallCategoryPath(), name, config);
    if (!TakesRange(hasSetting ? &config : nullptr)) {
        m_tabValue.SetCurSel(0);
        ShowValuePage();
        m_tabValue.EnableWindow(FALSE);
    } else {
        m_tabValue.EnableWindow(TRUE);
    }

    CellDataFactory factory;
    CellData* cell = factory.Create(code.str());
    std::vector<std::wstring> own = *cell->GetOptions();
    int kind = cell->GetKind();
    CStringArray options;
    if (kind != CellData::kDropList) {
        for (const std::wstring& option : own)
            options.Add(CString(option));
    } else {
        CAtt().GetDropList(code, options, m_arrAttDropKey);
    }
    factory.Release(cell);

    m_cmbValue.ResetContent();
    for (const CString& option : options)
        m_cmbValue.AddString(option);
    FitComboDropWidth(m_cmbValue);
    UpdateData(FALSE);
}

// Widens the open list to its longest entry; it never narrows it.
void CAutoConfigDlg::FitComboDropWidth(CComboBox& combo) {
    auto* box = qobject_cast<QComboBox*>(combo.widget());
    if (!box)
        return;
    QFontMetrics metrics(box->font());
    int widest = 0;
    for (int i = 0; i < combo.GetCount(); ++i) {
        int width = metrics.horizontalAdvance(koqdde::ui::ToQString(combo.GetLBText(i))) +
                    metrics.averageCharWidth();
        widest = std::max(widest, width);
    }
    const int edge = 2; // the sunken edge of the list, on each side
    int needed = widest + 2 * edge + box->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    if (combo.GetDroppedWidth() < needed)
        combo.SetDroppedWidth(needed);
}

bool CAutoConfigDlg::BuildConditionArray(CStringArray& out) {
    int row = m_listAtt.GetCurSel();
    out.Add(row >= 0 ? m_listAtt.GetText(row) : CString());
    int page = m_tabValue.GetCurSel();
    out.Add(page == 0 ? L"1" : L"0");
    if (page == 0) {
        CString value = m_cmbValue.GetWindowText();
        if (value.IsEmpty())
            return false;
        out.Add(m_cmbEqualOp.GetWindowText());
        out.Add(CString());
        out.Add(CString());
        out.Add(value);
        out.Add(CString());
        out.Add(CString());
        return true;
    }
    CString lower = m_cmbRange1.GetWindowText();
    CString upper = m_cmbRange2.GetWindowText();
    // No bound, or a range narrower than a hundredth, is no range.
    if (CheckRangeWidth(lower, upper) != RangeFault::kNone)
        return false;
    out.Add(CString());
    out.Add(m_cmbRangeOp1.GetWindowText());
    out.Add(m_cmbRangeOp2.GetWindowText());
    out.Add(CString());
    out.Add(lower);
    out.Add(upper);
    return true;
}

// A configuration holds one condition per attribute by this search alone: the first row whose
// text contains the attribute's name is that attribute's condition.
bool CAutoConfigDlg::FindConditionOfAttribute(int& id) {
    int row = m_listAtt.GetCurSel();
    CString name = row >= 0 ? m_listAtt.GetText(row) : CString();
    for (int i = 0; i < m_listCondition.GetCount(); ++i) {
        if (m_listCondition.GetText(i).Find(name) >= 0) {
            id = static_cast<int>(m_listCondition.GetItemData(i));
            return true;
        }
    }
    return false;
}

void CAutoConfigDlg::OnConditionAdd() {
    CPath path;
    if (!GetConfigPath(path))
        return;
    CStringArray condition;
    if (!BuildConditionArray(condition))
        return;
    int id = -1;
    bool done;
    if (FindConditionOfAttribute(id)) {
        path.ConditionId = id;
        done = m_pPresenter->ResetCondition(path, condition);
    } else {
        done = m_pPresenter->AddCondition(path, condition);
    }
    if (done) {
        RefreshConfigList(m_vecConfig);
        SelectConfigById(m_nCurConfigId);
    }
}

void CAutoConfigDlg::OnConditionDelete() {
    if (m_listCondition.GetCurSel() < 0)
        return;
    CPath path;
    if (!GetConditionPath(path))
        return;
    m_vecConfig.clear();
    if (!m_pPresenter->DelCondition(path, m_vecConfig))
        return;
    RefreshConfigList(m_vecConfig);
    SelectConfigById(m_nCurConfigId);
}
