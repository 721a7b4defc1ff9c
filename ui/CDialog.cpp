#include "ui/CDialog.h"

#include <exception>

#include "platform/NumParse.h"
#include "ui/CButton.h"
#include "ui/ModalHook.h"
#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QGuiApplication>
#include <QListWidget>
#include <QScreen>

using namespace koqdde::ui;

namespace {
QWidget* FindControl(QWidget* dialog, int id) {
    if (!dialog)
        return nullptr;
    const auto children = dialog->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* child : children) {
        if (ControlId(child) == id && !child->property("koqdde_id").isNull())
            return child;
    }
    return nullptr;
}
} // namespace

void DDX_Control(CDataExchange* pDX, int id, CWnd& control) {
    if (control.IsWindow())
        return;
    QWidget* widget = FindControl(pDX->m_pDlgWnd->GetSafeHwnd(), id);
    if (!widget)
        return;
    // A control is bound once: the first object bound to it keeps it (a plain CWnd that
    // GetDlgItem handed out gives way).
    CWnd* bound = CWnd::FromHandlePermanent(widget);
    if (bound && !pDX->m_pDlgWnd->IsOnDemandItem(bound))
        return;
    control.Attach(widget);
}

void DDX_Text(CDataExchange* pDX, int id, CString& value) {
    QWidget* widget = FindControl(pDX->m_pDlgWnd->GetSafeHwnd(), id);
    if (!widget)
        return;
    if (pDX->m_bSaveAndValidate)
        value = WidgetText(widget);
    else
        SetWidgetText(widget, value);
}

void DDX_Text(CDataExchange* pDX, int id, int& value) {
    CString text;
    if (!pDX->m_bSaveAndValidate)
        text.Format(L"%d", value);
    DDX_Text(pDX, id, text);
    if (pDX->m_bSaveAndValidate)
        value = WToI(text);
}

void DDX_Radio(CDataExchange* pDX, int firstId, int& value) {
    auto* first =
        qobject_cast<QAbstractButton*>(FindControl(pDX->m_pDlgWnd->GetSafeHwnd(), firstId));
    if (!first)
        return;
    QList<QAbstractButton*> radios{first};
    if (QButtonGroup* group = first->group())
        radios = group->buttons();
    if (pDX->m_bSaveAndValidate) {
        value = -1;
        for (qsizetype i = 0; i < radios.size(); ++i) {
            if (radios[i]->isChecked())
                value = static_cast<int>(i);
        }
        return;
    }
    for (qsizetype i = 0; i < radios.size(); ++i) {
        if (i != value)
            SetButtonChecked(radios[i], false);
    }
    if (value >= 0 && value < radios.size())
        SetButtonChecked(radios[value], true);
}

CDialog::CDialog(const CString& templateName, CWnd* parent)
    : m_templateName(templateName), m_parent(parent) {}

CDialog::CDialog(UINT templateId, CWnd* parent) : m_templateId(templateId), m_parent(parent) {}

CDialog::~CDialog() {
    DestroyOwnWindow();
}

const DialogTemplate* CDialog::GetTemplate() const {
    return m_template.get();
}

bool CDialog::MakeWindow(CWnd* parent) {
    if (IsWindow())
        return true;
    if (!m_template) {
        auto tmpl = m_templateName.IsEmpty() ? LoadDialogTemplate(static_cast<int>(m_templateId))
                                             : LoadDialogTemplate(m_templateName);
        if (!tmpl)
            return false;
        m_template = std::make_unique<DialogTemplate>(std::move(*tmpl));
        if (m_templateName.IsEmpty())
            m_templateName = m_template->name;
        m_templateId = static_cast<UINT>(m_template->id);
    }
    QWidget* owner = parent && parent->GetSafeHwnd() ? parent->GetSafeHwnd()->window() : nullptr;
    auto* dialog = new KoDialog(owner);
    BuildDialog(*m_template, dialog);
    m_units = MeasureBaseUnits(dialog->font());
    Attach(dialog);
    SetOwnsWidget(true);
    return true;
}

