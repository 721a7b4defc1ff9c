#include "ui/QtMessageBox.h"

#include "ui/QtString.h"

#include <QApplication>
#include <QWidget>

namespace koqdde::ui {

MessageBoxSpec MapMessageBoxFlags(unsigned flags) {
    MessageBoxSpec spec;
    switch (flags & 0xF0) {
    case MB_ICONHAND:
        spec.icon = QMessageBox::Critical;
        break;
    case MB_ICONQUESTION:
        spec.icon = QMessageBox::Question;
        break;
    case MB_ICONEXCLAMATION:
        spec.icon = QMessageBox::Warning;
        break;
    case MB_ICONINFORMATION:
        spec.icon = QMessageBox::Information;
        break;
    default:
        spec.icon = QMessageBox::NoIcon;
        break;
    }
    std::vector<QMessageBox::StandardButton> order;
    switch (flags & 0xF) {
    case MB_OKCANCEL:
        order = {QMessageBox::Ok, QMessageBox::Cancel};
        spec.escapeButton = QMessageBox::Cancel;
        break;
    case MB_YESNOCANCEL:
        order = {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel};
        spec.escapeButton = QMessageBox::Cancel;
        break;
    case MB_YESNO:
        // Windows gives no escape for Yes/No; No is the safe answer to a closed box.
        order = {QMessageBox::Yes, QMessageBox::No};
        spec.escapeButton = QMessageBox::No;
        break;
    default:
        order = {QMessageBox::Ok};
        spec.escapeButton = QMessageBox::Ok;
        break;
    }
    spec.buttons = QMessageBox::NoButton;
    for (QMessageBox::StandardButton b : order)
        spec.buttons |= b;
    const size_t defaultIndex = (flags & 0xF00) / MB_DEFBUTTON2; // 0, 1, 2
    spec.defaultButton = order[std::min(defaultIndex, order.size() - 1)];
    spec.stayOnTop = (flags & (MB_SETFOREGROUND | 0x40000u)) != 0;
    return spec;
}

int MessageBoxResult(QMessageBox::StandardButton button) {
    switch (button) {
    case QMessageBox::Cancel:
        return IDCANCEL;
    case QMessageBox::Yes:
        return IDYES;
    case QMessageBox::No:
        return IDNO;
    default:
        return IDOK;
    }
}

int QtMessageBoxHandler::Show(void* owner, const CString& text, const CString& caption,
                              unsigned flags) {
    const MessageBoxSpec spec = MapMessageBoxFlags(flags);
    QMessageBox box(spec.icon, ToQString(caption), ToQString(text), spec.buttons,
                    static_cast<QWidget*>(owner));
    box.setDefaultButton(spec.defaultButton);
    box.setEscapeButton(spec.escapeButton);
    if (spec.stayOnTop)
        box.setWindowFlag(Qt::WindowStaysOnTopHint, true);
    if (m_hook) {
        const QMessageBox::StandardButton answer = m_hook(box);
        if (answer != QMessageBox::NoButton)
            return MessageBoxResult(answer);
    }
    return MessageBoxResult(static_cast<QMessageBox::StandardButton>(box.exec()));
}

void* QtActiveWindow() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    return QApplication::activeWindow();
}

} // namespace koqdde::ui
