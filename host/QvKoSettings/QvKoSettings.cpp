#include "host/QvKoSettings/QvKoSettings.h"

#include "host/HostData.h"

CString IQvKoAppProfile::GetConfigPath() const {
    const HostData* host = CurrentHostData();
    return host ? host->profile.configPath : CString();
}

CQvKoVersion IQvKoAppProfile::GetVersion() const {
    const HostData* host = CurrentHostData();
    return CQvKoVersion(host ? host->profile.version : CString());
}

IQvKoAppProfile QvKoSettings::GetAppProfile() {
    return IQvKoAppProfile();
}
