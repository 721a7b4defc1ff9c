#pragma once
// The records a bill or quota of a library becomes when it enters a configuration. The
// workbench (a pick in a picker) and the command-line tool (an apply) build them alike.

#include "host/QvBillKit/QvBillKit.h"
#include "model/QdDeStructs.h"
#include "platform/CString.h"
#include "platform/Export.h"

// The bill under number (as settled for this configuration), of the library with this code.
// The formula is the library's, possibly empty.
KOQDDE_DIALOGS_API QdStruct QdFromLibrary(const SQdInfo& info, const CString& number,
                                          const CString& libraryCode);
KOQDDE_DIALOGS_API DeStruct DeFromLibrary(const SDeInfo& info, const CString& libraryCode);

// The formula of the small category's first calculation item ("专业\大类\小类"). False when the
// category has no calculation item; formula is then left alone, as it is when the item is
// unknown.
KOQDDE_DIALOGS_API bool DefaultFormulaOf(const CString& smallCategoryPath, CString& formula);
