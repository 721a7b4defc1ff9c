#include "ui/ModalHook.h"

namespace koqdde::ui {

namespace {
ModalHookScope* g_innermost = nullptr;
}

ModalHookScope::ModalHookScope(ModalHook hook) : m_hook(std::move(hook)), m_previous(g_innermost) {
    g_innermost = this;
}

ModalHookScope::~ModalHookScope() {
    g_innermost = m_previous;
}

bool HasModalHook() {
    return g_innermost && g_innermost->m_hook;
}

int RunModalHook(CDialog& dialog, bool* hooked) {
    ModalHookScope* scope = g_innermost;
    if (!scope || !scope->m_hook) {
        *hooked = false;
        return 0;
    }
    *hooked = true;
    ++scope->m_calls;
    return scope->m_hook(dialog);
}

} // namespace koqdde::ui
