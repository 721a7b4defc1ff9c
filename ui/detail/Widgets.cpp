#include "ui/detail/Widgets.h"

#include "ui/CComboBox.h"
#include "ui/CListBox.h"
#include "ui/QtString.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QCursor>
#include <QGroupBox>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QToolTip>
#include <QValidator>
#include <QWheelEvent>

#include <algorithm>

// The combo box hooks are protected members of CComboBox; its widget reaches them here.
class KoComboHooks {
public:
    static CComboBox* Of(QWidget* w) {
        return dynamic_cast<CComboBox*>(CWnd::FromHandlePermanent(w));
    }
    static void BoxHover(QWidget* w, QPoint p) {
        if (CComboBox* c = Of(w))
            c->OnBoxMouseHover(CPoint(p.x(), p.y()));
    }
    static void BoxLeave(QWidget* w) {
        if (CComboBox* c = Of(w))
            c->OnBoxMouseLeave();
    }
    static void EditHover(QWidget* w, QPoint p) {
        if (CComboBox* c = Of(w))
            c->OnEditMouseHover(CPoint(p.x(), p.y()));
    }
    static void EditLeave(QWidget* w) {
        if (CComboBox* c = Of(w))
            c->OnEditMouseLeave();
    }
    static void ListMove(QWidget* w, int index, QPoint p) {
        if (CComboBox* c = Of(w))
            c->OnListMouseMove(index, CPoint(p.x(), p.y()));
    }
    static void ListLeave(QWidget* w) {
        if (CComboBox* c = Of(w))
            c->OnListMouseLeave();
    }
    static bool ListClick(QWidget* w, int index) {
        CComboBox* c = Of(w);
        return !c || c->OnListItemClick(index) != FALSE;
    }
    static void ListShown(QWidget* w) {
        if (CComboBox* c = Of(w))
            c->OnListShown();
    }
    static void AfterWheel(QWidget* w, int delta) {
        if (CComboBox* c = Of(w))
            c->OnAfterMouseWheel(delta);
    }
};

namespace koqdde::ui {

namespace {
constexpr const char* kProgramProperty = "koqdde_program";
constexpr const char* kMultiLineTextProperty = "koqdde_multiline_text";
std::vector<QPointer<QWidget>> g_runningDialogs;
} // namespace

ProgramScope::ProgramScope(QWidget* widget) : m_widget(widget) {
    if (widget)
        widget->setProperty(kProgramProperty, widget->property(kProgramProperty).toInt() + 1);
}

ProgramScope::~ProgramScope() {
    if (m_widget)
        m_widget->setProperty(kProgramProperty, m_widget->property(kProgramProperty).toInt() - 1);
}

bool InProgramChange(const QWidget* widget) {
    return widget && widget->property(kProgramProperty).toInt() > 0;
}

bool IsShownAsWindows(const QWidget* widget) {
    for (const QWidget* w = widget; w; w = w->parentWidget()) {
        if (w->isWindow())
            return w->isVisible() || w->property("koqdde_shown").toBool();
        if (w->isHidden())
            return false;
    }
    return false;
}

QString StripMnemonic(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&') {
            if (i + 1 < text.size() && text[i + 1] == u'&') {
                out += u'&';
                ++i;
            }
            continue;
        }
        out += text[i];
    }
    return out;
}

void SetWidgetText(QWidget* widget, const CString& text) {
    const QString q = ToQString(text);
    ProgramScope program(widget);
    if (auto* label = dynamic_cast<KoStatic*>(widget)) {
        label->rawText = q;
        label->setText(StripMnemonic(q));
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->setText(q);
    } else if (auto* group = qobject_cast<QGroupBox*>(widget)) {
        group->setTitle(StripMnemonic(q));
    } else if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        edit->setText(q);
    } else if (auto* lines = qobject_cast<QPlainTextEdit*>(widget)) {
        // Read back as set until the user edits it: only "\r\n" breaks a line.
        lines->setProperty(kMultiLineTextProperty, q);
        QString shown = q;
        lines->setPlainText(shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
        if (combo->isEditable())
            combo->setEditText(q);
        else if (const int i = combo->findText(q, Qt::MatchFixedString); i >= 0)
            combo->setCurrentIndex(i);
    } else if (auto* plain = qobject_cast<QLabel*>(widget)) {
        plain->setText(q);
    } else {
        widget->setWindowTitle(q);
    }
}

