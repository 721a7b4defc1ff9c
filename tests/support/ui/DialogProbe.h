#pragma once
// What the GUI suites read off a dialog and how they play its user.

#include "platform/CString.h"

#include <functional>
#include <vector>

class CDialog;
class QWidget;

namespace koqdde::test {
// The entries of the dialog's list box or combo box `id`, in order; empty for other controls.
std::vector<CString> ItemTexts(CDialog& dialog, int id);
// Runs the dialog modally; `act` plays the user while it is open, and the dialog ends with
// what the user's actions chose (-1 when they left it open).
int RunModal(CDialog& dialog, const std::function<void(CDialog&)>& act);
// A control of a template's class, as the dialogs make it from dialog units, in `host`.
QWidget* MakeControl(QWidget* host, const CString& cls, int id, int x, int y, int cx, int cy,
                     const std::vector<const wchar_t*>& styles);
// A combo box as the dialogs make it (dialog units, control id 1022), in `host`: a drop list,
// or a dropdown whose field scrolls to take any text.
QWidget* MakeComboBox(QWidget* host, int x, int width, bool dropdown);
} // namespace koqdde::test
