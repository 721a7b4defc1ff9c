#include "ui/CTreeCtrl.h"

#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

using namespace koqdde::ui;

namespace {
KoTreeView* Tree(const CWnd* wnd) {
    return dynamic_cast<KoTreeView*>(wnd->widget());
}
QTreeWidgetItem* Item(HTREEITEM h) {
    if (h == TVI_ROOT || h == TVI_FIRST || h == TVI_LAST)
        return nullptr;
    return reinterpret_cast<QTreeWidgetItem*>(h);
}
HTREEITEM Handle(QTreeWidgetItem* item) {
    return reinterpret_cast<HTREEITEM>(item);
}
} // namespace

HTREEITEM CTreeCtrl::InsertItem(const CString& text, HTREEITEM parent, HTREEITEM insertAfter) {
    KoTreeView* tree = Tree(this);
    if (!tree)
        return nullptr;
    ProgramScope program(tree);
    QTreeWidgetItem* parentItem = parent == TVI_ROOT || !parent ? nullptr : Item(parent);
    auto* item = new QTreeWidgetItem(QStringList{ToQString(text)});
    const int count = parentItem ? parentItem->childCount() : tree->topLevelItemCount();
    int at = count;
    if (insertAfter == TVI_FIRST) {
        at = 0;
    } else if (insertAfter != TVI_LAST && insertAfter) {
        QTreeWidgetItem* after = Item(insertAfter);
        const int index =
            parentItem ? parentItem->indexOfChild(after) : tree->indexOfTopLevelItem(after);
        at = index < 0 ? count : index + 1;
    }
    if (parentItem)
        parentItem->insertChild(at, item);
    else
        tree->insertTopLevelItem(at, item);
    return Handle(item);
}

BOOL CTreeCtrl::DeleteItem(HTREEITEM handle) {
    KoTreeView* tree = Tree(this);
    if (!tree)
        return FALSE;
    if (handle == TVI_ROOT)
        return DeleteAllItems();
    QTreeWidgetItem* item = Item(handle);
    if (!item)
        return FALSE;
    ProgramScope program(tree);
    delete item;
    return TRUE;
}

BOOL CTreeCtrl::DeleteAllItems() {
    KoTreeView* tree = Tree(this);
    if (!tree)
        return FALSE;
    ProgramScope program(tree);
    tree->clear();
    return TRUE;
}

UINT CTreeCtrl::GetCount() const {
    KoTreeView* tree = Tree(this);
    if (!tree)
        return 0;
    UINT count = 0;
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        ++count;
    return count;
}

BOOL CTreeCtrl::SetItemData(HTREEITEM handle, LPARAM data) {
    QTreeWidgetItem* item = Item(handle);
    if (!item)
        return FALSE;
    item->setData(0, kItemDataRole, static_cast<qlonglong>(data));
    return TRUE;
}

LPARAM CTreeCtrl::GetItemData(HTREEITEM handle) const {
    QTreeWidgetItem* item = Item(handle);
    return item ? static_cast<LPARAM>(item->data(0, kItemDataRole).toLongLong()) : 0;
}

CString CTreeCtrl::GetItemText(HTREEITEM handle) const {
    QTreeWidgetItem* item = Item(handle);
    return item ? FromQString(item->text(0)) : CString();
}

BOOL CTreeCtrl::SetItemText(HTREEITEM handle, const CString& text) {
    QTreeWidgetItem* item = Item(handle);
    if (!item)
        return FALSE;
    item->setText(0, ToQString(text));
    return TRUE;
}

HTREEITEM CTreeCtrl::GetSelectedItem() const {
    KoTreeView* tree = Tree(this);
    if (!tree)
        return nullptr;
    QTreeWidgetItem* current = tree->currentItem();
    return current && current->isSelected() ? Handle(current) : nullptr;
}

BOOL CTreeCtrl::SelectItem(HTREEITEM handle) {
    KoTreeView* tree = Tree(this);
    if (!tree)
        return FALSE;
    return tree->MoveSelection(Item(handle), TVC_UNKNOWN) ? TRUE : FALSE;
}