CString WidgetText(const QWidget* widget) {
    if (auto* label = dynamic_cast<const KoStatic*>(widget))
        return FromQString(label->rawText);
    if (auto* button = qobject_cast<const QAbstractButton*>(widget))
        return FromQString(button->text());
    if (auto* group = qobject_cast<const QGroupBox*>(widget))
        return FromQString(group->title());
    if (auto* edit = qobject_cast<const QLineEdit*>(widget))
        return FromQString(edit->text());
    if (auto* lines = qobject_cast<const QPlainTextEdit*>(widget)) {
        const QVariant set = lines->property(kMultiLineTextProperty);
        if (set.isValid())
            return FromQString(set.toString());
        return FromQString(lines->toPlainText().replace(u'\n', QStringLiteral("\r\n")));
    }
    if (auto* combo = qobject_cast<const QComboBox*>(widget))
        return FromQString(combo->currentText());
    if (auto* plain = qobject_cast<const QLabel*>(widget))
        return FromQString(plain->text());
    return FromQString(widget->windowTitle());
}

bool TypeIntoEdit(QWidget* widget, const CString& text) {
    if (!widget || !widget->isEnabled())
        return false;
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        if (edit->isReadOnly())
            return false;
        edit->setFocus();
        edit->selectAll();
        edit->insert(ToQString(text)); // emits textEdited, as typing does
        return true;
    }
    if (auto* lines = qobject_cast<QPlainTextEdit*>(widget)) {
        if (lines->isReadOnly())
            return false;
        lines->setFocus();
        lines->selectAll();
        QString typed = ToQString(text);
        lines->insertPlainText(typed.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
        return true;
    }
    return false;
}

void WatchMultiLineEdit(QPlainTextEdit* lines) {
    QObject::connect(lines, &QPlainTextEdit::textChanged, lines, [lines] {
        if (InProgramChange(lines))
            return;
        // The user's text is read from the field from now on.
        lines->setProperty(kMultiLineTextProperty, QVariant());
        SendCommandToParent(lines, EN_CHANGE);
    });
}

void SetButtonChecked(QAbstractButton* button, bool checked) {
    if (!button || button->isChecked() == checked)
        return;
    ProgramScope program(button);
    // Qt keeps one radio of an exclusive group checked; the window system lets a program clear
    // it, so exclusiveness is lifted for a clearing.
    QButtonGroup* group = button->group();
    const bool exclusiveGroup = group && group->exclusive();
    const bool autoExclusive = button->autoExclusive();
    if (!checked) {
        if (exclusiveGroup)
            group->setExclusive(false);
        button->setAutoExclusive(false);
    }
    button->setChecked(checked);
    if (!checked) {
        button->setAutoExclusive(autoExclusive);
        if (exclusiveGroup)
            group->setExclusive(true);
    }
}

void PushRunningDialog(QWidget* dialog) {
    g_runningDialogs.emplace_back(dialog);
}

void PopRunningDialog(QWidget* dialog) {
    auto it = std::find(g_runningDialogs.begin(), g_runningDialogs.end(), dialog);
    if (it != g_runningDialogs.end())
        g_runningDialogs.erase(it);
    std::erase_if(g_runningDialogs, [](const QPointer<QWidget>& p) { return p.isNull(); });
}

