#include "dialogs/CDlgAttConfig.h"

#include "host/QvKoProject/QvKoProject.h"
#include "platform/MessageBox.h"
#include "platform/NumParse.h"
#include "presenter/CQdDeConfigPresenter.h"

#include <vector>

namespace {
constexpr int kIdVarType = 2009;
constexpr int kIdCompar = 2010;
constexpr int kIdSpecRelation = 2011;
constexpr int kIdCategoryTree = 2012;
constexpr int kIdAttrList = 2013;
constexpr int kIdApply = 2014;
constexpr int kIdSmallList = 2015;
constexpr int kIdCopyFromSmall = 2016;

// Wires, conduits and combined lines have their settings elsewhere in the application.
bool IsLineCategory(const CString& name) {
    return name.Find(L"导线·导管") >= 0 || name.Find(L"配管配线") >= 0 ||
           name.Find(L"组合管线") >= 0;
}

// The path up to its last "\": the large category's path of a small category's path.
CString ParentPath(const CString& path) {
    return path.Left(path.ReverseFind(L'\\'));
}
} // namespace

CDlgAttConfig::CDlgAttConfig(CWnd* pParent)
    : CDialog(IDD, pParent), m_pPresenter(std::make_unique<CQdDeConfigPresenter>(CString())) {}

CDlgAttConfig::~CDlgAttConfig() = default;

void CDlgAttConfig::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, kIdCategoryTree, m_treeCategory);
    DDX_Control(pDX, kIdVarType, m_cmbVarType);
    DDX_Control(pDX, kIdCompar, m_cmbCompar);
    DDX_Control(pDX, kIdSpecRelation, m_cmbSpecRelation);
    DDX_Control(pDX, kIdAttrList, m_listAttr);
    DDX_Control(pDX, kIdSmallList, m_listSmall);
}

BOOL CDlgAttConfig::OnInitDialog() {
    CDialog::OnInitDialog();
    // The tree selects its first small category while it is built, so the first settings are
    // shown before the boxes below have entries: they start with none selected.
    InitCategoryTree();
    // The boxes are sorted: a record's numbers are the indices of this order, not of the adding.
    m_cmbVarType.AddString(L"3.无下拉项");
    m_cmbVarType.AddString(L"1.下拉");
    m_cmbVarType.AddString(L"2.下拉可填");
    m_cmbCompar.AddString(L"不可比较");
    m_cmbCompar.AddString(L"可比较");
    m_cmbSpecRelation.AddString(L"X.材质无关");
    m_cmbSpecRelation.AddString(L"O.材质相关");
    return TRUE;
}

BOOL CDlgAttConfig::OnCommand(UINT id, UINT code) {
    if (id == kIdAttrList && code == LBN_SELCHANGE) {
        ShowAttrConfig();
        return TRUE;
    }
    if (id == kIdApply && code == BN_CLICKED) {
        OnApply();
        return TRUE;
    }
    if (id == kIdCopyFromSmall && code == BN_CLICKED) {
        OnCopyFromSmall();
        return TRUE;
    }
    if (id == kIdSpecRelation && code == CBN_SELCHANGE) {
        // A choice waits for "应用".
        return TRUE;
    }
    return CDialog::OnCommand(id, code);
}

BOOL CDlgAttConfig::OnNotify(UINT id, NMHDR* header, LRESULT* result) {
    if (id == kIdCategoryTree && header->code == static_cast<UINT>(TVN_SELCHANGED)) {
        *result = OnCategoryChanged();
        return TRUE;
    }
    return CDialog::OnNotify(id, header, result);
}

void CDlgAttConfig::InitCategoryTree() {
    CProj project;
    CAtt att;
    SQvKoSpecId specId;
    specId.specId = IntToText(project.GetCurrentSpecId());
    HTREEITEM root = m_treeCategory.InsertItem(project.GetCurrentSpec());
    m_treeCategory.SetItemData(root, WToI(specId.specId));
    m_treeCategory.Expand(root, TVE_EXPAND);

    std::vector<SQvKoBigCategoryId> larges;
    att.GetAllBigCategoryIdsBySpec(specId, larges);
    for (const SQvKoBigCategoryId& large : larges) {
        CString largeName;
        att.GetBigCategoryName(large, largeName);
        HTREEITEM largeItem = m_treeCategory.InsertItem(largeName, root, TVI_LAST);
        m_treeCategory.SetItemData(largeItem, WToI(large.bigCategoryId));

        std::vector<SQvKoSmallCategoryId> smalls;
        att.GetAllSmallCategoryIdsByBigCategory(large, smalls);
        for (const SQvKoSmallCategoryId& small : smalls) {
            CString smallName;
            att.GetSmallCategoryName(small, smallName);
            if (IsLineCategory(smallName))
                continue;
            HTREEITEM smallItem = m_treeCategory.InsertItem(smallName, largeItem, TVI_LAST);
            m_treeCategory.SetItemData(smallItem, WToI(small.smallCategoryId));
        }
        m_treeCategory.Expand(largeItem, TVE_EXPAND);
    }

    if (HTREEITEM first = m_treeCategory.GetChildItem(root)) {
        if (HTREEITEM leaf = m_treeCategory.GetChildItem(first))
            m_treeCategory.SelectItem(leaf);
    }
}

