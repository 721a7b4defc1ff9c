#pragma once
// Stand-ins for the host's item pickers: modeless tool windows beside the workbench, one with
// the bill library and its quotas, one with the quota library. A pick reaches the parent
// window as WM_USER+80 (bill) or WM_USER+70 (quota). These stand-ins show only a caption and
// the position they were asked to show; they pick nothing.

#include "platform/CString.h"
#include "ui/CWnd.h"

class CPickerWnd : public CWnd {
public:
    explicit CPickerWnd(CWnd* parent, const wchar_t* caption);
    ~CPickerWnd() override;

    // Makes the hidden window; the parent receives the picks.
    BOOL Create(CWnd* parent);
    // Puts the window beside wnd's right edge, tops aligned.
    void MoveWndToRight(CWnd* wnd);
    CWnd* GetPickParent() const { return m_pickParent; }

protected:
    void ShowText(const CString& text);

private:
    CWnd* m_pickParent;
    CString m_caption;
};

class CSelQdDeDlg : public CPickerWnd {
public:
    explicit CSelQdDeDlg(CWnd* parent = nullptr);
    // false: a picked bill is handed over as it is, without the picker's own number dialog.
    void SetShowGetQdNumDlg(bool show) { m_showGetQdNumDlg = show; }
    bool GetShowGetQdNumDlg() const { return m_showGetQdNumDlg; }
    void InitQdDeData();
    // Dot-separated position in the picker's tree, e.g. "2.1.3".
    void SetTreePosition(const CString& position);
    CString GetTreePosition() const { return m_position; }

private:
    bool m_showGetQdNumDlg = true;
    CString m_position;
};

class CSelDeDlg : public CPickerWnd {
public:
    explicit CSelDeDlg(CWnd* parent = nullptr);
    void InitDeData();
};