QWidget* FocusWidget() {
    if (QWidget* w = QApplication::focusWidget())
        return w;
    for (auto it = g_runningDialogs.rbegin(); it != g_runningDialogs.rend(); ++it) {
        if (*it)
            return (*it)->focusWidget();
    }
    return nullptr;
}

namespace {
template <typename TextAt> int SortedIndex(int count, TextAt textAt, const CString& text) {
    // Binary search for the first entry that sorts after the text.
    int lo = 0, hi = count;
    while (lo < hi) {
        const int mid = (lo + hi) / 2;
        if (CompareItemTexts(textAt(mid), text) <= 0)
            lo = mid + 1;
        else
            hi = mid;
    }
    return lo;
}
} // namespace

int AddStringIndex(const KoListBox* list, const CString& text) {
    if (!list->sorted)
        return list->count();
    return SortedIndex(
        list->count(), [list](int i) { return FromQString(list->item(i)->text()); }, text);
}

int AddStringIndex(const KoComboBox* combo, const CString& text) {
    if (!combo->sorted)
        return combo->count();
    return SortedIndex(
        combo->count(), [combo](int i) { return FromQString(combo->itemText(i)); }, text);
}

// --- dialog -------------------------------------------------------------------------------

KoDialog::KoDialog(QWidget* parent) : QDialog(parent) {
    setSizeGripEnabled(false);
}

void KoDialog::reject() {
    // Esc: the dialog's Cancel command, as the dialog manager sends it.
    if (CWnd* wnd = CWnd::FromHandlePermanent(this))
        wnd->SendMessage(WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    else
        QDialog::reject();
}

void KoDialog::closeEvent(QCloseEvent* event) {
    // The close box: WM_CLOSE; the dialog goes only through EndDialog.
    if (CWnd* wnd = CWnd::FromHandlePermanent(this)) {
        event->ignore();
        wnd->SendMessage(WM_CLOSE, 0, 0);
        return;
    }
    QDialog::closeEvent(event);
}

// Enter as the dialog manager takes it: the focused push button, else the enabled default
// button, else the command IDOK, which a dialog without an OK button still receives.
void KoDialog::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    CWnd* wnd = CWnd::FromHandlePermanent(this);
    if (!enter || !wnd || (event->modifiers() & ~Qt::KeypadModifier) != 0) {
        QDialog::keyPressEvent(event);
        return;
    }
    auto usable = [](const QPushButton* button) {
        return button && button->isEnabled() && button->isVisibleTo(button->window());
    };
    if (auto* focused = qobject_cast<QPushButton*>(focusWidget()); usable(focused)) {
        focused->click();
        return;
    }
    for (QPushButton* button : findChildren<QPushButton*>()) {
        if (button->isDefault() && usable(button)) {
            button->click();
            return;
        }
    }
    wnd->SendMessage(WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
}

// --- static -------------------------------------------------------------------------------

void KoStatic::mouseReleaseEvent(QMouseEvent* event) {
    QLabel::mouseReleaseEvent(event);
    if (notify && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        SendCommandToParent(this, STN_CLICKED);
}

// --- list box -----------------------------------------------------------------------------

KoListBox::KoListBox(QWidget* parent) : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformItemSizes(true);
    connect(this, &QListWidget::itemSelectionChanged, this, [this] {
        if (notify && !InProgramChange(this))
            SendCommandToParent(this, LBN_SELCHANGE);
    });
    connect(this, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem*) {
        if (notify && !InProgramChange(this))
            SendCommandToParent(this, LBN_DBLCLK);
    });
}

CString KoListBox::TipAt(QPoint point) {
    auto* list = dynamic_cast<CListBox*>(CWnd::FromHandlePermanent(this));
    if (!list || !tips)
        return CString();
    TOOLINFO info;
    info.hwnd = list;
    const LPARAM id = list->OnToolHitTest(CPoint(point.x(), point.y()), &info);
    if (id < 0)
        return CString();
    if (!info.textCallback)
        return info.text;
    CString text;
    return list->OnToolTipText(info.uId, text) ? text : CString();
}

