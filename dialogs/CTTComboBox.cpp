#include "dialogs/CTTComboBox.h"

#include "ui/QtString.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCursor>
#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <set>
#include <utility>

namespace {

// The shared tip: a frameless window that never takes the focus, with the text centred on the
// information colour, and the one timer that takes it away again.
class TipWnd : public QWidget {
public:
    explicit TipWnd(const QFont& font)
        : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint), m_font(font) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setMouseTracking(true);
        setCursor(Qt::ArrowCursor);
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, this, [this] { Expire(); });
    }

    // The window whose text the tip shows. The tip opens under the pointer and takes it from
    // that window, so, as a capture for the owner would, it hands the pointer's moves on to
    // the owner and tells it when the pointer leaves it.
    void SetOwner(QWidget* owner) { m_owner = owner; }

    void SetText(const CString& text) {
        m_text = text;
        update();
    }
    const CString& Text() const { return m_text; }

    // Starting again replaces a running timer, so each new tip gets the full time.
    void StartTimer(unsigned milliseconds) { m_timer.start(static_cast<int>(milliseconds)); }
    bool TimerActive() const { return m_timer.isActive(); }
    void Expire() {
        m_timer.stop();
        hide();
    }

protected:
    void enterEvent(QEnterEvent*) override { m_hasPointer = true; }
    void mouseMoveEvent(QMouseEvent* event) override {
        m_hasPointer = true;
        PassPointerOn(event->globalPosition());
    }
    // Only a pointer that was over the tip can leave it towards somewhere else.
    void leaveEvent(QEvent*) override {
        if (std::exchange(m_hasPointer, false))
            PassPointerOn(QCursor::pos());
    }
    void hideEvent(QHideEvent*) override { m_hasPointer = false; }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::ToolTipBase));
        painter.setPen(Qt::black);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        painter.setFont(m_font);
        // No mnemonic handling: an "&" in an entry is shown as it is.
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine,
                         koqdde::ui::ToQString(m_text));
    }

private:
    void PassPointerOn(QPointF global) {
        QWidget* owner = m_owner;
        if (!owner || !isVisible())
            return;
        const QPointF local = owner->mapFromGlobal(global);
        if (owner->rect().contains(local.toPoint())) {
            QMouseEvent move(QEvent::MouseMove, local, global, Qt::NoButton,
                             QGuiApplication::mouseButtons(), Qt::NoModifier);
            QApplication::sendEvent(owner, &move);
            return;
        }
        hide();
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(owner, &leave);
    }

    QFont m_font;
    CString m_text;
    QTimer m_timer;
    QPointer<QWidget> m_owner;
    bool m_hasPointer = false;
};

// Made once and kept until the process ends, as the tip may be made again later.
QFont* g_font = nullptr;
QPointer<TipWnd> g_tip;
// The boxes bound with tips on. The tip goes with the last of them.
std::set<CTTComboBox*> g_hooked;

bool HaveWidgetApp() {
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

CRect ClientRectOf(const QWidget* widget) {
    return widget ? CRect(0, 0, widget->width(), widget->height()) : CRect();
}

} // namespace

int CTTComboBox::s_nLastItem = -1;
unsigned CTTComboBox::s_nTipTime = 9000;

CTTComboBox::CTTComboBox() {
    if (!g_font && HaveWidgetApp())
        g_font = new QFont(QApplication::font("QStatusBar"));
    CreateTipWindow();
}

CTTComboBox::~CTTComboBox() {
    if (m_bHooked) {
        // A tip left standing would name an entry of a box that is gone.
        if (g_tip && g_tip->isVisible())
            HideTip();
        g_hooked.erase(this);
    }
    if (g_hooked.empty() && g_tip)
        delete g_tip.data();
    m_arrDisabled.clear();
}

void CTTComboBox::CreateTipWindow() {
    if (!g_tip && g_font)
        g_tip = new TipWnd(*g_font);
}

QWidget* CTTComboBox::GetTipWnd() {
    return g_tip.data();
}

bool CTTComboBox::IsTipVisible() {
    return g_tip && g_tip->isVisible();
}

CString CTTComboBox::GetTipText() {
    return g_tip ? g_tip->Text() : CString();
}

CRect CTTComboBox::GetTipRect() {
    if (!g_tip)
        return {};
    const QRect r = g_tip->geometry();
    return CRect(r.x(), r.y(), r.x() + r.width(), r.y() + r.height());
}

bool CTTComboBox::IsTipTimerActive() {
    return g_tip && g_tip->TimerActive();
}

bool CTTComboBox::FireTipTimer() {
    if (!IsTipTimerActive())
        return false;
    g_tip->Expire();
    return true;
}

QWidget* CTTComboBox::GetEditWnd() const {
    return GetEditWidget();
}

QWidget* CTTComboBox::GetListWnd() const {
    return GetListWidget();
}

void CTTComboBox::PreSubclassWindow() {
    CComboBox::PreSubclassWindow();
    if (m_bTipEnabled == 1)
        HookChildren();
}

void CTTComboBox::HookChildren() {
    m_rcButton = GetButtonRect();
    m_bHooked = true;
    g_hooked.insert(this);
}

