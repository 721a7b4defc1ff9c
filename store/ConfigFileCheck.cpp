#include "store/ConfigFileCheck.h"

#include "platform/FileSystem.h"
#include "store/CXmlQdDeConfig.h"

#include <ctime>

std::string ConfigLoadError(const CString& file) {
    const ConfigFile::CheckResult check = ConfigFile::Check(file);
    if (!check.loaded)
        return check.failure == XmlLoadFailure::Missing ? std::string() : check.error;
    return check.rootName == ToUtf8(CString(kConfigRootName))
               ? std::string()
               : OtherRootError(file, check.rootName.c_str());
}

CString BackupBeside(const CString& file) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &local);
    const CString base = file + L"." + FromUtf8(stamp);
    CString backup = base + L".bak";
    for (int n = 2; PathExists(backup) && n < 100; ++n)
        backup = base + L"-" + FromUtf8(std::to_string(n)) + L".bak";
    if (PathExists(backup) || !CopyFileOverwrite(file, backup))
        return CString();
    return backup;
}
