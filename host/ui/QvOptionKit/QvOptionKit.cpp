#include "host/ui/QvOptionKit/QvOptionKit.h"

#include "host/HostData.h"

namespace {

bool HasDropList(const std::wstring& code) {
    const HostData* host = CurrentHostData();
    if (!host)
        return false;
    for (const auto& spec : host->catalog)
        for (const auto& large : spec.larges)
            for (const auto& small : large.smalls)
                for (const auto& attribute : small.attributes)
                    if (attribute.code.str() == code && !attribute.dropKey.IsEmpty())
                        return true;
    return false;
}

} // namespace

CellData* CellDataFactory::Create(const std::wstring& code) {
    if (HasDropList(code))
        return new CellData(code, CellData::kDropList);
    if (code.rfind(L"AM_", 0) == 0)
        return new CellData(code, CellData::kNumber);
    return new CellData(code, CellData::kText);
}

void CellDataFactory::Release(CellData* data) {
    delete data;
}
