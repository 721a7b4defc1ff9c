#include "ui/CWnd.h"

#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCollator>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QVariant>

#include <exception>
#include <vector>

namespace {
constexpr const char* kCWndProperty = "koqdde_cwnd";
constexpr const char* kIdProperty = "koqdde_id";
} // namespace

CWnd::CWnd(QWidget* widget) {
    Attach(widget);
}

CWnd::~CWnd() {
    QWidget* widget = m_widget.data();
    if (!widget)
        return;
    if (FromHandlePermanent(widget) == this)
        widget->setProperty(kCWndProperty, QVariant());
    if (m_ownsWidget)
        delete widget;
}

void CWnd::Attach(QWidget* widget) {
    if (m_widget && FromHandlePermanent(m_widget) == this)
        m_widget->setProperty(kCWndProperty, QVariant());
    m_widget = widget;
    if (!widget)
        return;
    widget->setProperty(kCWndProperty, QVariant::fromValue(reinterpret_cast<quintptr>(this)));
    PreSubclassWindow();
}

QWidget* CWnd::Detach() {
    QWidget* widget = m_widget.data();
    if (widget && FromHandlePermanent(widget) == this)
        widget->setProperty(kCWndProperty, QVariant());
    m_widget = nullptr;
    m_ownsWidget = false;
    return widget;
}

CWnd* CWnd::FromHandlePermanent(const QWidget* widget) {
    if (!widget)
        return nullptr;
    const QVariant v = widget->property(kCWndProperty);
    return v.isValid() ? reinterpret_cast<CWnd*>(v.value<quintptr>()) : nullptr;
}

int CWnd::GetDlgCtrlID() const {
    return koqdde::ui::ControlId(m_widget);
}

void CWnd::SetDlgCtrlID(int id) {
    if (m_widget)
        koqdde::ui::SetControlId(m_widget, id);
}

CWnd* CWnd::GetParent() const {
    if (!m_widget)
        return nullptr;
    for (QWidget* w = m_widget->parentWidget(); w; w = w->parentWidget()) {
        if (CWnd* wnd = FromHandlePermanent(w))
            return wnd;
    }
    return nullptr;
}

BOOL CWnd::EnableWindow(BOOL enable) {
    if (!m_widget)
        return FALSE;
    const BOOL wasDisabled = !m_widget->isEnabled();
    m_widget->setEnabled(enable != FALSE);
    return wasDisabled;
}

BOOL CWnd::IsWindowEnabled() const {
    return m_widget && m_widget->isEnabled();
}

BOOL CWnd::ShowWindow(int command) {
    if (!m_widget)
        return FALSE;
    const BOOL wasVisible = !m_widget->isHidden();
    m_widget->setVisible(command != SW_HIDE);
    return wasVisible;
}

BOOL CWnd::IsWindowVisible() const {
    return m_widget && koqdde::ui::IsShownAsWindows(m_widget);
}

void CWnd::SetWindowText(const CString& text) {
    if (m_widget)
        koqdde::ui::SetWidgetText(m_widget, text);
}

CString CWnd::GetWindowText() const {
    return m_widget ? koqdde::ui::WidgetText(m_widget) : CString();
}

CWnd* CWnd::SetFocus() {
    CWnd* previous = GetFocus();
    if (m_widget)
        m_widget->setFocus(Qt::OtherFocusReason);
    return previous;
}

CWnd* CWnd::GetFocus() {
    QWidget* focus = koqdde::ui::FocusWidget();
    for (QWidget* w = focus; w; w = w->parentWidget()) {
        if (CWnd* wnd = FromHandlePermanent(w))
            return wnd;
        if (w->isWindow())
            break;
    }
    return nullptr;
}

void CWnd::GetWindowRect(CRect* rect) const {
    *rect = GetWindowRect();
}

CRect CWnd::GetWindowRect() const {
    if (!m_widget)
        return CRect();
    if (m_widget->isWindow()) {
        const QRect r = m_widget->frameGeometry();
        return CRect(r.left(), r.top(), r.left() + r.width(), r.top() + r.height());
    }
    const QPoint topLeft = m_widget->mapToGlobal(QPoint(0, 0));
    return CRect(topLeft.x(), topLeft.y(), topLeft.x() + m_widget->width(),
                 topLeft.y() + m_widget->height());
}

void CWnd::GetClientRect(CRect* rect) const {
    *rect = GetClientRect();
}

CRect CWnd::GetClientRect() const {
    if (!m_widget)
        return CRect();
    return CRect(0, 0, m_widget->width(), m_widget->height());
}

void CWnd::MoveWindow(int x, int y, int width, int height, BOOL repaint) {
    if (!m_widget)
        return;
    if (m_widget->isWindow()) {
        // The rectangle is the frame's; the client area sits inside it by the frame margins.
        const QRect frame = m_widget->frameGeometry();
        const QRect client = m_widget->geometry();
        const int marginLeft = client.left() - frame.left();
        const int marginTop = client.top() - frame.top();
        const int extraW = frame.width() - client.width();
        const int extraH = frame.height() - client.height();
        m_widget->setGeometry(x + marginLeft, y + marginTop, std::max(0, width - extraW),
                              std::max(0, height - extraH));
    } else {
        m_widget->setGeometry(x, y, std::max(0, width), std::max(0, height));
    }
    if (repaint)
        m_widget->update();
}

void CWnd::MoveWindow(const CRect& rect, BOOL repaint) {
    MoveWindow(rect.left, rect.top, rect.Width(), rect.Height(), repaint);
}

