#pragma once
// Number parsing and printing with the behaviour the configuration files rely on:
// leading blanks and a sign are accepted, parsing stops at the first non-digit, and
// empty or non-numeric text gives 0.

#include "platform/CString.h"
#include "platform/Export.h"

// As _wtoi: decimal, saturating at INT_MIN / INT_MAX on overflow.
KOQDDE_DIALOGS_API int WToI(const CString& text);
// As _wtof: a decimal floating-point prefix, 0.0 when there is none.
double WToF(const CString& text);
// As the format "%d".
KOQDDE_DIALOGS_API CString IntToText(int value);