bool KoListBox::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const CString text = TipAt(help->pos());
        if (text.IsEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), ToQString(text), viewport());
        return true;
    }
    return QListWidget::viewportEvent(event);
}

// --- combo box ----------------------------------------------------------------------------

KoComboBox::KoComboBox(QWidget* parent, bool editable) : QComboBox(parent) {
    setEditable(editable);
    setMaxVisibleItems(30);
    if (editable) {
        // A Windows drop-down neither completes nor adds what is typed.
        setInsertPolicy(QComboBox::NoInsert);
        setCompleter(nullptr);
        lineEdit()->installEventFilter(this);
        connect(lineEdit(), &QLineEdit::textEdited, this, [this] {
            if (!InProgramChange(this))
                SendCommandToParent(this, CBN_EDITCHANGE);
        });
    }
    view()->viewport()->installEventFilter(this);
    view()->viewport()->setMouseTracking(true);
    setMouseTracking(true);
    if (editable)
        lineEdit()->setMouseTracking(true);
    m_hoverTimer.setSingleShot(true);
    m_hoverTimer.setInterval(kHoverTimeMs);
    connect(&m_hoverTimer, &QTimer::timeout, this, [this] { HoverExpired(); });
    connect(this, &QComboBox::activated, this, [this] {
        if (!InProgramChange(this))
            SendCommandToParent(this, CBN_SELCHANGE);
    });
}

void KoComboBox::showPopup() {
    if (dropped)
        return;
    if (!InProgramChange(this))
        SendCommandToParent(this, CBN_DROPDOWN);
    dropped = true;
    QComboBox::showPopup();
    KoComboHooks::ListShown(this);
}

void KoComboBox::hidePopup() {
    QComboBox::hidePopup();
    if (!dropped)
        return;
    dropped = false;
    if (!InProgramChange(this))
        SendCommandToParent(this, CBN_CLOSEUP);
}

void KoComboBox::ListMouseMove(QPoint pos) {
    const QModelIndex index = view()->indexAt(pos);
    KoComboHooks::ListMove(this, index.isValid() ? index.row() : -1, pos);
}

void KoComboBox::ListLeave() {
    KoComboHooks::ListLeave(this);
}

bool KoComboBox::ListClickAllowed(int index) {
    return KoComboHooks::ListClick(this, index);
}

bool KoComboBox::UserChoose(int index) {
    if (!isEnabled() || index < 0 || index >= count())
        return false;
    showPopup();
    if (!ListClickAllowed(index))
        return false;
    {
        ProgramScope program(this);
        setCurrentIndex(index);
    }
    hidePopup();
    emit activated(index);
    return true;
}

namespace {
// A leave while the pointer still lies within the widget comes from a window opened over it
// (the tip of a cut text): the pointer has not left, so the leave is not passed on. The tip
// tells the widget when the pointer really leaves.
bool PointerStillInside(const QWidget* widget) {
    return widget->rect().contains(widget->mapFromGlobal(QCursor::pos()));
}
} // namespace

bool KoComboBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == view()->viewport()) {
        switch (event->type()) {
        case QEvent::MouseMove:
            ListMouseMove(static_cast<QMouseEvent*>(event)->position().toPoint());
            break;
        case QEvent::Leave:
            if (!PointerStillInside(view()->viewport()))
                ListLeave();
            break;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick: {
            const QModelIndex index =
                view()->indexAt(static_cast<QMouseEvent*>(event)->position().toPoint());
            if (index.isValid() && !ListClickAllowed(index.row()))
                return true;
            break;
        }
        default:
            break;
        }
    } else if (isEditable() && watched == lineEdit()) {
        if (event->type() == QEvent::MouseMove)
            TrackHover(lineEdit(), static_cast<QMouseEvent*>(event)->position().toPoint());
        else if (event->type() == QEvent::Leave && !PointerStillInside(lineEdit()))
            EndHover(lineEdit());
        else if (event->type() == QEvent::ToolTip)
            return true; // the hover above stands for it
    }
    return QComboBox::eventFilter(watched, event);
}

