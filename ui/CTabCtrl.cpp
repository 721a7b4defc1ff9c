#include "ui/CTabCtrl.h"

#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

using namespace koqdde::ui;

namespace {
KoTabCtrl* Tab(const CWnd* wnd) {
    return dynamic_cast<KoTabCtrl*>(wnd->widget());
}
} // namespace

int CTabCtrl::InsertItem(int index, const CString& text) {
    KoTabCtrl* tab = Tab(this);
    if (!tab || index < 0)
        return -1;
    ProgramScope program(tab);
    const int at = std::min(index, tab->bar->count());
    const int inserted = tab->bar->insertTab(at, ToQString(text));
    tab->lastIndex = tab->bar->currentIndex();
    return inserted;
}

BOOL CTabCtrl::DeleteItem(int index) {
    KoTabCtrl* tab = Tab(this);
    if (!tab || index < 0 || index >= tab->bar->count())
        return FALSE;
    ProgramScope program(tab);
    tab->bar->removeTab(index);
    tab->lastIndex = tab->bar->currentIndex();
    return TRUE;
}

BOOL CTabCtrl::DeleteAllItems() {
    KoTabCtrl* tab = Tab(this);
    if (!tab)
        return FALSE;
    ProgramScope program(tab);
    while (tab->bar->count() > 0)
        tab->bar->removeTab(0);
    tab->lastIndex = -1;
    return TRUE;
}

int CTabCtrl::GetItemCount() const {
    KoTabCtrl* tab = Tab(this);
    return tab ? tab->bar->count() : 0;
}

int CTabCtrl::GetCurSel() const {
    KoTabCtrl* tab = Tab(this);
    return tab ? tab->bar->currentIndex() : -1;
}

int CTabCtrl::SetCurSel(int index) {
    KoTabCtrl* tab = Tab(this);
    if (!tab || index < 0 || index >= tab->bar->count())
        return -1;
    const int previous = tab->bar->currentIndex();
    ProgramScope program(tab);
    tab->bar->setCurrentIndex(index);
    tab->lastIndex = index;
    return previous;
}

CString CTabCtrl::GetItemText(int index) const {
    KoTabCtrl* tab = Tab(this);
    if (!tab || index < 0 || index >= tab->bar->count())
        return CString();
    return FromQString(tab->bar->tabText(index));
}

BOOL CTabCtrl::SetItemText(int index, const CString& text) {
    KoTabCtrl* tab = Tab(this);
    if (!tab || index < 0 || index >= tab->bar->count())
        return FALSE;
    tab->bar->setTabText(index, ToQString(text));
    return TRUE;
}

void CTabCtrl::UserSelect(int index) {
    KoTabCtrl* tab = Tab(this);
    if (!tab || !tab->isEnabled() || index < 0 || index >= tab->bar->count())
        return;
    tab->bar->setCurrentIndex(index); // as a click: the notices come from the bar's signal
}
