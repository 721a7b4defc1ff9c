#pragma once
// Plain records of a bill item and a quota item: what the dialogs fill and what passes through
// presenter and store. Each field is one attribute of the item's element, of the same name.

#include "platform/CString.h"
#include "platform/Export.h"

struct KOQDDE_API QdStruct {
    CString strQdId;     // bill number as used in this configuration
    CString strQdIdUser; // user's bill number
    CString strName;
    CString strUnit;
    CString strUnitCode; // unit coefficient as decimal text: 1 for m, 100 for 100m
    CString strtypeid;
    CString strQdCode; // code of the bill library in use
    CString strFormula;
    CString strAnnex; // "是" / "否": with pipe fittings
};

struct KOQDDE_API DeStruct {
    CString strName;
    CString strUnit;
    CString strUnitCode;
    CString strDeId;   // quota number
    CString strDeCode; // code of the quota library in use
    CString strFormula;
    CString strAnnex;
};