bool KoComboBox::event(QEvent* event) {
    if (event->type() == QEvent::MouseMove)
        TrackHover(this, static_cast<QMouseEvent*>(event)->position().toPoint());
    else if (event->type() == QEvent::Leave && !PointerStillInside(this))
        EndHover(this);
    else if (event->type() == QEvent::ToolTip)
        return true;
    return QComboBox::event(event);
}

void KoComboBox::TrackHover(QWidget* target, QPoint pos) {
    if (target != m_hoverTarget) {
        m_hoverTarget = target;
        m_hoverRaised = false;
    } else if (m_hoverRaised || (m_hoverTimer.isActive() &&
                                 (pos - m_hoverAnchor).manhattanLength() <= kHoverSlopPx)) {
        return;
    }
    m_hoverAnchor = pos;
    m_hoverTimer.start();
}

void KoComboBox::EndHover(QWidget* target) {
    if (target != m_hoverTarget)
        return;
    m_hoverTimer.stop();
    m_hoverTarget = nullptr;
    m_hoverRaised = false;
    if (target == this)
        KoComboHooks::BoxLeave(this);
    else
        KoComboHooks::EditLeave(this);
}

bool KoComboBox::RaisePendingHover() {
    if (!m_hoverTimer.isActive())
        return false;
    m_hoverTimer.stop();
    HoverExpired();
    return true;
}

void KoComboBox::HoverExpired() {
    QWidget* target = m_hoverTarget;
    if (!target || m_hoverRaised)
        return;
    m_hoverRaised = true;
    if (target == this)
        KoComboHooks::BoxHover(this, m_hoverAnchor);
    else
        KoComboHooks::EditHover(this, m_hoverAnchor);
}

void KoComboBox::wheelEvent(QWheelEvent* event) {
    QComboBox::wheelEvent(event);
    KoComboHooks::AfterWheel(this, event->angleDelta().y());
}

// --- tab ----------------------------------------------------------------------------------

KoTabCtrl::KoTabCtrl(QWidget* parent) : QWidget(parent), bar(new QTabBar(this)) {
    bar->setDrawBase(false);
    bar->setExpanding(false);
    bar->setUsesScrollButtons(true);
    connect(bar, &QTabBar::currentChanged, this, [this](int index) {
        if (InProgramChange(this)) {
            lastIndex = index;
            return;
        }
        // A user's change: ask first with the old tab still current, then move.
        const int old = lastIndex;
        {
            ProgramScope program(this);
            bar->setCurrentIndex(old);
        }
        NMHDR changing;
        changing.code = static_cast<UINT>(TCN_SELCHANGING);
        if (SendNotifyToParent(this, &changing) != 0)
            return;
        {
            ProgramScope program(this);
            bar->setCurrentIndex(index);
        }
        NMHDR changed;
        changed.code = static_cast<UINT>(TCN_SELCHANGE);
        SendNotifyToParent(this, &changed);
    });
}

void KoTabCtrl::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    bar->setGeometry(0, 0, width(), bar->sizeHint().height());
}

void KoTabCtrl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOptionFrame option;
    option.initFrom(this);
    option.rect =
        QRect(0, bar->sizeHint().height() - 1, width(), height() - bar->sizeHint().height() + 1);
    option.frameShape = QFrame::StyledPanel;
    option.lineWidth = 1;
    style()->drawPrimitive(QStyle::PE_FrameTabWidget, &option, &painter, this);
}

// --- tree ---------------------------------------------------------------------------------

