#pragma once
// Stand-in for the host's settings library: the application profile, which gives the folder of
// the application's configuration data and its version.

#include "platform/CString.h"
#include "platform/Export.h"

class CQvKoVersion {
public:
    explicit CQvKoVersion(CString text = {}) : m_text(std::move(text)) {}
    CString ToString() const { return m_text; }

private:
    CString m_text;
};

class IQvKoAppProfile {
public:
    KOQDDE_DIALOGS_API CString GetConfigPath() const;
    CQvKoVersion GetVersion() const;
};

namespace QvKoSettings {
KOQDDE_DIALOGS_API IQvKoAppProfile GetAppProfile();
} // namespace QvKoSettings