CString CDlgAttConfig::GetSelectedSmallPath() const {
    HTREEITEM item = m_treeCategory.GetSelectedItem();
    if (!item || m_treeCategory.ItemHasChildren(item))
        return CString();
    HTREEITEM parent = m_treeCategory.GetParentItem(item);
    HTREEITEM grandParent = m_treeCategory.GetParentItem(parent);
    return m_treeCategory.GetItemText(grandParent) + L"\\" + m_treeCategory.GetItemText(parent) +
           L"\\" + m_treeCategory.GetItemText(item);
}

CString CDlgAttConfig::SelectedAttribute() const {
    const int index = m_listAttr.GetCurSel();
    return index >= 0 ? m_listAttr.GetText(index) : CString();
}

LRESULT CDlgAttConfig::OnCategoryChanged() {
    FillAttrList();
    FillSmallList();
    UpdateData(FALSE);
    ShowAttrConfig();
    return 0;
}

void CDlgAttConfig::FillAttrList() {
    const CString path = GetSelectedSmallPath();
    if (path.IsEmpty())
        return;
    SQvKoSmallCategoryId id;
    SmallCategoryNameToId(path, id);
    CStringArray attributes;
    CSysSmallCategoryMng(id).GetAttributeList(attributes);
    m_listAttr.ResetContent();
    // Four texts an attribute; the second is the name the settings are kept under.
    for (int i = 1; i < attributes.GetSize(); i += 4)
        m_listAttr.AddString(attributes[i]);
    if (m_listAttr.GetCount() > 0)
        m_listAttr.SetCurSel(0);
}

void CDlgAttConfig::FillSmallList() {
    const CString path = GetSelectedSmallPath();
    if (path.IsEmpty())
        return;
    m_listSmall.ResetContent();
    SQvKoBigCategoryId largeId;
    BigCategoryNameToId(ParentPath(path), largeId);
    CAtt att;
    std::vector<SQvKoSmallCategoryId> smalls;
    att.GetAllSmallCategoryIdsByBigCategory(largeId, smalls);
    for (const SQvKoSmallCategoryId& small : smalls) {
        CString name;
        att.GetSmallCategoryName(small, name);
        if (!IsLineCategory(name))
            m_listSmall.AddString(name);
    }
    if (m_listSmall.GetCount() > 0)
        m_listSmall.SetCurSel(0);
    UpdateData(FALSE);
}

void CDlgAttConfig::ShowAttrConfig() {
    UpdateData(TRUE);
    AttrConfig record;
    if (!m_pPresenter->GetAttConfig(GetSelectedSmallPath(), SelectedAttribute(), record)) {
        AfxMessageBox(L"error");
        return;
    }
    m_cmbVarType.SetCurSel(record.vartype);
    m_cmbSpecRelation.SetCurSel(record.specrelation);
    m_cmbCompar.SetCurSel(record.compar);
    UpdateData(FALSE);
}

void CDlgAttConfig::OnApply() {
    UpdateData(TRUE);
    // A box with nothing chosen stores -1.
    const AttrConfig record(CString(), CString(), m_cmbVarType.GetCurSel(), m_cmbCompar.GetCurSel(),
                            m_cmbSpecRelation.GetCurSel());
    if (!m_pPresenter->SetAttConfig(GetSelectedSmallPath(), SelectedAttribute(), record))
        AfxMessageBox(L"save error");
}

void CDlgAttConfig::OnCopyFromSmall() {
    UpdateData(TRUE);
    const CString attribute = SelectedAttribute();
    const CString path = GetSelectedSmallPath();
    const int sourceIndex = m_listSmall.GetCurSel();
    const CString source = ParentPath(path) + L"\\" +
                           (sourceIndex >= 0 ? m_listSmall.GetText(sourceIndex) : CString());
    AttrConfig found;
    if (!m_pPresenter->GetAttConfig(source, attribute, found)) {
        ShowWarning(CString(L"源属性配置获取失败") + kRefusalMark);
        return;
    }
    const AttrConfig record(CString(), CString(), found.vartype, found.compar, found.specrelation);
    if (!m_pPresenter->SetAttConfig(path, attribute, record))
        AfxMessageBox(L"save error");
    ShowAttrConfig();
}

void CDlgAttConfig::OnOK() {
    // The store's answer is not looked at. A store that can't generate the file raises, and
    // the exception leaves the dialog open and goes to whoever sent the command.
    m_pPresenter->SaveAttConfig();
    CDialog::OnOK();
}

void CDlgAttConfig::OnClose() {
    m_pPresenter->SaveAttConfig();
    CDialog::OnClose();
}