void KoTreeView::drawBranches(QPainter* painter, const QRect& rect,
                              const QModelIndex& index) const {
    QTreeWidget::drawBranches(painter, rect, index);
    if (!hasLines)
        return;
    const int indent = indentation();
    // The branch area holds one column per level, the item's own rightmost.
    const int levels = rect.width() / std::max(1, indent);
    if (levels <= 0)
        return;
    painter->save();
    QPen pen(palette().color(QPalette::Mid));
    pen.setStyle(Qt::DotLine);
    painter->setPen(pen);
    const int midY = rect.center().y();
    const bool hasChildren = model()->hasChildren(index);
    const int gap = hasChildren ? 5 : 0; // leave the expand button clear
    int column = levels - 1;
    const int ownX = rect.left() + column * indent + indent / 2;
    const bool ownNext = index.sibling(index.row() + 1, 0).isValid();
    painter->drawLine(ownX, rect.top(), ownX, midY - gap);
    if (ownNext)
        painter->drawLine(ownX, midY + gap, ownX, rect.bottom());
    painter->drawLine(ownX + gap, midY, rect.left() + levels * indent - 2, midY);
    // Each ancestor with a sibling below carries its line on through this row.
    for (QModelIndex up = index.parent(); up.isValid() && --column >= 0; up = up.parent()) {
        if (up.sibling(up.row() + 1, 0).isValid()) {
            const int x = rect.left() + column * indent + indent / 2;
            painter->drawLine(x, rect.top(), x, rect.bottom());
        }
    }
    painter->restore();
}

namespace {
// Refuses a text wider than the field's visible text area.
class FitWidthValidator : public QValidator {
public:
    explicit FitWidthValidator(QLineEdit* edit) : QValidator(edit), m_edit(edit) {}
    State validate(QString& input, int& /*pos*/) const override {
        // The text area: the field less its frame, text margins and the 2-pixel inner margin
        // on each side that a line edit keeps (fixed in the widget, not read from the style).
        const int frame =
            m_edit->hasFrame() ? m_edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth) : 0;
        const QMargins margins = m_edit->textMargins();
        const int available =
            m_edit->width() - 2 * frame - margins.left() - margins.right() - 2 * 2;
        const int needed = m_edit->fontMetrics().horizontalAdvance(input);
        return needed <= available ? Acceptable : Invalid;
    }

private:
    QLineEdit* m_edit;
};
} // namespace

void LimitTypingToWidth(QLineEdit* edit) {
    if (edit)
        edit->setValidator(new FitWidthValidator(edit));
}

void HideSelectionWhenUnfocused(QAbstractItemView* view) {
    QPalette palette = view->palette();
    palette.setColor(QPalette::Inactive, QPalette::Highlight,
                     palette.color(QPalette::Inactive, QPalette::Base));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText,
                     palette.color(QPalette::Inactive, QPalette::Text));
    view->setPalette(palette);
}

KoTreeView::KoTreeView(QWidget* parent) : QTreeWidget(parent) {
    setHeaderHidden(true);
    setColumnCount(1);
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* current, QTreeWidgetItem* previous) {
                if (InProgramChange(this))
                    return;
                // Put the old item back while the parent is asked, then move with the notices.
                {
                    ProgramScope program(this);
                    setCurrentItem(previous);
                    if (!previous)
                        clearSelection();
                }
                MoveSelection(current, TVC_BYMOUSE);
            });
}