void CWnd::ScreenToClient(CRect* rect) const {
    if (!m_widget)
        return;
    const QPoint p = m_widget->mapFromGlobal(QPoint(rect->left, rect->top));
    rect->OffsetRect(p.x() - rect->left, p.y() - rect->top);
}

void CWnd::ScreenToClient(CPoint* point) const {
    if (!m_widget)
        return;
    const QPoint p = m_widget->mapFromGlobal(QPoint(point->x, point->y));
    *point = CPoint(p.x(), p.y());
}

void CWnd::ClientToScreen(CRect* rect) const {
    if (!m_widget)
        return;
    const QPoint p = m_widget->mapToGlobal(QPoint(rect->left, rect->top));
    rect->OffsetRect(p.x() - rect->left, p.y() - rect->top);
}

void CWnd::ClientToScreen(CPoint* point) const {
    if (!m_widget)
        return;
    const QPoint p = m_widget->mapToGlobal(QPoint(point->x, point->y));
    *point = CPoint(p.x(), p.y());
}

void CWnd::Invalidate(BOOL /*erase*/) {
    if (m_widget)
        m_widget->update();
}

void CWnd::InvalidateRect(const CRect* rect, BOOL /*erase*/) {
    if (!m_widget)
        return;
    if (rect)
        m_widget->update(QRect(rect->left, rect->top, rect->Width(), rect->Height()));
    else
        m_widget->update();
}

void CWnd::UpdateWindow() {
    if (m_widget)
        m_widget->repaint();
}

namespace {
// One entry per running modal loop: how deep our own dispatch is inside it, and an exception a
// handler raised there. Qt's event dispatch must not be crossed by an exception, so the first
// dispatch of a loop catches it, ends the loop, and DoModal throws it again.
struct ModalLoop {
    QPointer<QDialog> dialog;
    int depth = 0;
    std::exception_ptr pending;
};
std::vector<ModalLoop> g_loops;
} // namespace

namespace koqdde::ui {
ModalLoopScope::ModalLoopScope(QDialog* dialog) {
    g_loops.push_back({dialog, 0, nullptr});
}

ModalLoopScope::~ModalLoopScope() {
    g_loops.pop_back();
}

std::exception_ptr ModalLoopScope::Pending() const {
    return g_loops.back().pending;
}
} // namespace koqdde::ui

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // Outside a modal loop (or nested in a dispatch of ours) exceptions travel as usual.
    if (g_loops.empty() || g_loops.back().depth > 0)
        return WindowProc(message, wParam, lParam);
    ModalLoop& loop = g_loops.back();
    ++loop.depth;
    try {
        LRESULT result = WindowProc(message, wParam, lParam);
        --g_loops.back().depth;
        return result;
    } catch (...) {
        ModalLoop& current = g_loops.back();
        --current.depth;
        if (!current.pending)
            current.pending = std::current_exception();
        if (current.dialog)
            current.dialog->done(-1);
        return 0;
    }
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT /*message*/, WPARAM /*wParam*/, LPARAM /*lParam*/) {
    return 0;
}

LRESULT CWnd::NotifyParentCommand(UINT code) {
    return m_widget ? koqdde::ui::SendCommandToParent(m_widget, code) : 0;
}

LRESULT CWnd::NotifyParent(NMHDR* header) {
    return m_widget ? koqdde::ui::SendNotifyToParent(m_widget, header) : 0;
}

namespace koqdde::ui {

namespace {
// The window that receives a control's notices: its parent, as in Windows; controls placed
// inside a helper container report to the nearest ancestor with a CWnd.
CWnd* NotifyTarget(QWidget* control) {
    for (QWidget* w = control->parentWidget(); w; w = w->parentWidget()) {
        if (CWnd* wnd = CWnd::FromHandlePermanent(w))
            return wnd;
        if (w->isWindow())
            break;
    }
    return nullptr;
}
} // namespace

LRESULT SendCommandToParent(QWidget* control, UINT code) {
    CWnd* target = control ? NotifyTarget(control) : nullptr;
    if (!target)
        return 0;
    const int id = ControlId(control);
    return target->SendMessage(WM_COMMAND, MAKEWPARAM(static_cast<unsigned>(id), code),
                               reinterpret_cast<LPARAM>(CWnd::FromHandlePermanent(control)));
}

LRESULT SendNotifyToParent(QWidget* control, NMHDR* header) {
    CWnd* target = control ? NotifyTarget(control) : nullptr;
    if (!target)
        return 0;
    header->hwndFrom = CWnd::FromHandlePermanent(control);
    header->idFrom = static_cast<UINT_PTR>(ControlId(control));
    return target->SendMessage(WM_NOTIFY, header->idFrom, reinterpret_cast<LPARAM>(header));
}

int ControlId(const QWidget* widget) {
    if (!widget)
        return 0;
    const QVariant v = widget->property(kIdProperty);
    return v.isValid() ? v.toInt() : 0;
}

void SetControlId(QWidget* widget, int id) {
    widget->setProperty(kIdProperty, id);
    widget->setObjectName(QStringLiteral("ctl_%1").arg(id));
}

int CompareItemTexts(const CString& a, const CString& b) {
    // The system's order: the user's locale, case ignored; Chinese by its reading.
    static const QCollator collator = [] {
        QCollator c(QLocale(QLocale::Chinese, QLocale::China));
        c.setCaseSensitivity(Qt::CaseInsensitive);
        c.setNumericMode(false);
        return c;
    }();
    return collator.compare(ToQString(a), ToQString(b));
}

} // namespace koqdde::ui
