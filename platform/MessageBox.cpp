#include "platform/MessageBox.h"

#include <cstdio>

namespace {
IMessageBoxHandler* g_handler = nullptr;
ActiveWindowProvider g_activeWindow = nullptr;
} // namespace

MessageBoxHandlerScope::MessageBoxHandlerScope(IMessageBoxHandler* handler)
    : m_previous(g_handler) {
    g_handler = handler;
}

MessageBoxHandlerScope::~MessageBoxHandlerScope() {
    g_handler = m_previous;
}

int MessageBoxExW(void* owner, const wchar_t* text, const wchar_t* caption, unsigned flags,
                  unsigned short /*language*/) {
    if (g_handler)
        return g_handler->Show(owner, CString(text), CString(caption), flags);
    std::fprintf(stderr, "%s: %s\n", ToUtf8(CString(caption)).c_str(),
                 ToUtf8(CString(text)).c_str());
    return (flags & 0xF) == MB_YESNO ? IDNO : IDOK;
}

int AfxMessageBox(const CString& text, unsigned flags, unsigned /*helpId*/) {
    return MessageBoxExW(GetActiveWindow(), text, kMessageCaption, flags, 0);
}

void* GetActiveWindow() {
    return g_activeWindow ? g_activeWindow() : nullptr;
}

void SetActiveWindowProvider(ActiveWindowProvider provider) {
    g_activeWindow = provider;
}

int ShowWarning(const CString& text) {
    return MessageBoxExW(GetActiveWindow(), text, kMessageCaption, kWarningFlags, 0);
}
