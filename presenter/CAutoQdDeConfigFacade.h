#pragma once
// The static entry points a host calls without showing a dialog.

#include "platform/CString.h"
#include "platform/Export.h"
#include "presenter/CQdDeConfigPresenter.h"

#include <memory>

// The dialog layer's window and rectangle; only the GUI part of the library defines them.
class CWnd;
struct CRect;

class KOQDDE_API CAutoQdDeConfigFacade {
public:
    // Generates "AttrConfig.xml" in the configuration folder.
    static void AttrConfig();
    // A presenter the caller owns; an empty file means the current configuration.
    static std::unique_ptr<CQdDeConfigPresenter> GetQdDeConfigPresenter(const CString& file);
    // Stamps the file's root with the project's mode and libraries and puts the binary head
    // ahead of it. A file that can't be opened or has no configuration root is left alone.
    static void WriteHead(const CString& file);
    // Runs the workbench modally on the project's current configuration and returns when it
    // is closed. Both arguments are ignored: the workbench centres on the application's frame.
    // Defined by the GUI part of the library (workbench/).
    static void StartQdDeConfig(CWnd* parent, const CRect& rect);
    // Runs the workbench as a page of the cloud-template wizard on file, showing the
    // template's bill and quota library names and, behind the link "说明", its description.
    // Returns how the page was left: 1 forward, -1 back (only with canGoBack), 0 out. The file
    // is saved in every case. Defined by the GUI part of the library (workbench/).
    static int StartOnlineConfig(const CString& file, const CString& qdName, const CString& deName,
                                 const CString& description, bool canGoBack, CWnd* parent);
};
