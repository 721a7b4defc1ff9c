#include "host/ui/QvPickers/QvPickers.h"

#include "host/HostData.h"
#include "host/sqlite/ItemLibrary.h"
#include "ui/QtString.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWidget>

#include <functional>
#include <map>

using koqdde::ui::FromQString;
using koqdde::ui::ToQString;

namespace {

constexpr int kChapterIdRole = Qt::UserRole;

QTreeWidget* MakeItemList(QWidget* parent, const QString& name) {
    auto* list = new QTreeWidget(parent);
    list->setObjectName(name);
    list->setHeaderLabels({QStringLiteral("编号"), QStringLiteral("名称"), QStringLiteral("单位")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    list->setColumnWidth(0, 90);
    list->setColumnWidth(2, 50);
    return list;
}

void FillItemList(QTreeWidget* list, const std::vector<LibraryItem>& items) {
    list->clear();
    QList<QTreeWidgetItem*> rows;
    rows.reserve(static_cast<qsizetype>(items.size()));
    for (const LibraryItem& item : items) {
        auto* row = new QTreeWidgetItem(
            {ToQString(item.number), ToQString(item.name), ToQString(item.unit)});
        row->setToolTip(1, ToQString(item.name));
        rows.append(row);
    }
    list->addTopLevelItems(rows);
}

} // namespace

// Receives the widgets' signals and the lists' keys on the picker's behalf. It belongs to the
// picker, not to the window, so that no handler outlives the picker.
class CPickerWnd::Events : public QObject {
public:
    std::function<void(QTreeWidget*)> onEnter;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress && onEnter) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                onEnter(static_cast<QTreeWidget*>(watched));
                return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

struct CPickerWnd::Impl {
    bool withBillQuotas = false;
    BOOL browsingEnabled = TRUE;
    ItemLibrary library;
    ItemLibrary quotas; // the bill picker's: the quotas of its bills
    bool loaded = false;
    CString loadedFrom; // the codes and host files the libraries were opened from
    CString position;   // the last position asked for, shown once the tree holds it
    std::map<int, QTreeWidgetItem*> chapterRows;

    QPointer<QWidget> browse;
    QPointer<QLineEdit> search;
    QPointer<QTreeWidget> chapters;
    QPointer<QTreeWidget> items;
    QPointer<QTreeWidget> billQuotas;
    QPointer<QTreeWidget> pickFrom; // the list the user last chose a row in: "选用" picks there
    QPointer<QPushButton> choose;
    QPointer<QLabel> status;
    std::unique_ptr<Events> events;
};

CPickerWnd::CPickerWnd(CWnd* parent, const wchar_t* caption, bool withBillQuotas)
    : m_parent(parent), m_caption(caption), m_impl(std::make_unique<Impl>()) {
    m_impl->withBillQuotas = withBillQuotas;
}

CPickerWnd::~CPickerWnd() {
    // Handlers first, then the window this picker made, while the libraries still exist.
    m_impl->events.reset();
    if (QWidget* window = widget()) {
        Detach();
        delete window;
    }
}

BOOL CPickerWnd::Create(CWnd* parent) {
    if (IsWindow())
        return FALSE;
    if (parent)
        m_parent = parent;
    // A tool window of the parent's window: it stays above it and goes with it.
    auto* window = new QWidget(m_parent ? m_parent->widget() : nullptr, Qt::Tool);
    window->setWindowTitle(ToQString(m_caption));
    BuildWindow(window);
    window->resize(660, 600);
    window->hide();
    Attach(window);
    SetOwnsWidget(true);
    m_impl->loaded = false;
    return TRUE;
}

void CPickerWnd::BuildWindow(QWidget* window) {
    Impl& ui = *m_impl;
    ui.events = std::make_unique<Events>();
    Events* events = ui.events.get();

    auto* outer = new QVBoxLayout(window);
    ui.browse = new QWidget(window);
    ui.browse->setObjectName(QStringLiteral("pickerBrowse"));
    ui.browse->setEnabled(ui.browsingEnabled);
    outer->addWidget(ui.browse);
    auto* layout = new QVBoxLayout(ui.browse);
    layout->setContentsMargins(0, 0, 0, 0);

    ui.search = new QLineEdit(ui.browse);
    ui.search->setObjectName(QStringLiteral("pickerSearch"));
    ui.search->setPlaceholderText(QStringLiteral("输入编号或名称查找"));
    ui.search->setClearButtonEnabled(true);
    layout->addWidget(ui.search);

    auto* sides = new QSplitter(Qt::Horizontal, ui.browse);
    ui.chapters = new QTreeWidget(sides);
    ui.chapters->setObjectName(QStringLiteral("pickerChapters"));
    ui.chapters->setHeaderHidden(true);
    ui.chapters->setSelectionMode(QAbstractItemView::SingleSelection);
    auto* lists = new QSplitter(Qt::Vertical, sides);
    ui.items = MakeItemList(lists, QStringLiteral("pickerItems"));
    if (ui.withBillQuotas) {
        auto* box = new QWidget(lists);
        auto* boxLayout = new QVBoxLayout(box);
        boxLayout->setContentsMargins(0, 0, 0, 0);
        boxLayout->addWidget(new QLabel(QStringLiteral("清单的定额"), box));
        ui.billQuotas = MakeItemList(box, QStringLiteral("pickerQuotas"));
        boxLayout->addWidget(ui.billQuotas);
        lists->setSizes({360, 180});
    }
    sides->setSizes({280, 380});
    layout->addWidget(sides, 1);

    auto* row = new QHBoxLayout;
    ui.status = new QLabel(ui.browse);
    ui.status->setObjectName(QStringLiteral("pickerStatus"));
    row->addWidget(ui.status, 1);
    ui.choose = new QPushButton(QStringLiteral("选用"), ui.browse);
    ui.choose->setObjectName(QStringLiteral("pickerChoose"));
    row->addWidget(ui.choose);
    layout->addLayout(row);

    QObject::connect(ui.search, &QLineEdit::textChanged, events, [this] { ShowSearch(); });
    QObject::connect(ui.chapters, &QTreeWidget::currentItemChanged, events,
                     [this](QTreeWidgetItem* now) {
                         if (!now || !m_impl->search)
                             return;
                         // A chapter chosen ends a search: the list shows the chapter again.
                         if (!m_impl->search->text().isEmpty())
                             m_impl->search->clear();
                         else
                             ShowChapterItems();
                     });
    QObject::connect(ui.items, &QTreeWidget::currentItemChanged, events,
                     [this](QTreeWidgetItem* now) {
                         if (now)
                             m_impl->pickFrom = m_impl->items;
                         ShowBillQuotas();
                     });
    QObject::connect(ui.items, &QTreeWidget::itemDoubleClicked, events,
                     [this](QTreeWidgetItem* row) { Pick(m_impl->items, row); });
    ui.items->installEventFilter(events);
    if (ui.billQuotas) {
        QObject::connect(ui.billQuotas, &QTreeWidget::currentItemChanged, events,
                         [this](QTreeWidgetItem* now) {
                             if (now)
                                 m_impl->pickFrom = m_impl->billQuotas;
                         });
        QObject::connect(ui.billQuotas, &QTreeWidget::itemDoubleClicked, events,
                         [this](QTreeWidgetItem* row) { Pick(m_impl->billQuotas, row); });
        ui.billQuotas->installEventFilter(events);
    }
    QObject::connect(ui.choose, &QPushButton::clicked, events, [this] {
        Pick(m_impl->pickFrom ? m_impl->pickFrom.data() : m_impl->items.data(), nullptr);
    });
    events->onEnter = [this](QTreeWidget* list) { Pick(list, nullptr); };
}

void CPickerWnd::MoveWndToRight(CWnd* wnd) {
    if (!IsWindow() || !wnd || !wnd->IsWindow())
        return;
    CRect beside = wnd->GetWindowRect();
    CRect own = GetWindowRect();
    MoveWindow(beside.right, beside.top, own.Width(), own.Height());
}

CWnd* CPickerWnd::GetPickParent() const {
    return GetParent();
}

void CPickerWnd::LoadLibraries(const CString& code, const CString& quotaCode) {
    Impl& ui = *m_impl;
    if (!IsWindow())
        return;
    const HostData* host = CurrentHostData();
    const std::vector<CString> files = host ? host->libraryFiles : std::vector<CString>();
    CString from = code + L"|" + quotaCode;
    for (const CString& file : files)
        from += L"|" + file;
    if (ui.loaded && from == ui.loadedFrom)
        return;
    ui.loaded = true;
    ui.loadedFrom = from;
    ui.library.Open(files, code);
    if (ui.withBillQuotas)
        ui.quotas.Open(files, quotaCode);
    FillChapters();
    if (!ui.search->text().isEmpty())
        ui.search->clear();
    else
        ShowChapterItems();
    OpenChapter(ui.position);
}

void CPickerWnd::FillChapters() {
    Impl& ui = *m_impl;
    ui.chapters->clear();
    ui.chapterRows.clear();
    for (const LibraryChapter& chapter : ui.library.Chapters()) {
        const auto parent = ui.chapterRows.find(chapter.parent);
        auto* row = parent != ui.chapterRows.end() && chapter.depth > 0
                        ? new QTreeWidgetItem(parent->second)
                        : new QTreeWidgetItem(ui.chapters.data());
        row->setText(0, ToQString(chapter.code + L" " + chapter.name));
        row->setToolTip(0, ToQString(chapter.name));
        row->setData(0, kChapterIdRole, chapter.id);
        ui.chapterRows[chapter.id] = row;
    }
}

void CPickerWnd::OpenChapter(const CString& position) {
    Impl& ui = *m_impl;
    ui.position = position;
    if (!ui.chapters)
        return;
    const auto found = ui.chapterRows.find(ui.library.ChapterAt(position));
    if (found == ui.chapterRows.end() || ui.chapters->currentItem() == found->second)
        return;
    for (QTreeWidgetItem* above = found->second->parent(); above; above = above->parent())
        above->setExpanded(true);
    ui.chapters->setCurrentItem(found->second);
    ui.chapters->scrollToItem(found->second);
}

CString CPickerWnd::SelectedPosition() const {
    const Impl& ui = *m_impl;
    const QTreeWidgetItem* row = ui.chapters ? ui.chapters->currentItem() : nullptr;
    const LibraryChapter* chapter =
        row ? ui.library.FindChapter(row->data(0, kChapterIdRole).toInt()) : nullptr;
    return chapter ? chapter->position : CString();
}

void CPickerWnd::ShowChapterItems() {
    Impl& ui = *m_impl;
    if (!ui.chapters || !ui.items)
        return;
    const QTreeWidgetItem* row = ui.chapters->currentItem();
    FillItemList(ui.items, row ? ui.library.ItemsOf(row->data(0, kChapterIdRole).toInt())
                               : std::vector<LibraryItem>());
    if (!ui.library.IsOpen())
        ShowStatus(ui.withBillQuotas ? L"项目的清单库不在" : L"项目的定额库不在");
    else
        ShowStatus(ui.library.Name());
}

void CPickerWnd::ShowSearch() {
    Impl& ui = *m_impl;
    if (!ui.search || !ui.items)
        return;
    const CString text = FromQString(ui.search->text());
    if (text.IsEmpty()) {
        ShowChapterItems();
        return;
    }
    const std::vector<LibraryItem> found = ui.library.Search(text);
    FillItemList(ui.items, found);
    CString count;
    count.Format(found.size() < ItemLibrary::kSearchLimit ? L"找到 %d 项" : L"找到的前 %d 项",
                 static_cast<int>(found.size()));
    ShowStatus(count);
}

void CPickerWnd::ShowBillQuotas() {
    Impl& ui = *m_impl;
    if (!ui.billQuotas || !ui.items)
        return;
    const QTreeWidgetItem* row = ui.items->currentItem();
    FillItemList(ui.billQuotas, row ? ui.quotas.QuotasOfBill(FromQString(row->text(0)))
                                    : std::vector<LibraryItem>());
}

void CPickerWnd::ShowStatus(const CString& text) {
    if (m_impl->status)
        m_impl->status->setText(ToQString(text));
}

void CPickerWnd::EnableBrowsing(BOOL enable) {
    m_impl->browsingEnabled = enable;
    if (m_impl->browse)
        m_impl->browse->setEnabled(enable);
}

void CPickerWnd::SearchFor(const CString& text) {
    if (m_impl->search && m_impl->search->isEnabled())
        m_impl->search->setText(ToQString(text));
}

bool CPickerWnd::ChooseItem(const CString& number) {
    Impl& ui = *m_impl;
    for (QTreeWidget* list : {ui.items.data(), ui.billQuotas.data()}) {
        if (!list || !list->isEnabled())
            continue;
        const QList<QTreeWidgetItem*> rows = list->findItems(ToQString(number), Qt::MatchExactly);
        if (rows.isEmpty())
            continue;
        list->setCurrentItem(rows.front());
        ui.choose->click();
        return true;
    }
    return false;
}

void CPickerWnd::Pick(QTreeWidget* list, QTreeWidgetItem* row) {
    Impl& ui = *m_impl;
    if (!list)
        return;
    if (!row)
        row = list->currentItem();
    CWnd* parent = GetPickParent();
    if (!row || !parent)
        return;
    const ItemLibrary& library = list == ui.billQuotas ? ui.quotas : ui.library;
    LibraryItem item;
    if (!library.Find(FromQString(row->text(0)), item))
        return;
    // The record lives on this stack for the call only, as the receiver expects.
    if (library.HoldsBills()) {
        SQdInfo info = ToBillInfo(item);
        parent->SendMessage(kPickBillMessage, reinterpret_cast<WPARAM>(&info), 0);
        return;
    }
    SDeInfo info = ToQuotaPick(item);
    parent->SendMessage(kPickQuotaMessage, reinterpret_cast<WPARAM>(&info), 0);
}

CSelQdDeDlg::CSelQdDeDlg(CWnd* parent) : CPickerWnd(parent, L"清单定额选择", true) {}

void CSelQdDeDlg::InitQdDeData() {
    const HostData* host = CurrentHostData();
    LoadLibraries(host ? host->project.bill.code : CString(),
                  host ? host->project.billQuota.code : CString());
}

void CSelQdDeDlg::SetTreePosition(const CString& position) {
    OpenChapter(position);
}

CSelDeDlg::CSelDeDlg(CWnd* parent) : CPickerWnd(parent, L"定额选择", false) {}

void CSelDeDlg::InitDeData() {
    const HostData* host = CurrentHostData();
    LoadLibraries(host ? host->project.quota.code : CString(), CString());
}
