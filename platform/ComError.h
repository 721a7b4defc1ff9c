#pragma once
// The one exception type for failures of the XML layer and the platform calls that the
// module does not handle itself. It carries an HRESULT so callers can tell the cases apart.

#include "platform/Export.h"
#include <cstdint>
#include <stdexcept>
#include <string>

using HRESULT = std::int32_t;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005u);

class KOQDDE_API ComError : public std::runtime_error {
public:
    explicit ComError(HRESULT hr, const std::string& what = {});
    HRESULT Error() const noexcept { return m_hr; }

private:
    HRESULT m_hr;
};

// Raises E_POINTER when a required handle is missing.
template <class T> T& CheckPointer(T* p) {
    if (!p)
        throw ComError(E_POINTER);
    return *p;
}
