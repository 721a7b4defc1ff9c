#include "host/QvKoProject/QvKoProject.h"

#include "host/HostData.h"
#include "platform/FileSystem.h"
#include "platform/NumParse.h"
#include "xml/XmlDocument.h"

namespace {

const HostData* Host() {
    return CurrentHostData();
}

// Splits a path text at its backslashes.
std::vector<CString> SplitPath(const CString& path) {
    std::vector<CString> parts;
    int start = 0;
    for (int pos = path.Find(L'\\'); pos >= 0; pos = path.Find(L'\\', start)) {
        parts.push_back(path.Mid(start, pos - start));
        start = pos + 1;
    }
    parts.push_back(path.Mid(start));
    return parts;
}

const HostLargeCategory* FindLargeByName(const HostSpecialty& spec, const CString& name) {
    for (const auto& large : spec.larges)
        if (large.name == name)
            return &large;
    return nullptr;
}

const HostSmallCategory* FindSmall(const SQvKoSmallCategoryId& id) {
    const HostData* host = Host();
    if (!host)
        return nullptr;
    return host->FindSmall(WToI(id.specId), WToI(id.bigCategoryId), WToI(id.smallCategoryId));
}

} // namespace

bool SpecNameToId(const CString& specName, SQvKoSpecId& id) {
    const HostData* host = Host();
    const HostSpecialty* spec = host ? host->FindSpec(specName) : nullptr;
    if (!spec)
        return false;
    id.specId = IntToText(spec->id);
    return true;
}

bool BigCategoryNameToId(const CString& path, SQvKoBigCategoryId& id) {
    auto parts = SplitPath(path);
    const HostData* host = Host();
    if (!host || parts.size() != 2)
        return false;
    const HostSpecialty* spec = host->FindSpec(parts[0]);
    const HostLargeCategory* large = spec ? FindLargeByName(*spec, parts[1]) : nullptr;
    if (!large)
        return false;
    id.specId = IntToText(spec->id);
    id.bigCategoryId = IntToText(large->id);
    return true;
}

bool SmallCategoryNameToId(const CString& path, SQvKoSmallCategoryId& id) {
    auto parts = SplitPath(path);
    const HostData* host = Host();
    if (!host || parts.size() != 3)
        return false;
    const HostSpecialty* spec = host->FindSpec(parts[0]);
    const HostLargeCategory* large = spec ? FindLargeByName(*spec, parts[1]) : nullptr;
    if (!large)
        return false;
    for (const auto& small : large->smalls) {
        if (small.name == parts[2]) {
            id.specId = IntToText(spec->id);
            id.bigCategoryId = IntToText(large->id);
            id.smallCategoryId = IntToText(small.id);
            return true;
        }
    }
    return false;
}

CString CProj::GetPrjPath() const {
    return Host() ? Host()->project.path : CString();
}

CString CProj::GetCurrentSpec() const {
    return Host() ? Host()->project.currentSpec : CString();
}

int CProj::GetCurrentSpecId() const {
    const HostData* host = Host();
    const HostSpecialty* spec = host ? host->FindSpec(host->project.currentSpec) : nullptr;
    return spec ? spec->id : 0;
}

bool CAtt::GetAllSpecNames(CStringArray& names) const {
    const HostData* host = Host();
    if (!host)
        return false;
    for (const auto& spec : host->catalog)
        names.Add(spec.name);
    return true;
}

bool CAtt::GetAllBigCategoryIdsBySpec(const SQvKoSpecId& spec,
                                      std::vector<SQvKoBigCategoryId>& ids) const {
    const HostData* host = Host();
    const HostSpecialty* found = host ? host->FindSpecById(WToI(spec.specId)) : nullptr;
    if (!found || spec.specId.IsEmpty())
        return false;
    ids.clear();
    for (const auto& large : found->larges)
        ids.push_back({IntToText(found->id), IntToText(large.id)});
    return true;
}

bool CAtt::GetBigCategoryName(const SQvKoBigCategoryId& id, CString& name) const {
    const HostData* host = Host();
    const HostLargeCategory* large =
        host ? host->FindLarge(WToI(id.specId), WToI(id.bigCategoryId)) : nullptr;
    if (!large)
        return false;
    name = large->name;
    return true;
}

bool CAtt::GetAllSmallCategoryIdsByBigCategory(const SQvKoBigCategoryId& large,
                                               std::vector<SQvKoSmallCategoryId>& ids) const {
    const HostData* host = Host();
    const HostLargeCategory* found =
        host ? host->FindLarge(WToI(large.specId), WToI(large.bigCategoryId)) : nullptr;
    if (!found)
        return false;
    ids.clear();
    for (const auto& small : found->smalls)
        ids.push_back({large.specId, large.bigCategoryId, IntToText(small.id)});
    return true;
}