void CDialog::DestroyOwnWindow() {
    QWidget* widget = GetSafeHwnd();
    m_items.clear();
    if (!widget)
        return;
    // Detach first: nothing the teardown signals may reach this object's handlers.
    Detach();
    PopRunningDialog(widget);
    delete widget;
}

int CDialog::DoModal() {
    if (!MakeWindow(m_parent))
        return -1;
    m_ended = false;
    m_endResult = -1;
    m_modal = true;
    std::exception_ptr pending;
    QWidget* widget = GetSafeHwnd();
    PushRunningDialog(widget);
    OnInitDialog();
    int result = m_endResult;
    if (!m_ended && IsWindow()) {
        bool hooked = false;
        auto* dialog = static_cast<QDialog*>(widget);
        if (HasModalHook()) {
            // The hook answers instead of a user; the window shows as the loop would show it.
            widget->setProperty("koqdde_shown", true);
            dialog->show();
            dialog->activateWindow();
            result = RunModalHook(*this, &hooked);
        }
        if (!hooked) {
            koqdde::ui::ModalLoopScope loop(dialog);
            result = dialog->exec();
            if (m_ended)
                result = m_endResult;
            pending = loop.Pending();
        }
    }
    m_modal = false;
    DestroyOwnWindow();
    if (pending)
        std::rethrow_exception(pending);
    return result;
}

BOOL CDialog::Create(UINT templateId, CWnd* parent) {
    if (m_templateName.IsEmpty())
        m_templateId = templateId;
    m_parent = parent;
    if (!MakeWindow(parent))
        return FALSE;
    m_ended = false;
    m_endResult = -1;
    OnInitDialog();
    if (IsWindow() && m_template && m_template->HasStyle(L"visible"))
        GetSafeHwnd()->show();
    return TRUE;
}

BOOL CDialog::Create(const CString& templateName, CWnd* parent) {
    m_templateName = templateName;
    return Create(0u, parent);
}

BOOL CDialog::DestroyWindow() {
    if (!IsWindow())
        return FALSE;
    DestroyOwnWindow();
    return TRUE;
}

BOOL CDialog::OnInitDialog() {
    UpdateData(FALSE);
    return TRUE;
}

void CDialog::OnOK() {
    if (!UpdateData(TRUE))
        return;
    EndDialog(IDOK);
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}

void CDialog::EndDialog(int result) {
    m_ended = true;
    m_endResult = result;
    auto* dialog = qobject_cast<QDialog*>(GetSafeHwnd());
    if (!dialog)
        return;
    if (m_modal)
        dialog->done(result); // leaves exec(); a hooked run just records the result
    else
        dialog->hide();
}

BOOL CDialog::UpdateData(BOOL saveAndValidate) {
    CDataExchange dx(this, saveAndValidate);
    DoDataExchange(&dx);
    return dx.m_bFailed ? FALSE : TRUE;
}

void CDialog::DoDataExchange(CDataExchange* /*pDX*/) {}

bool CDialog::IsOnDemandItem(const CWnd* wnd) const {
    for (const auto& [id, item] : m_items) {
        if (item.get() == wnd)
            return true;
    }
    return false;
}

CWnd* CDialog::GetDlgItem(int id) const {
    QWidget* widget = FindControl(GetSafeHwnd(), id);
    if (!widget)
        return nullptr;
    if (CWnd* attached = CWnd::FromHandlePermanent(widget))
        return attached;
    auto& slot = m_items[id];
    if (!slot || slot->GetSafeHwnd() != widget)
        slot = std::make_unique<CWnd>(widget);
    return slot.get();
}

void CDialog::SetDlgItemText(int id, const CString& text) {
    if (QWidget* widget = FindControl(GetSafeHwnd(), id))
        SetWidgetText(widget, text);
}

