#include "host/ui/QvPickers/QvPickers.h"

#include "ui/QtString.h"

#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

using koqdde::ui::ToQString;

CPickerWnd::CPickerWnd(CWnd* parent, const wchar_t* caption)
    : m_pickParent(parent), m_caption(caption) {}

CPickerWnd::~CPickerWnd() = default;

BOOL CPickerWnd::Create(CWnd* parent) {
    if (IsWindow())
        return FALSE;
    m_pickParent = parent;
    // A tool window of the parent's window: it stays above it and goes with it.
    auto* window = new QWidget(parent ? parent->widget() : nullptr, Qt::Tool);
    window->setWindowTitle(ToQString(m_caption));
    auto* layout = new QVBoxLayout(window);
    auto* label = new QLabel(window);
    label->setObjectName(QStringLiteral("pickerText"));
    label->setWordWrap(true);
    layout->addWidget(label);
    window->resize(260, 420);
    window->hide();
    Attach(window);
    SetOwnsWidget(parent == nullptr);
    ShowText(m_caption);
    return TRUE;
}

void CPickerWnd::MoveWndToRight(CWnd* wnd) {
    if (!IsWindow() || !wnd || !wnd->IsWindow())
        return;
    CRect beside = wnd->GetWindowRect();
    CRect own = GetWindowRect();
    MoveWindow(beside.right, beside.top, own.Width(), own.Height());
}

void CPickerWnd::ShowText(const CString& text) {
    if (auto* label =
            widget() ? widget()->findChild<QLabel*>(QStringLiteral("pickerText")) : nullptr)
        label->setText(ToQString(text));
}

CSelQdDeDlg::CSelQdDeDlg(CWnd* parent) : CPickerWnd(parent, L"清单定额选择") {}

void CSelQdDeDlg::InitQdDeData() {
    ShowText(L"清单定额选择");
}

void CSelQdDeDlg::SetTreePosition(const CString& position) {
    m_position = position;
    ShowText(L"清单定额选择\n" + position);
}

CSelDeDlg::CSelDeDlg(CWnd* parent) : CPickerWnd(parent, L"定额选择") {}

void CSelDeDlg::InitDeData() {
    ShowText(L"定额选择");
}
