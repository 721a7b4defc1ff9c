#pragma once
// Message boxes of the desktop program: an IMessageBoxHandler that shows a QMessageBox with
// the Windows flags mapped (icon, buttons, default button) and answers IDOK, IDCANCEL, IDYES
// or IDNO. The mapping is a plain function so that it can be checked without showing a box.

#include "platform/Export.h"
#include "platform/MessageBox.h"

#include <QMessageBox>

#include <functional>

class QWidget;

namespace koqdde::ui {

struct MessageBoxSpec {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons = QMessageBox::Ok;
    QMessageBox::StandardButton defaultButton = QMessageBox::Ok;
    QMessageBox::StandardButton escapeButton = QMessageBox::Ok;
    bool stayOnTop = false; // MB_SETFOREGROUND / MB_TOPMOST
};

MessageBoxSpec MapMessageBoxFlags(unsigned flags);
// The Windows answer for a pressed button (IDOK for anything unknown).
int MessageBoxResult(QMessageBox::StandardButton button);

class KOQDDE_API QtMessageBoxHandler : public IMessageBoxHandler {
public:
    // Called with the box before it runs, instead of running it when it returns a button
    // (a test answers the box); an empty hook or QMessageBox::NoButton runs it normally.
    using Hook = std::function<QMessageBox::StandardButton(QMessageBox& box)>;
    QtMessageBoxHandler() = default;
    explicit QtMessageBoxHandler(Hook hook) : m_hook(std::move(hook)) {}
    // owner is a QWidget* (from the active-window provider) or null.
    int Show(void* owner, const CString& text, const CString& caption, unsigned flags) override;

private:
    Hook m_hook;
};

// The active window provider for the desktop program: the QApplication's active modal or
// active window, as a QWidget*. Install with SetActiveWindowProvider.
KOQDDE_API void* QtActiveWindow();

} // namespace koqdde::ui
