#pragma once
// A window object over a Qt widget, as the dialogs expect a window to behave. The widget holds
// the state (as a window does); the CWnd is a facade that may be attached to it and detached
// again. Ownership follows Qt's parent and child tree: a CWnd never deletes a widget it did
// not create itself.

#include "platform/CString.h"
#include "platform/Export.h"
#include "ui/Win.h"

#include <QPointer>
#include <QWidget>

#include <exception>

class KOQDDE_API CWnd {
public:
    CWnd() = default;
    explicit CWnd(QWidget* widget);
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // Attaching makes this object the one a widget's messages and hooks reach.
    void Attach(QWidget* widget);
    QWidget* Detach();
    QWidget* GetSafeHwnd() const { return m_widget.data(); }
    QWidget* widget() const { return m_widget.data(); }
    bool IsWindow() const { return !m_widget.isNull(); }
    // The CWnd attached to a widget, or null.
    static CWnd* FromHandlePermanent(const QWidget* widget);

    int GetDlgCtrlID() const;
    void SetDlgCtrlID(int id);
    // The CWnd of the parent widget (nearest ancestor with one attached), or null.
    CWnd* GetParent() const;

    BOOL EnableWindow(BOOL enable = TRUE);
    BOOL IsWindowEnabled() const;
    BOOL ShowWindow(int command);
    BOOL IsWindowVisible() const;
    virtual void SetWindowText(const CString& text);
    virtual CString GetWindowText() const;
    void GetWindowText(CString& text) const { text = GetWindowText(); }
    int GetWindowTextLength() const { return GetWindowText().GetLength(); }

    // Returns the window that had the focus before.
    CWnd* SetFocus();
    // The CWnd of the focused widget (or of its nearest attached ancestor), or null.
    static CWnd* GetFocus();

    // Screen coordinates (a top-level window: its frame).
    void GetWindowRect(CRect* rect) const;
    CRect GetWindowRect() const;
    // Client coordinates: left and top are 0.
    void GetClientRect(CRect* rect) const;
    CRect GetClientRect() const;
    // Child windows: in the parent's client coordinates; top-level windows: screen coordinates.
    void MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE);
    void MoveWindow(const CRect& rect, BOOL repaint = TRUE);
    void ScreenToClient(CRect* rect) const;
    void ScreenToClient(CPoint* point) const;
    void ClientToScreen(CRect* rect) const;
    void ClientToScreen(CPoint* point) const;
    void Invalidate(BOOL erase = TRUE);
    void InvalidateRect(const CRect* rect, BOOL erase = TRUE);
    void UpdateWindow();

    // Synchronous: calls WindowProc of this object and returns its result.
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

protected:
    // Every message comes through here; the base knows none and returns DefWindowProc's 0.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Called after a widget is attached, for classes that hook the widget.
    virtual void PreSubclassWindow() {}

    // Synchronous notices to the parent window, as a control sends them.
    LRESULT NotifyParentCommand(UINT code);
    LRESULT NotifyParent(NMHDR* header);

    // A CWnd that made its own widget (Create of a control) deletes it when it goes.
    void SetOwnsWidget(bool owns) { m_ownsWidget = owns; }

private:
    QPointer<QWidget> m_widget;
    bool m_ownsWidget = false;
};

class QDialog;

namespace koqdde::ui {
// While it lives, dialog runs a modal loop of Qt's: an exception a handler raises in a message
// sent from that loop ends the loop instead of crossing Qt's event dispatch, and is kept for
// the code that started the loop (CDialog::DoModal throws it again).
class ModalLoopScope {
public:
    explicit ModalLoopScope(QDialog* dialog);
    ~ModalLoopScope();
    ModalLoopScope(const ModalLoopScope&) = delete;
    ModalLoopScope& operator=(const ModalLoopScope&) = delete;
    std::exception_ptr Pending() const;
};

// Sends WM_COMMAND (code, id of the control) to the parent window of a control widget, or
// nothing when the parent has no CWnd attached. Returns the parent's result.
LRESULT SendCommandToParent(QWidget* control, UINT code);
// Fills hwndFrom and idFrom and sends WM_NOTIFY to the parent window of a control widget.
LRESULT SendNotifyToParent(QWidget* control, NMHDR* header);
// The control id a widget carries (0 for none).
int ControlId(const QWidget* widget);
void SetControlId(QWidget* widget, int id);
// The order of sorted list boxes and combo boxes: case-insensitive, as the system sorts.
// Negative, 0 or positive.
int CompareItemTexts(const CString& a, const CString& b);
} // namespace koqdde::ui
