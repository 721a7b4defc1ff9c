#pragma once
// Marks what a host may call in the shared libraries. They are built with hidden visibility,
// so everything else (the XML layer, SQLite, the helpers) stays out of their symbol tables.
// The Windows counterpart (dllexport/dllimport) is not written: this build targets ELF.

#if defined(__GNUC__) || defined(__clang__)
#define KOQDDE_API __attribute__((visibility("default")))
#else
#define KOQDDE_API
#endif

// Exported by the core library only because its sibling, the dialog library, calls it: the
// stand-ins of the host's libraries, the file, number and message helpers and the rules the
// dialogs share with the tool. Not part of a host's interface; it changes without notice.
#define KOQDDE_DIALOGS_API KOQDDE_API
