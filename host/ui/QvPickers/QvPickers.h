#pragma once
// The host's item pickers: non-modal tool windows beside the workbench that browse a library
// (its chapter tree, the items of the selected chapter, a search field that looks up numbers
// and names as the user types) and hand a pick to their parent window synchronously. A bill
// arrives as WM_USER+80 with WPARAM pointing to an SQdInfo, a quota as WM_USER+70 with WPARAM
// pointing to an SDeInfo (host/QvBillKit); the record lives only during the call.
//
// A double-click on an item, Enter in a list and the "选用" button pick alike, through one path.
// The widgets carry object names, for tests that act as a user: "pickerSearch" (QLineEdit),
// "pickerChapters" (QTreeWidget), "pickerItems" (QTreeWidget, the browsed library's items),
// "pickerQuotas" (QTreeWidget, the bill picker's quotas of the selected bill), "pickerChoose"
// (QPushButton), "pickerBrowse" (all of those together: the quota picker's main control),
// "pickerStatus" (QLabel). Every row of a list holds its number in column 0.

#include "host/QvBillKit/QvBillKit.h"
#include "platform/CString.h"
#include "ui/CWnd.h"

#include <memory>

class QTreeWidget;
class QTreeWidgetItem;

inline constexpr UINT kPickQuotaMessage = WM_USER + 70;
inline constexpr UINT kPickBillMessage = WM_USER + 80;

class CPickerWnd : public CWnd {
public:
    ~CPickerWnd() override;

    // Makes the hidden window, a tool window of parent's window that goes with it. The parent
    // receives the picks.
    BOOL Create(CWnd* parent);
    // Puts the window beside wnd's right edge, tops aligned.
    void MoveWndToRight(CWnd* wnd);
    CWnd* GetPickParent() const;

    // As the user types: the search field's text becomes text, and the list shows what it
    // finds (the selected chapter's items again when text is empty).
    void SearchFor(const CString& text);
    // As the user selects the row of number (in the item list, else among the bill's
    // quotas) and presses "选用". False when no row shows that number.
    bool ChooseItem(const CString& number);

protected:
    CPickerWnd(CWnd* parent, const wchar_t* caption, bool withBillQuotas);
    // Browses the library of code among the host's libraries, and for the bill picker finds
    // the quotas of a bill in the library of quotaCode. A library already shown stays as the
    // user left it.
    void LoadLibraries(const CString& code, const CString& quotaCode);
    // Selects the chapter at a position of the tree (see ItemLibrary::ChapterAt); an empty
    // or unknown position leaves the tree as it is.
    void OpenChapter(const CString& position);
    // The position of the selected chapter; empty when none is.
    CString SelectedPosition() const;
    void EnableBrowsing(BOOL enable);

private:
    struct Impl;
    class Events;
    void BuildWindow(QWidget* window);
    void FillChapters();
    void ShowChapterItems();
    void ShowSearch();
    void ShowBillQuotas();
    void ShowStatus(const CString& text);
    // The one road of a pick: the row (the list's current row when null) is found in the
    // list's library and sent to the parent.
    void Pick(QTreeWidget* list, QTreeWidgetItem* row);

    CWnd* m_parent;
    CString m_caption;
    std::unique_ptr<Impl> m_impl;
};

class CSelQdDeDlg : public CPickerWnd {
public:
    explicit CSelQdDeDlg(CWnd* parent = nullptr);
    // false: a picked bill is handed over as it is. The picker has no number dialog of its
    // own, so it hands bills over as they are either way; the setting is kept for the caller.
    void SetShowGetQdNumDlg(bool show) { m_showGetQdNumDlg = show; }
    bool GetShowGetQdNumDlg() const { return m_showGetQdNumDlg; }
    // Browses the project's bill library, with the quotas of the library that goes with it.
    void InitQdDeData();
    // Opens the chapter at a position: the chapter codes from the root joined by "."
    // ("0310.031001"), as the bill library's index path gives them with "\" (also taken).
    void SetTreePosition(const CString& position);
    // The selected chapter's position, in the same form.
    CString GetTreePosition() const { return SelectedPosition(); }

private:
    bool m_showGetQdNumDlg = true;
};

class CSelDeDlg : public CPickerWnd {
public:
    explicit CSelDeDlg(CWnd* parent = nullptr);
    // Browses the quota library of quota mode.
    void InitDeData();
    // The main control: the search field, tree, list and button together.
    void EnableMainControl(BOOL enable = TRUE) { EnableBrowsing(enable); }
};
