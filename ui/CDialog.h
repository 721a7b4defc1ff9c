#pragma once
// A dialog made from a template in resources/, with the dialog behaviour the handlers expect:
// OnInitDialog before the window shows, OnOK/OnCancel from buttons 1 and 2, Esc and the close
// box reaching OnCancel through WM_CLOSE, WM_COMMAND and WM_NOTIFY from the controls arriving
// synchronously in OnCommand and OnNotify, and data exchange.

#include "platform/Export.h"
#include "ui/CWnd.h"
#include "ui/DialogTemplate.h"

#include <map>
#include <memory>

class CDialog;

// Carries the direction of one UpdateData pass.
class CDataExchange {
public:
    CDataExchange(CDialog* dialog, BOOL saveAndValidate)
        : m_pDlgWnd(dialog), m_bSaveAndValidate(saveAndValidate) {}
    CDialog* m_pDlgWnd;
    BOOL m_bSaveAndValidate;
    BOOL m_bFailed = FALSE;
};

// Attaches control to the template's widget with this id (once; later passes do nothing). A
// control already bound to another object stays with the first one.
void DDX_Control(CDataExchange* pDX, int id, CWnd& control);
// The text of an edit (or any control with a window text) to and from a value.
void DDX_Text(CDataExchange* pDX, int id, CString& value);
// Integers are read as _wtoi reads them and written with "%d".
void DDX_Text(CDataExchange* pDX, int id, int& value);
// A radio group to and from the index of its checked radio (-1 for none). firstId is the
// group's first radio: a group runs from a control with the "group" flag to the next one, and
// only its radios count. Writing an index no radio has clears them all.
void DDX_Radio(CDataExchange* pDX, int firstId, int& value);

class KOQDDE_API CDialog : public CWnd {
public:
    CDialog(const CString& templateName, CWnd* parent = nullptr);
    CDialog(UINT templateId, CWnd* parent = nullptr);
    ~CDialog() override;

    // Makes the window from the template, runs OnInitDialog, then the modal loop (or the
    // installed modal hook); the window is destroyed before this returns. Returns the value
    // given to EndDialog, or -1 if the template can't be found.
    virtual int DoModal();
    // Modeless: makes the window (hidden unless the template says visible) and runs
    // OnInitDialog. The window lives until DestroyWindow or this object goes.
    BOOL Create(UINT templateId, CWnd* parent = nullptr);
    BOOL Create(const CString& templateName, CWnd* parent = nullptr);
    BOOL DestroyWindow();

    virtual BOOL OnInitDialog();
    virtual void OnOK();
    virtual void OnCancel();
    // Ends the modal loop with this result (for a modeless dialog: hides it).
    void EndDialog(int result);
    // The EndDialog value of the current or last run; -1 while not ended.
    int GetEndResult() const { return m_endResult; }
    bool IsEnded() const { return m_ended; }

    BOOL UpdateData(BOOL saveAndValidate = TRUE);

    // A CWnd for any control of the window: the attached control object if there is one, else
    // a plain CWnd this dialog keeps. Null when there is no such control.
    CWnd* GetDlgItem(int id) const;
    void SetDlgItemText(int id, const CString& text);
    CString GetDlgItemText(int id) const;

    // Centres on the alternate owner, else the parent, else the primary screen.
    void CenterWindow(CWnd* alternateOwner = nullptr);

    const koqdde::ui::DialogTemplate* GetTemplate() const;
    CString GetTemplateName() const { return m_templateName; }
    UINT GetTemplateId() const { return m_templateId; }
    CWnd* GetParentWnd() const { return m_parent; }
    // Dialog units to pixels with this dialog's font (valid once the window exists).
    const koqdde::ui::DialogBaseUnits& GetBaseUnits() const { return m_units; }
    void MapDialogRect(CRect* rect) const;

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    // WM_COMMAND: id of the control and its notification code. The base handles IDOK and
    // IDCANCEL (OnOK, OnCancel) and returns FALSE for the rest.
    virtual BOOL OnCommand(UINT id, UINT code);
    // WM_NOTIFY: return TRUE when handled; *result is what the sender gets back.
    virtual BOOL OnNotify(UINT id, NMHDR* header, LRESULT* result);
    // The close box and WM_CLOSE: the base sends IDCANCEL as Windows' dialog procedure does.
    virtual void OnClose();
    // Dispatches WM_COMMAND, WM_NOTIFY and WM_CLOSE to the handlers above. Override it for
    // private messages (WM_USER + n) and call the base for the rest.
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    friend void DDX_Control(CDataExchange*, int, CWnd&);
    bool IsOnDemandItem(const CWnd* wnd) const;
    bool MakeWindow(CWnd* parent);
    void DestroyOwnWindow();

    CString m_templateName;
    UINT m_templateId = 0;
    CWnd* m_parent;
    std::unique_ptr<koqdde::ui::DialogTemplate> m_template;
    koqdde::ui::DialogBaseUnits m_units;
    mutable std::map<int, std::unique_ptr<CWnd>> m_items;
    bool m_ended = false;
    int m_endResult = -1;
    bool m_modal = false;
};

namespace koqdde::ui {
// User actions on a dialog's control by id, whatever object (if any) is bound to it: a click
// on a button or static, typing into an edit or a drop-down combo, choosing the entry of a list
// box, combo box or tab at index. They return false when there is no such control or it is
// disabled (nothing is sent then).
bool ClickDlgItem(CDialog& dialog, int id);
bool TypeDlgItem(CDialog& dialog, int id, const CString& text);
bool SelectDlgItem(CDialog& dialog, int id, int index);
} // namespace koqdde::ui