CString CDialog::GetDlgItemText(int id) const {
    QWidget* widget = FindControl(GetSafeHwnd(), id);
    return widget ? WidgetText(widget) : CString();
}

void CDialog::CenterWindow(CWnd* alternateOwner) {
    if (!IsWindow())
        return;
    CWnd* owner = alternateOwner ? alternateOwner : m_parent;
    CRect area;
    if (owner && owner->IsWindow()) {
        area = owner->GetWindowRect();
    } else {
        const QScreen* screen = QGuiApplication::primaryScreen();
        const QRect r = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
        area = CRect(r.left(), r.top(), r.left() + r.width(), r.top() + r.height());
    }
    const CRect mine = GetWindowRect();
    const int x = area.left + area.Width() / 2 - mine.Width() / 2;
    const int y = area.top + area.Height() / 2 - mine.Height() / 2;
    MoveWindow(x, y, mine.Width(), mine.Height(), FALSE);
}

void CDialog::MapDialogRect(CRect* rect) const {
    *rect = m_units.ToPixels(rect->left, rect->top, rect->Width(), rect->Height());
}

BOOL CDialog::OnCommand(UINT id, UINT code) {
    if (code != BN_CLICKED)
        return FALSE;
    if (id == static_cast<UINT>(IDOK)) {
        OnOK();
        return TRUE;
    }
    if (id == static_cast<UINT>(IDCANCEL)) {
        OnCancel();
        return TRUE;
    }
    return FALSE;
}

BOOL CDialog::OnNotify(UINT /*id*/, NMHDR* /*header*/, LRESULT* /*result*/) {
    return FALSE;
}

void CDialog::OnClose() {
    SendMessage(WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
}

LRESULT CDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        OnCommand(LOWORD(wParam), HIWORD(wParam));
        return 0;
    case WM_NOTIFY: {
        auto* header = reinterpret_cast<NMHDR*>(lParam);
        LRESULT result = 0;
        if (header)
            OnNotify(static_cast<UINT>(header->idFrom), header, &result);
        return result;
    }
    case WM_CLOSE:
        OnClose();
        return 0;
    default:
        return CWnd::WindowProc(message, wParam, lParam);
    }
}

namespace koqdde::ui {

namespace {
QWidget* UsableControl(CDialog& dialog, int id) {
    QWidget* widget = FindControl(dialog.GetSafeHwnd(), id);
    if (!widget || !widget->isEnabled())
        return nullptr;
    return widget;
}
} // namespace

bool ClickDlgItem(CDialog& dialog, int id) {
    QWidget* widget = UsableControl(dialog, id);
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->click();
        return true;
    }
    if (auto* label = dynamic_cast<KoStatic*>(widget)) {
        if (label->notify)
            SendCommandToParent(label, STN_CLICKED);
        return true;
    }
    return false;
}

bool TypeDlgItem(CDialog& dialog, int id, const CString& text) {
    QWidget* widget = UsableControl(dialog, id);
    if (auto* combo = qobject_cast<QComboBox*>(widget))
        widget = combo->lineEdit();
    return TypeIntoEdit(widget, text);
}

bool SelectDlgItem(CDialog& dialog, int id, int index) {
    QWidget* widget = UsableControl(dialog, id);
    if (auto* list = dynamic_cast<KoListBox*>(widget)) {
        if (index < 0 || index >= list->count())
            return false;
        list->setCurrentRow(index);
        return true;
    }
    if (auto* combo = dynamic_cast<KoComboBox*>(widget)) {
        return combo->UserChoose(index);
    }
    if (auto* tab = dynamic_cast<KoTabCtrl*>(widget)) {
        if (index < 0 || index >= tab->bar->count())
            return false;
        tab->bar->setCurrentIndex(index);
        return true;
    }
    return false;
}

} // namespace koqdde::ui
