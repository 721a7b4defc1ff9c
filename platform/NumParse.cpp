#include "platform/NumParse.h"

#include <charconv>
#include <climits>
#include <string>
#include <cwchar>
#include <cwctype>

int WToI(const CString& text) {
    const wchar_t* p = text.GetString();
    while (*p && std::iswspace(static_cast<wint_t>(*p)))
        ++p;
    bool negative = false;
    if (*p == L'+' || *p == L'-') {
        negative = *p == L'-';
        ++p;
    }
    long long value = 0;
    for (; *p >= L'0' && *p <= L'9'; ++p) {
        value = value * 10 + (*p - L'0');
        if (value > static_cast<long long>(INT_MAX) + 1)
            value = static_cast<long long>(INT_MAX) + 1;
    }
    if (negative)
        value = -value;
    if (value > INT_MAX)
        return INT_MAX;
    if (value < INT_MIN)
        return INT_MIN;
    return static_cast<int>(value);
}

double WToF(const CString& text) {
    // Only plain decimal forms, as the Windows runtime's _wtof of the era: no hex, inf or nan.
    const wchar_t* p = text.GetString();
    while (*p && std::iswspace(static_cast<wint_t>(*p)))
        ++p;
    std::wstring number;
    if (*p == L'+' || *p == L'-')
        number += *p++;
    bool digits = false;
    while (*p >= L'0' && *p <= L'9') {
        number += *p++;
        digits = true;
    }
    if (*p == L'.') {
        number += *p++;
        while (*p >= L'0' && *p <= L'9') {
            number += *p++;
            digits = true;
        }
    }
    if (!digits)
        return 0.0;
    if (*p == L'e' || *p == L'E') {
        const wchar_t* q = p + 1;
        std::wstring exponent = L"e";
        if (*q == L'+' || *q == L'-')
            exponent += *q++;
        if (*q >= L'0' && *q <= L'9') {
            while (*q >= L'0' && *q <= L'9')
                exponent += *q++;
            number += exponent;
        }
    }
    // from_chars ignores the locale: a GUI that sets one must not read "3.5" as 3.
    std::string narrow(number.begin(), number.end());
    if (narrow[0] == '+')
        narrow.erase(0, 1);
    double value = 0.0;
    std::from_chars(narrow.data(), narrow.data() + narrow.size(), value);
    return value;
}

CString IntToText(int value) {
    CString s;
    s.Format(L"%d", value);
    return s;
}
