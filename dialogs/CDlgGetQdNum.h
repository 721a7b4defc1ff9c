#pragma once
// Settles the number a picked bill takes in a configuration: a number the project already uses
// for this bill (history list), or a new one made of the number's fixed part and a sequence
// part proposed under the bill library's encoding rule.
//
// The caller sets m_strQdNum (the picked number) and fills m_arrUsedQd (the numbers of the
// configuration's bills), runs DoModal and, on IDOK, reads the settled number from m_strQdNum.
// m_strCopyFrom names the history entry whose calculation items the user chose to copy.

#include "host/QvBillKit/QvBillKit.h"
#include "platform/Export.h"
#include "ui/CButton.h"
#include "ui/CComboBox.h"
#include "ui/CDialog.h"
#include "ui/CListBox.h"

#include <vector>

class KOQDDE_API CDlgGetQdNum : public CDialog {
public:
    static constexpr UINT IDD = 115;

    explicit CDlgGetQdNum(CWnd* pParent = nullptr);
    ~CDlgGetQdNum() override;

    // In: the picked number. During the run: the fixed part. Out (IDOK): the settled number.
    CString m_strQdNum;
    // Out: the history number chosen under "copy calculation items", empty for none.
    CString m_strCopyFrom;
    // In: numbers of all bills of the configuration the bill goes into.
    CStringArray m_arrUsedQd;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;
    BOOL OnCommand(UINT id, UINT code) override;

    void OnRadioExisting();
    void OnRadioNew();
    void OnSelchangeQdList();
    void LoadHistory();
    // The two ways to propose the sequence part; the encoding rule picks one at the start.
    void ProposeNextSuffix();
    void ProposeFreeSuffix();

    CEdit m_editQdInfo;
    CListBox m_listQdNum;
    CComboBox m_comboCopyFrom;
    int m_nRadio = 1; // 0 an existing number, 1 a new number
    CString m_strSuffix;
    CString m_strPrefix;
    std::vector<SQdInfo> m_arrHistory;
    int m_nCodeLen = 0;
    int m_nSuffixLen = 0;
    void (CDlgGetQdNum::*m_pfnProposeNum)() = nullptr;

private:
    std::vector<CString> ListedNumbers() const;
};