bool CAtt::GetSmallCategoryName(const SQvKoSmallCategoryId& id, CString& name) const {
    const HostSmallCategory* small = FindSmall(id);
    if (!small)
        return false;
    name = small->name;
    return true;
}

SQdDeInfo::EQdDeMode CAtt::GetQdDeMode() const {
    return Host() && Host()->project.mode != 0 ? SQdDeInfo::eDeMode : SQdDeInfo::eQdMode;
}

#define KOQDDE_LIBRARY_FIELD(Function, library, field)                                             \
    CString CAtt::Function() const {                                                               \
        return Host() ? Host()->project.library.field : CString();                                 \
    }

KOQDDE_LIBRARY_FIELD(GetQdFileName, bill, fileName)
KOQDDE_LIBRARY_FIELD(GetQdCode, bill, code)
KOQDDE_LIBRARY_FIELD(GetQdLocal, bill, local)
KOQDDE_LIBRARY_FIELD(GetQdDeFileName, billQuota, fileName)
KOQDDE_LIBRARY_FIELD(GetQdDeCode, billQuota, code)
KOQDDE_LIBRARY_FIELD(GetQdDeYear, billQuota, year)
KOQDDE_LIBRARY_FIELD(GetQdDeLocal, billQuota, local)
KOQDDE_LIBRARY_FIELD(GetDeFileName, quota, fileName)
KOQDDE_LIBRARY_FIELD(GetDeCode, quota, code)
KOQDDE_LIBRARY_FIELD(GetDeYear, quota, year)
KOQDDE_LIBRARY_FIELD(GetDeLocal, quota, local)

#undef KOQDDE_LIBRARY_FIELD

bool CAtt::GetDropList(const CString& key, CStringArray& items) const {
    const HostData* host = Host();
    if (!host)
        return false;
    auto it = host->dropLists.find(key);
    if (it == host->dropLists.end())
        return false;
    items = it->second;
    return true;
}

bool CAtt::GetDropList(const CString& code, CStringArray& items, const CStringArray& keys) const {
    const HostData* host = Host();
    if (!host)
        return false;
    for (const CString& key : keys) {
        if (key.IsEmpty())
            continue;
        for (const auto& spec : host->catalog)
            for (const auto& large : spec.larges)
                for (const auto& small : large.smalls)
                    for (const auto& attribute : small.attributes)
                        if (attribute.code == code && attribute.dropKey == key)
                            return GetDropList(key, items);
    }
    return false;
}

bool CSysSmallCategoryMng::GetAttributeList(CStringArray& list) const {
    const HostSmallCategory* small = FindSmall(m_id);
    if (!small)
        return false;
    for (const auto& attribute : small->attributes) {
        list.Add(attribute.field);
        list.Add(attribute.name);
        list.Add(attribute.dropKey);
        list.Add(attribute.code);
    }
    return true;
}

int CSysSmallCategoryMng::GetAttType() const {
    const HostSmallCategory* small = FindSmall(m_id);
    return small ? small->attType : 0;
}

namespace {
// Whether the document element's start tag already carries Version="text", judged from the
// file's first bytes without parsing it: the store's save writes the stamp with the tree, and
// reading the whole file back after every save would double its cost. Anything unclear (a
// UTF-16 file, a start tag beyond the first bytes) says no, and the file is parsed.
bool StampedAlready(const CString& file, const std::string& text) {
    const std::optional<std::string> head = ReadFileStart(file, 4096);
    if (!head || head->starts_with("\xFF\xFE") || head->starts_with("\xFE\xFF"))
        return false;
    const std::string_view bytes = *head;
    size_t at = 0;
    while ((at = bytes.find('<', at)) != std::string_view::npos) {
        const std::string_view rest = bytes.substr(at);
        if (rest.starts_with("<!--"))
            at = bytes.find("-->", at);
        else if (rest.starts_with("<?") || rest.starts_with("<!"))
            at = bytes.find('>', at);
        else
            break;
        if (at == std::string_view::npos)
            return false;
    }
    const size_t end = at == std::string_view::npos ? at : bytes.find('>', at);
    return end != std::string_view::npos &&
           bytes.substr(at, end - at).find(" Version=\"" + text + "\"") != std::string_view::npos;
}
} // namespace

bool QvKoXmlVertion::SetXmlVersion(const CString& version, const CString& file) {
    if (version.IsEmpty())
        return false;
    std::string text = ToUtf8(version);
    if (StampedAlready(file, text))
        return true;
    XmlDocument doc;
    if (!doc.Load(file))
        return false;
    pugi::xml_node root = doc.DocumentElement();
    if (!root)
        return false;
    pugi::xml_attribute attr = root.attribute("Version");
    if (attr && text == attr.value())
        return true;
    if (!attr)
        attr = root.append_attribute("Version");
    attr.set_value(text.c_str());
    return doc.Save(file);
}
