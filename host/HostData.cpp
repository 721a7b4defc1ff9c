#include "host/HostData.h"

namespace {
const HostData* g_hostData = nullptr;
} // namespace

const HostSpecialty* HostData::FindSpec(const CString& name) const {
    for (const auto& spec : catalog)
        if (spec.name == name)
            return &spec;
    return nullptr;
}

const HostSpecialty* HostData::FindSpecById(int id) const {
    for (const auto& spec : catalog)
        if (spec.id == id)
            return &spec;
    return nullptr;
}

const HostLargeCategory* HostData::FindLarge(int specId, int largeId) const {
    const HostSpecialty* spec = FindSpecById(specId);
    if (!spec)
        return nullptr;
    for (const auto& large : spec->larges)
        if (large.id == largeId)
            return &large;
    return nullptr;
}

const HostSmallCategory* HostData::FindSmall(int specId, int largeId, int smallId) const {
    const HostLargeCategory* large = FindLarge(specId, largeId);
    if (!large)
        return nullptr;
    for (const auto& small : large->smalls)
        if (small.id == smallId)
            return &small;
    return nullptr;
}

HostDataScope::HostDataScope(const HostData* data) : m_previous(g_hostData) {
    g_hostData = data;
}

HostDataScope::~HostDataScope() {
    g_hostData = m_previous;
}

const HostData* CurrentHostData() {
    return g_hostData;
}