BOOL CTreeCtrl::Expand(HTREEITEM handle, UINT code) {
    QTreeWidgetItem* item = Item(handle);
    if (!item)
        return FALSE;
    switch (code) {
    case TVE_EXPAND:
        item->setExpanded(true);
        break;
    case TVE_COLLAPSE:
        item->setExpanded(false);
        break;
    case TVE_TOGGLE:
        item->setExpanded(!item->isExpanded());
        break;
    default:
        return FALSE;
    }
    return TRUE;
}

BOOL CTreeCtrl::IsExpanded(HTREEITEM handle) const {
    QTreeWidgetItem* item = Item(handle);
    return item && item->isExpanded();
}

HTREEITEM CTreeCtrl::GetRootItem() const {
    KoTreeView* tree = Tree(this);
    return tree && tree->topLevelItemCount() > 0 ? Handle(tree->topLevelItem(0)) : nullptr;
}

HTREEITEM CTreeCtrl::GetChildItem(HTREEITEM handle) const {
    if (handle == TVI_ROOT)
        return GetRootItem();
    QTreeWidgetItem* item = Item(handle);
    return item && item->childCount() > 0 ? Handle(item->child(0)) : nullptr;
}

HTREEITEM CTreeCtrl::GetNextSiblingItem(HTREEITEM handle) const {
    KoTreeView* tree = Tree(this);
    QTreeWidgetItem* item = Item(handle);
    if (!tree || !item)
        return nullptr;
    if (QTreeWidgetItem* parent = item->parent()) {
        const int i = parent->indexOfChild(item) + 1;
        return i < parent->childCount() ? Handle(parent->child(i)) : nullptr;
    }
    const int i = tree->indexOfTopLevelItem(item) + 1;
    return i < tree->topLevelItemCount() ? Handle(tree->topLevelItem(i)) : nullptr;
}

HTREEITEM CTreeCtrl::GetPrevSiblingItem(HTREEITEM handle) const {
    KoTreeView* tree = Tree(this);
    QTreeWidgetItem* item = Item(handle);
    if (!tree || !item)
        return nullptr;
    if (QTreeWidgetItem* parent = item->parent()) {
        const int i = parent->indexOfChild(item) - 1;
        return i >= 0 ? Handle(parent->child(i)) : nullptr;
    }
    const int i = tree->indexOfTopLevelItem(item) - 1;
    return i >= 0 ? Handle(tree->topLevelItem(i)) : nullptr;
}

HTREEITEM CTreeCtrl::GetParentItem(HTREEITEM handle) const {
    QTreeWidgetItem* item = Item(handle);
    return item ? Handle(item->parent()) : nullptr;
}

BOOL CTreeCtrl::ItemHasChildren(HTREEITEM handle) const {
    if (handle == TVI_ROOT)
        return GetRootItem() != nullptr;
    QTreeWidgetItem* item = Item(handle);
    return item && item->childCount() > 0;
}

BOOL CTreeCtrl::EnsureVisible(HTREEITEM handle) {
    KoTreeView* tree = Tree(this);
    QTreeWidgetItem* item = Item(handle);
    if (!tree || !item)
        return FALSE;
    tree->scrollToItem(item);
    return TRUE;
}

BOOL CTreeCtrl::GetItemRect(HTREEITEM handle, CRect* rect, BOOL /*textOnly*/) const {
    KoTreeView* tree = Tree(this);
    QTreeWidgetItem* item = Item(handle);
    if (!tree || !item)
        return FALSE;
    const QRect r = tree->visualItemRect(item);
    if (!r.isValid())
        return FALSE;
    *rect = CRect(r.left(), r.top(), r.left() + r.width(), r.top() + r.height());
    return TRUE;
}

HTREEITEM CTreeCtrl::HitTest(CPoint point) const {
    KoTreeView* tree = Tree(this);
    return tree ? Handle(tree->itemAt(QPoint(point.x, point.y))) : nullptr;
}

void CTreeCtrl::UserSelect(HTREEITEM handle) {
    KoTreeView* tree = Tree(this);
    QTreeWidgetItem* item = Item(handle);
    if (!tree || !item || !tree->isEnabled())
        return;
    tree->setCurrentItem(item); // as a click: the notices come from the view's signal
}