CRect CTTComboBox::MeasureText(const CString& text, const CRect& rect) {
    if (!g_font)
        return CRect(rect.left, rect.top, rect.left, rect.top);
    const QFontMetrics metrics(*g_font);
    const int width = metrics.horizontalAdvance(koqdde::ui::ToQString(text));
    return CRect(rect.left, rect.top, rect.left + width, rect.top + metrics.height());
}

void CTTComboBox::HideTip() {
    if (g_tip)
        g_tip->hide();
}

void CTTComboBox::ShowTip(QWidget* owner, CRect rect, int availableRight, const CString& text) {
    if (rect.right <= availableRight) {
        HideTip();
        return;
    }
    if (!g_tip || !owner)
        return;
    rect.InflateRect(2, 2);
    const QPoint topLeft = owner->mapToGlobal(QPoint(rect.left, rect.top));
    g_tip->SetText(text);
    g_tip->SetOwner(owner);
    g_tip->hide();
    g_tip->setGeometry(topLeft.x(), topLeft.y(), rect.Width(), rect.Height());
    g_tip->show();
    g_tip->raise();
    g_tip->StartTimer(s_nTipTime);
}

void CTTComboBox::OnBoxMouseHover(CPoint) {
    if (!m_bTipEnabled)
        return;
    CRect available = GetClientRect();
    available.DeflateRect(2, 2);
    available.right -= m_rcButton.Width();
    const CString text = GetWindowText();
    CRect needed = MeasureText(text, available);
    needed.bottom = available.bottom;
    ShowTip(widget(), needed, available.right, text);
}

void CTTComboBox::OnBoxMouseLeave() {
    HideTip();
}

void CTTComboBox::OnEditMouseHover(CPoint) {
    if (!m_bHooked)
        return;
    auto* edit = qobject_cast<QLineEdit*>(GetEditWnd());
    if (!edit)
        return;
    const CRect available = ClientRectOf(edit);
    const CString text = koqdde::ui::FromQString(edit->text());
    CRect needed = MeasureText(text, available);
    needed.bottom = available.bottom;
    ShowTip(edit, needed, available.right, text);
}

void CTTComboBox::OnEditMouseLeave() {
    if (!m_bHooked)
        return;
    s_nLastItem = -1;
    HideTip();
}

// Runs on every move inside the open list, so it leaves at once while the pointer stays on the
// line the tip already stands for.
void CTTComboBox::OnListMouseMove(int index, CPoint) {
    if (!m_bHooked)
        return;
    if (index < 0 || index >= GetCount() || index == s_nLastItem)
        return;
    s_nLastItem = index;
    const CString text = GetLBText(index);
    const CRect line = GetListItemRect(index);
    // Line rectangles are in the coordinates of the list's client area, its viewport.
    auto* list = qobject_cast<QAbstractScrollArea*>(GetListWnd());
    ShowTip(list ? list->viewport() : nullptr, MeasureText(text, line), line.right, text);
}

void CTTComboBox::OnListMouseLeave() {
    if (!m_bHooked)
        return;
    s_nLastItem = -1;
    HideTip();
}

BOOL CTTComboBox::OnListItemClick(int index) {
    if (m_bHooked && IsItemDisabled(index))
        return FALSE;
    return TRUE;
}

void CTTComboBox::OnListShown() {
    if (m_bHooked)
        AlignDropList();
}

void CTTComboBox::AlignDropList() {
    QWidget* list = GetListWnd();
    if (!list)
        return;
    const int extra = GetDroppedWidth() - GetWindowRect().Width();
    int shift = 0;
    if (m_nDropAlign == kAlignRight)
        shift = extra;
    else if (m_nDropAlign == kAlignCenter)
        shift = extra / 2;
    // The list is a window of its own: move that window, keeping its size.
    QWidget* popup = list->window();
    popup->move(popup->x() - shift, popup->y());
}

// The wheel has already moved the selection; step over disabled entries in the direction it
// went. The array is walked once in its own order, so a run of disabled entries is passed only
// when they stand in the array in the order the wheel meets them.
void CTTComboBox::OnAfterMouseWheel(int delta) {
    int current = GetCurSel();
    if (current < 0 || m_arrDisabled.empty())
        return;
    for (unsigned disabled : m_arrDisabled) {
        if (static_cast<int>(disabled) != current)
            continue;
        current += delta < 0 ? 1 : -1;
        SetCurSel(current);
    }
}

int CTTComboBox::SetItemDisabled(int index, int disabled) {
    if (index < 0 || index > GetCount() - 1)
        return 0;
    auto it = std::find(m_arrDisabled.begin(), m_arrDisabled.end(), static_cast<unsigned>(index));
    if (it == m_arrDisabled.end()) {
        m_arrDisabled.push_back(static_cast<unsigned>(index));
        return 1;
    }
    if (!disabled)
        m_arrDisabled.erase(it);
    return 1;
}

bool CTTComboBox::IsItemDisabled(int index) const {
    return index >= 0 && std::find(m_arrDisabled.begin(), m_arrDisabled.end(),
                                   static_cast<unsigned>(index)) != m_arrDisabled.end();
}
