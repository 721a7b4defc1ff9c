#pragma once
// The static entry points a host calls without showing a dialog.

#include "platform/CString.h"
#include "presenter/CQdDeConfigPresenter.h"

#include <memory>

class CAutoQdDeConfigFacade {
public:
    // Generates "AttrConfig.xml" in the configuration folder.
    static void AttrConfig();
    // A presenter the caller owns; an empty file means the current configuration.
    static std::unique_ptr<CQdDeConfigPresenter> GetQdDeConfigPresenter(const CString& file);
    // Stamps the file's root with the project's mode and libraries and puts the binary head
    // ahead of it. A file that can't be opened or has no configuration root is left alone.
    static void WriteHead(const CString& file);
};