bool KoTreeView::MoveSelection(QTreeWidgetItem* item, UINT action) {
    QTreeWidgetItem* old = currentItem();
    if (old == item)
        return true;
    const QPersistentModelIndex target(item ? indexFromItem(item) : QModelIndex());
    NMTREEVIEW changing;
    changing.hdr.code = static_cast<UINT>(TVN_SELCHANGING);
    changing.action = action;
    changing.itemOld = reinterpret_cast<HTREEITEM>(old);
    changing.itemNew = reinterpret_cast<HTREEITEM>(item);
    if (SendNotifyToParent(this, &changing.hdr) != 0)
        return false;
    if (item && !target.isValid())
        return false; // the handler removed it
    old = currentItem();
    {
        ProgramScope program(this);
        if (item) {
            setCurrentItem(item);
        } else {
            setCurrentItem(nullptr);
            clearSelection();
        }
    }
    NMTREEVIEW changed;
    changed.hdr.code = static_cast<UINT>(TVN_SELCHANGED);
    changed.action = action;
    changed.itemOld = reinterpret_cast<HTREEITEM>(old);
    changed.itemNew = reinterpret_cast<HTREEITEM>(item);
    SendNotifyToParent(this, &changed.hdr);
    return true;
}

// --- list view ----------------------------------------------------------------------------

KoListView::KoListView(QWidget* parent) : QTreeWidget(parent) {
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setItemsExpandable(false);
    setAllColumnsShowFocus(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setColumnCount(0);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { SyncStates(); });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { SyncStates(); });
}

UINT KoListView::StoredState(int row) const {
    const QTreeWidgetItem* it = topLevelItem(row);
    return it ? it->data(0, kItemStateRole).toUInt() : 0;
}

void KoListView::SyncStates(bool notify) {
    if (batchDepth > 0) {
        syncPending = true; // the batch syncs once when its whole change is made
        return;
    }
    syncPending = false;
    const int generation = ++syncGeneration;
    const int count = topLevelItemCount();
    const QTreeWidgetItem* current = currentItem();
    std::vector<int> order;
    std::vector<UINT> actual(static_cast<size_t>(count), 0);
    for (int row = 0; row < count; ++row) {
        const QTreeWidgetItem* it = topLevelItem(row);
        actual[static_cast<size_t>(row)] =
            (it->isSelected() ? LVIS_SELECTED : 0) | (it == current ? LVIS_FOCUSED : 0);
    }
    for (int pass = 0; pass < 2; ++pass) {
        for (int row = 0; row < count; ++row) {
            const UINT stored = StoredState(row);
            const UINT now = actual[static_cast<size_t>(row)];
            if (stored == now)
                continue;
            const bool losesSelection = (stored & LVIS_SELECTED) && !(now & LVIS_SELECTED);
            if (losesSelection == (pass == 0))
                order.push_back(row);
        }
    }
    for (int row : order) {
        if (generation != syncGeneration || row >= topLevelItemCount())
            return; // a nested change has synced the states itself
        QTreeWidgetItem* it = topLevelItem(row);
        const UINT old = it->data(0, kItemStateRole).toUInt();
        const UINT now = actual[static_cast<size_t>(row)];
        it->setData(0, kItemStateRole, now);
        if ((now & LVIS_SELECTED) && !(old & LVIS_SELECTED))
            selectionMark = row;
        if (!notify)
            continue;
        NMLISTVIEW nm;
        nm.hdr.code = static_cast<UINT>(LVN_ITEMCHANGED);
        nm.iItem = row;
        nm.uOldState = old;
        nm.uNewState = now;
        nm.uChanged = LVIF_STATE;
        nm.lParam = static_cast<LPARAM>(it->data(0, kItemDataRole).toLongLong());
        SendNotifyToParent(this, &nm.hdr);
    }
}

void KoListView::ClickEmpty() {
    ListViewBatch batch(this, true);
    clearSelection();
}

void KoListView::mousePressEvent(QMouseEvent* event) {
    // One click moves focus and selection together: one notice per item, not one per signal.
    ListViewBatch batch(this, true);
    if (!indexAt(event->position().toPoint()).isValid()) {
        clearSelection(); // a click beside the items drops the selection
        return;
    }
    QTreeWidget::mousePressEvent(event);
}

void KoListView::keyPressEvent(QKeyEvent* event) {
    ListViewBatch batch(this, true);
    QTreeWidget::keyPressEvent(event);
}

} // namespace koqdde::ui
