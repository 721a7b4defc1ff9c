#include "dialogs/CDlgGetQdNum.h"

#include "host/QvKoProject/QvKoProject.h"
#include "platform/ComError.h"
#include "platform/MessageBox.h"
#include "presenter/BillNumbering.h"

namespace {
constexpr int kIdQdInfo = 1069;
constexpr int kIdPrefix = 1076;
constexpr int kIdSuffix = 1077;
constexpr int kIdRadioExisting = 1111;
constexpr int kIdRadioNew = 1112;
constexpr int kIdQdNumList = 1113;
constexpr int kIdCopyFrom = 1114;
} // namespace

CDlgGetQdNum::CDlgGetQdNum(CWnd* pParent) : CDialog(IDD, pParent) {}

CDlgGetQdNum::~CDlgGetQdNum() = default;

void CDlgGetQdNum::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, kIdQdInfo, m_editQdInfo);
    DDX_Control(pDX, kIdQdNumList, m_listQdNum);
    DDX_Control(pDX, kIdCopyFrom, m_comboCopyFrom);
    DDX_Radio(pDX, kIdRadioExisting, m_nRadio);
    DDX_Text(pDX, kIdSuffix, m_strSuffix);
    DDX_Text(pDX, kIdPrefix, m_strPrefix);
}

BOOL CDlgGetQdNum::OnInitDialog() {
    CDialog::OnInitDialog();
    IBillLib::GetEnCodeRule(m_nCodeLen, m_nSuffixLen);
    const BillNumberSplit split = SplitBillNumber(m_strQdNum, m_nCodeLen, m_nSuffixLen);
    switch (split.proposer) {
    case SuffixProposer::kNext:
        m_pfnProposeNum = &CDlgGetQdNum::ProposeNextSuffix;
        break;
    case SuffixProposer::kFree:
        m_pfnProposeNum = &CDlgGetQdNum::ProposeFreeSuffix;
        break;
    case SuffixProposer::kNone:
        // No library, or a rule without a numbering: the dialog stays as the template made it.
        return TRUE;
    }
    m_strQdNum = split.prefix;
    m_strSuffix = split.suffix;
    LoadHistory();
    (this->*m_pfnProposeNum)();
    m_nRadio = 1;
    UpdateData(FALSE);
    OnRadioNew();
    return TRUE;
}

BOOL CDlgGetQdNum::OnCommand(UINT id, UINT code) {
    if (id == kIdRadioExisting && code == BN_CLICKED) {
        OnRadioExisting();
        return TRUE;
    }
    if (id == kIdRadioNew && code == BN_CLICKED) {
        OnRadioNew();
        return TRUE;
    }
    if (id == kIdQdNumList && code == LBN_SELCHANGE) {
        OnSelchangeQdList();
        return TRUE;
    }
    return CDialog::OnCommand(id, code);
}

void CDlgGetQdNum::LoadHistory() {
    m_arrHistory.clear();
    CQdHistoryMng().GetQdInfoByQdNum(m_strQdNum, m_arrHistory);
    // The first choice of the copy source is none.
    m_comboCopyFrom.AddString(L"");
    for (size_t i = 0; i < m_arrHistory.size(); ++i) {
        // At its own index, so that the list keeps the history's order whatever its style.
        m_listQdNum.InsertString(static_cast<int>(i), m_arrHistory[i].strQdNum);
        m_comboCopyFrom.AddString(m_arrHistory[i].strQdNum);
    }
    m_listQdNum.SetCurSel(0);
    OnSelchangeQdList();
    m_strPrefix = m_strQdNum;
    if (m_arrHistory.empty())
        GetDlgItem(kIdRadioExisting)->EnableWindow(FALSE);
    UpdateData(FALSE);
}

void CDlgGetQdNum::OnSelchangeQdList() {
    const int index = m_listQdNum.GetCurSel();
    if (index < 0)
        return;
    if (static_cast<size_t>(index) >= m_arrHistory.size())
        throw ComError(E_INVALIDARG, "history entry out of range");
    const SQdInfo& record = m_arrHistory[static_cast<size_t>(index)];
    m_editQdInfo.SetWindowText(record.strName + L"\r\n" + record.strUnit);
    UpdateData(FALSE);
}

void CDlgGetQdNum::OnRadioExisting() {
    UpdateData(TRUE);
    GetDlgItem(kIdQdNumList)->EnableWindow(TRUE);
    GetDlgItem(kIdSuffix)->EnableWindow(FALSE);
    GetDlgItem(kIdCopyFrom)->EnableWindow(FALSE);
    UpdateData(FALSE);
}

void CDlgGetQdNum::OnRadioNew() {
    UpdateData(TRUE);
    GetDlgItem(kIdQdNumList)->EnableWindow(FALSE);
    GetDlgItem(kIdSuffix)->EnableWindow(TRUE);
    GetDlgItem(kIdCopyFrom)->EnableWindow(TRUE);
    UpdateData(FALSE);
}

std::vector<CString> CDlgGetQdNum::ListedNumbers() const {
    std::vector<CString> numbers;
    for (int i = 0; i < m_listQdNum.GetCount(); ++i)
        numbers.push_back(m_listQdNum.GetText(i));
    return numbers;
}

void CDlgGetQdNum::ProposeNextSuffix() {
    m_strSuffix = ::ProposeNextSuffix(ListedNumbers(), m_nSuffixLen);
    UpdateData(FALSE);
}

void CDlgGetQdNum::ProposeFreeSuffix() {
    m_strSuffix =
        ::ProposeFreeSuffix(m_strPrefix, m_strSuffix, ListedNumbers(), &IBillLib::IsInQdk);
    UpdateData(FALSE);
}

void CDlgGetQdNum::OnOK() {
    UpdateData(TRUE);
    if (m_nRadio == 0) {
        const int index = m_listQdNum.GetCurSel();
        m_strQdNum = index >= 0 ? m_listQdNum.GetText(index) : CString();
        for (const CString& used : m_arrUsedQd) {
            if (used == m_strQdNum) {
                ShowWarning(CString(L"同一构件不能多次套同一清单 ") + kRefusalMark);
                return;
            }
        }
    } else if (m_nRadio == 1) {
        if (m_strSuffix.GetLength() != m_nSuffixLen) {
            ShowWarning(CString(L"新清单号不符合规范") + kRefusalMark);
            // Whatever proposed the first suffix, a refused one is replaced by the next.
            ProposeNextSuffix();
            return;
        }
        m_strQdNum = m_strPrefix + m_strSuffix;
        // A new number must not be one of the history: those are chosen with the other radio.
        for (const CString& listed : ListedNumbers()) {
            if (listed == m_strQdNum) {
                ShowWarning(CString(L"清单已经套用") + kRefusalMark);
                return;
            }
        }
        const int source = m_comboCopyFrom.GetCurSel();
        m_strCopyFrom = source >= 0 ? m_comboCopyFrom.GetLBText(source) : CString();
    }
    CDialog::OnOK();
}
