#pragma once
// Profile (ini) files with the semantics of GetPrivateProfileStringW and
// WritePrivateProfileStringW: sections and keys match without regard to case, a write keeps
// the rest of the file byte for byte, and a file is written back in the encoding it was read
// in (UTF-8, UTF-8 with BOM, UTF-16LE with BOM, or GB18030 when it is not valid UTF-8).
// New files are UTF-8. A GB18030 file that a write would leave valid UTF-8, so that its other
// lines would read otherwise, gets a first line holding GB18030's signature (U+FEFF), which
// reads as nothing.

#include "platform/CString.h"

// Copies the value (or `defaultValue` when the file, section or key is missing) into a buffer
// of `bufferSize` characters, terminator included, so the result holds at most
// bufferSize - 1 characters. Surrounding blanks of the value are removed, and a value wholly
// enclosed in double or single quotes loses them. Returns the number of characters copied.
int GetPrivateProfileStringW(const wchar_t* section, const wchar_t* key,
                             const wchar_t* defaultValue, CString& out, int bufferSize,
                             const wchar_t* file);

// Sets the key (creating section and file as needed); a null key removes every section of the
// name, a null value every line of the key in the section reads look in. A value that would
// lose surrounding blanks or quotes on reading is written in quotes. No other key reads
// differently afterwards: what the file's lines can't hold so that it reads back as written
// (a line break, a key with '=', a section with ']', a character the encoding lacks) is
// refused. Returns false when refused or when the file can't be written.
bool WritePrivateProfileStringW(const wchar_t* section, const wchar_t* key, const wchar_t* value,
                                const wchar_t* file);
