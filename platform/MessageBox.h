#pragma once
// Message boxes with the Windows flag values, dispatched to one installed handler: a console
// handler in the command-line tool, Qt message boxes in the desktop program, a recorder in
// tests. With no handler installed the text goes to standard error and the answer is IDOK.

#include "platform/CString.h"
#include "platform/Export.h"

#include <memory>

inline constexpr unsigned MB_OK = 0x0;
inline constexpr unsigned MB_OKCANCEL = 0x1;
inline constexpr unsigned MB_YESNOCANCEL = 0x3;
inline constexpr unsigned MB_YESNO = 0x4;
inline constexpr unsigned MB_ICONHAND = 0x10;
inline constexpr unsigned MB_ICONQUESTION = 0x20;
inline constexpr unsigned MB_ICONEXCLAMATION = 0x30;
inline constexpr unsigned MB_ICONINFORMATION = 0x40;
inline constexpr unsigned MB_DEFBUTTON2 = 0x100;
inline constexpr unsigned MB_TASKMODAL = 0x2000;
inline constexpr unsigned MB_SETFOREGROUND = 0x10000;

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// The three forms the module shows, and the caption of all of them.
inline constexpr unsigned kWarningFlags =
    MB_OK | MB_ICONEXCLAMATION | MB_TASKMODAL | MB_SETFOREGROUND;
inline constexpr unsigned kInformationFlags =
    MB_OK | MB_ICONINFORMATION | MB_TASKMODAL | MB_SETFOREGROUND;
inline constexpr unsigned kQuestionFlags =
    MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2 | MB_TASKMODAL | MB_SETFOREGROUND;
inline constexpr const wchar_t* kMessageCaption = L"Quorvel";

// The one-character endings joined to message literals.
inline constexpr const wchar_t* kRefusalMark = L"!";
inline constexpr const wchar_t* kConfirmMark = L"\u3002";
inline constexpr const wchar_t* kQuestionMark = L"?";

class KOQDDE_API IMessageBoxHandler {
public:
    virtual ~IMessageBoxHandler() = default;
    // owner is an opaque window handle (null for none); returns IDOK, IDYES, IDNO, ...
    virtual int Show(void* owner, const CString& text, const CString& caption, unsigned flags) = 0;
};

// Installs a handler for the lifetime of the scope and restores the previous one after.
class KOQDDE_API MessageBoxHandlerScope {
public:
    explicit MessageBoxHandlerScope(IMessageBoxHandler* handler);
    ~MessageBoxHandlerScope();
    MessageBoxHandlerScope(const MessageBoxHandlerScope&) = delete;
    MessageBoxHandlerScope& operator=(const MessageBoxHandlerScope&) = delete;

private:
    IMessageBoxHandler* m_previous;
};

KOQDDE_DIALOGS_API int MessageBoxExW(void* owner, const wchar_t* text, const wchar_t* caption,
                                     unsigned flags, unsigned short language);
KOQDDE_DIALOGS_API int AfxMessageBox(const CString& text, unsigned flags = MB_OK,
                                     unsigned helpId = 0);

// The active window of the UI, or null; the desktop shell installs a provider.
KOQDDE_DIALOGS_API void* GetActiveWindow();
using ActiveWindowProvider = void* (*)();
KOQDDE_API void SetActiveWindowProvider(ActiveWindowProvider provider);

// Shows a warning ("Quorvel", kWarningFlags) owned by the active window.
KOQDDE_DIALOGS_API int ShowWarning(const CString& text);
