#pragma once
// Test seam for modal dialogs: while a ModalHookScope lives, every CDialog::DoModal calls the
// hook instead of running a modal loop. The hook gets the dialog after OnInitDialog, with its
// window made (not shown), may drive its controls as a user would, and returns DoModal's
// result; `return dlg.GetEndResult();` passes on what a pressed OK or Cancel gave. The hook
// stays installed while it runs, so dialogs it opens reach it too. Scopes nest: the inner one
// wins and the outer one is back when it ends.

#include <functional>

class CDialog;

namespace koqdde::ui {

using ModalHook = std::function<int(CDialog& dialog)>;

class ModalHookScope {
public:
    explicit ModalHookScope(ModalHook hook);
    ~ModalHookScope();
    ModalHookScope(const ModalHookScope&) = delete;
    ModalHookScope& operator=(const ModalHookScope&) = delete;
    // How many dialogs reached this hook.
    int Calls() const { return m_calls; }

private:
    friend int RunModalHook(CDialog& dialog, bool* hooked);
    friend bool HasModalHook();
    ModalHook m_hook;
    ModalHookScope* m_previous;
    int m_calls = 0;
};

bool HasModalHook();
// Runs the innermost hook; *hooked tells whether there was one.
int RunModalHook(CDialog& dialog, bool* hooked);

} // namespace koqdde::ui
