#pragma once
// The Qt widgets behind the control classes. They hold the state (as a window does) and send
// the notices to the parent window; the control classes only call them. Internal to ui/.

#include "platform/CString.h"
#include "ui/Win.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTabBar>
#include <QTimer>
#include <QTreeWidget>

#include <vector>

namespace koqdde::ui {

// Program calls run inside a ProgramScope on their widget: the widget's signal handlers then
// know that the change is not the user's and send nothing.
class ProgramScope {
public:
    explicit ProgramScope(QWidget* widget);
    ~ProgramScope();
    ProgramScope(const ProgramScope&) = delete;
    ProgramScope& operator=(const ProgramScope&) = delete;

private:
    QPointer<QWidget> m_widget;
};
bool InProgramChange(const QWidget* widget);

// Windows' visibility: the widget and its ancestors are not hidden, and the top window is shown
// (a dialog answered by a modal hook counts as shown).
bool IsShownAsWindows(const QWidget* widget);
// A multi-line edit keeps its lines as the window system's does: "\r\n" between them in the
// text the program sets and reads.
void SetWidgetText(QWidget* widget, const CString& text);
CString WidgetText(const QWidget* widget);
// A multi-line edit sends EN_CHANGE when the user changes its text.
void WatchMultiLineEdit(QPlainTextEdit* lines);
// Replaces the whole text of a single- or multi-line edit as typing does, so that EN_CHANGE
// follows; false when the widget is no edit or is disabled or read-only.
bool TypeIntoEdit(QWidget* widget, const CString& text);
// Checks or clears a check box or radio button. Clearing the checked radio of its group is
// allowed, as a program may leave a group with none checked.
void SetButtonChecked(QAbstractButton* button, bool checked);
// Text with Windows' "&" mnemonics as a label shows it ("&&" is one "&").
QString StripMnemonic(const QString& text);
// The focused widget: the application's, else the focus child of the running dialog.
QWidget* FocusWidget();
void PushRunningDialog(QWidget* dialog);
void PopRunningDialog(QWidget* dialog);

class KoListBox;
class KoComboBox;
// Where AddString puts a text: the end, or for a sorted box after the last entry that sorts
// before or equal to it.
int AddStringIndex(const KoListBox* list, const CString& text);
int AddStringIndex(const KoComboBox* combo, const CString& text);

// The search of list and combo boxes: from the entry after startAfter round to it; -1 when
// nothing matches.
template <typename Match> int SearchEntries(int count, int startAfter, Match match) {
    if (count <= 0)
        return -1;
    const int first = startAfter < 0 || startAfter >= count ? 0 : startAfter + 1;
    for (int k = 0; k < count; ++k) {
        const int i = (first + k) % count;
        if (match(i))
            return i;
    }
    return -1;
}

inline constexpr int kItemDataRole = Qt::UserRole + 1;
inline constexpr int kItemStateRole = Qt::UserRole + 2;

class KoDialog : public QDialog {
public:
    explicit KoDialog(QWidget* parent);
    void reject() override;
    void accept() override {}

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

class KoStatic : public QLabel {
public:
    explicit KoStatic(QWidget* parent) : QLabel(parent) {}
    bool notify = false;
    QString rawText; // as set, with its "&"

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
};

class KoListBox : public QListWidget {
public:
    explicit KoListBox(QWidget* parent);
    bool notify = false;
    bool sorted = false;
    bool tips = false;
    // The tip the attached CListBox's hooks give for a point, "" for none.
    CString TipAt(QPoint point);

protected:
    bool viewportEvent(QEvent* event) override;
};

class KoComboBox : public QComboBox {
public:
    explicit KoComboBox(QWidget* parent, bool editable);
    bool sorted = false;
    void showPopup() override;
    void hidePopup() override;
    bool dropped = false;
    // The attached CComboBox's hooks, called by the event filters.
    void ListMouseMove(QPoint viewportPos);
    // Hover tracking of the box and of its edit field, as the window system's mouse-event
    // tracking does it: a pointer that rests for the hover time within a few pixels raises one
    // hover, and no other until the pointer has left the window. It works whether or not the
    // dialog is the active window.
    static constexpr int kHoverTimeMs = 400;
    static constexpr int kHoverSlopPx = 4;
    void TrackHover(QWidget* target, QPoint pos);
    void EndHover(QWidget* target);
    // Raises the pending hover now, as the timer's expiry would; false when none is pending.
    bool RaisePendingHover();
    void ListLeave();
    bool ListClickAllowed(int index);
    // A user's choice of an entry: opens the list, clicks the entry, which closes it and
    // selects (CBN_DROPDOWN, CBN_CLOSEUP, CBN_SELCHANGE). A refused click leaves the list open
    // and returns false.
    bool UserChoose(int index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool event(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void HoverExpired();
    QTimer m_hoverTimer;
    QPointer<QWidget> m_hoverTarget; // the box or its edit field, while the pointer is in it
    QPoint m_hoverAnchor;
    bool m_hoverRaised = false;
};

class KoTabCtrl : public QWidget {
public:
    explicit KoTabCtrl(QWidget* parent);
    QTabBar* bar;
    int lastIndex = -1;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

class KoTreeView : public QTreeWidget {
public:
    explicit KoTreeView(QWidget* parent);
    bool hasLines = false; // dotted lines join items to their parents and siblings
    // Moves the current item with the two notices; false when vetoed or gone. action is a
    // TVC_ value.
    bool MoveSelection(QTreeWidgetItem* item, UINT action);

protected:
    void drawBranches(QPainter* painter, const QRect& rect,
                      const QModelIndex& index) const override;
};

// A field without automatic horizontal scrolling takes no more text than its visible width
// shows: typing or pasting past it is refused. Text the program sets is kept whole.
void LimitTypingToWidth(QLineEdit* edit);
// Without "show selection always", a list or tree shows its selection only while it has the
// focus, as the window system's own controls do.
void HideSelectionWhenUnfocused(QAbstractItemView* view);

class KoListView : public QTreeWidget {
public:
    explicit KoListView(QWidget* parent);
    bool singleSel = true;
    DWORD exStyle = 0;
    int selectionMark = -1;
    // Brings the stored item states into line with the view's selection and current item,
    // one LVN_ITEMCHANGED per item changed: items losing the selection first.
    // While a batch is open the view's own signals wait; the change is synced once at its end.
    // A silent sync (inserting, deleting) stores the states and sends nothing.
    void SyncStates(bool notify = true);
    int syncGeneration = 0;
    int batchDepth = 0;
    // The view's selection or current item moved while a batch was open.
    bool syncPending = false;
    UINT StoredState(int row) const;
    void ClickEmpty();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

// Holds a list view's signals back during one change and syncs its states after it.
class ListViewBatch {
public:
    ListViewBatch(KoListView* view, bool notify) : m_view(view), m_notify(notify) {
        ++m_view->batchDepth;
    }
    ~ListViewBatch() {
        if (m_view) {
            --m_view->batchDepth;
            // A silent batch (inserting, deleting) that moved no selection has nothing to
            // sync: its items keep their stored states. Syncing anyway would walk every row
            // after each insert, and filling a list of 500 would take 125,000 steps.
            if (m_view->batchDepth == 0 && (m_notify || m_view->syncPending))
                m_view->SyncStates(m_notify);
        }
    }
    ListViewBatch(const ListViewBatch&) = delete;
    ListViewBatch& operator=(const ListViewBatch&) = delete;

private:
    QPointer<KoListView> m_view;
    bool m_notify;
};

} // namespace koqdde::ui
