#pragma once
// Stand-in for the host's bill library kit: the project's bill library (the one whose code
// the project names), answered from its database among the installed host data's libraries.

#include "host/sqlite/ItemLibrary.h"
#include "platform/CString.h"
#include "platform/Export.h"

#include <vector>

// A bill of the library, or of the project's history.
struct SQdInfo {
    int nId = 0;       // row number in the library; not read by the module
    int nUnitCoef = 1; // unit coefficient: 1 for m, 100 for 100m
    int nAnnex = 0;    // non-zero: the bill's quantities carry pipe fittings
    CString strQdNum;
    CString strName;
    CString strUnit;
    CString strFormula;
    CString strFeature; // 项目特征
    CString strWork;    // 工作内容
};

// A quota of a quota library as the pickers hand it over, fields in this order.
struct SDeInfo {
    int nUnitCoef = 1; // unit coefficient: 10 for 10m
    int nAnnex = 0;    // non-zero: the quantities carry pipe fittings
    CString strDeNum;
    CString strName;
    CString strUnit;
    CString strFormula;
};

class IBillLib {
public:
    // The bill with this number; false when the library has none (or there is no library).
    KOQDDE_DIALOGS_API static bool GetQdInfo(const CString& number, SQdInfo& info);
    // The library's encoding rule: code length and sequence length; -1 for what is unknown.
    KOQDDE_DIALOGS_API static void GetEnCodeRule(int& codeLength, int& suffixLength);
    // Whether the number is a bill of the library.
    KOQDDE_DIALOGS_API static bool IsInQdk(const CString& number);
};

// An item of a library as the kit's records: a bill as the bill kit gives it, a quota as the
// pickers hand it over.
KOQDDE_DIALOGS_API SQdInfo ToBillInfo(const LibraryItem& item);
KOQDDE_DIALOGS_API SDeInfo ToQuotaPick(const LibraryItem& item);

// One bill library database, read through the library browser.
class BillLibrary {
public:
    // Opens the bill library with this code among files; false when there is none.
    bool Open(const std::vector<CString>& files, const CString& code);
    // Opens the installed project's bill library, for one call: the stand-ins keep no state
    // between calls.
    bool OpenProjectLibrary();
    bool Find(const CString& number, SQdInfo& info) const;
    bool Contains(const CString& number) const;
    void EncodingRule(int& codeLength, int& suffixLength) const;
    // The chapter path (chapter codes from the root, joined by "\") where a small category
    // opens the library's tree; empty when the library doesn't say.
    CString IndexPath(const CString& treePath) const;

private:
    ItemLibrary m_items;
};
