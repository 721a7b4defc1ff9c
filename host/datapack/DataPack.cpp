#include "host/datapack/DataPack.h"

#include "host/sqlite/LibraryFiles.h"
#include "xml/XmlName.h"

#include <pugixml.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

#ifndef KOQDDE_SAMPLE_DIR
#define KOQDDE_SAMPLE_DIR ""
#endif
#ifndef KOQDDE_SAMPLE_BUILT_DIR
#define KOQDDE_SAMPLE_BUILT_DIR ""
#endif

namespace {

constexpr const wchar_t* kCatalogFile = L"catalog.xml";
constexpr const wchar_t* kDropListsFile = L"droplists.xml";
constexpr const wchar_t* kProfileFolder = L"profile";
constexpr const wchar_t* kLibrariesFolder = L"libraries";
constexpr const wchar_t* kSchemaFile = L"schema.sql";
constexpr const wchar_t* kProjectFolder = L"project";
constexpr const wchar_t* kProjectExtension = L".kprj";
constexpr const wchar_t* kDefaultProject = L"示例工程.kprj";

fs::path ToPath(const CString& path) {
    return fs::path(ToUtf8(path));
}

CString FromPath(const fs::path& path) {
    return FromUtf8(path.string());
}

CString Join(const CString& folder, const CString& name) {
    if (folder.IsEmpty() || folder.Right(1) == L"/")
        return folder + name;
    return folder + L"/" + name;
}

// Absolute and without "." or ".." parts or a trailing separator, so that paths handed to
// the host stand-ins compare and join predictably.
CString Absolute(const CString& path) {
    std::error_code ec;
    fs::path abs = fs::absolute(ToPath(path), ec);
    if (ec)
        return path;
    abs = abs.lexically_normal();
    std::string text = abs.string();
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return FromUtf8(text);
}

CString Quoted(const CString& text) {
    return L"\"" + text + L"\"";
}

bool Fail(CString& error, const CString& file, const CString& what) {
    error = file + L": " + what;
    return false;
}

CString Attr(const pugi::xml_node& node, const char* name) {
    return FromUtf8(node.attribute(name).value());
}

// A strict decimal: digits only, as the ids of a pack are written. Anything else is a
// fault of the pack, not a number to guess at.
std::optional<int> ParseInt(const CString& text, bool allowNegative) {
    std::string bytes = ToUtf8(text);
    if (bytes.empty())
        return std::nullopt;
    int value = 0;
    const char* first = bytes.data();
    const char* last = first + bytes.size();
    if (!allowNegative && *first == '-')
        return std::nullopt;
    auto [end, ec] = std::from_chars(first, last, value);
    if (ec != std::errc() || end != last)
        return std::nullopt;
    return value;
}

int LineOfOffset(const CString& path, std::ptrdiff_t offset) {
    std::ifstream in(ToPath(path), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), {});
    if (offset < 0)
        return 1;
    auto end = bytes.begin() + std::min<std::ptrdiff_t>(offset, std::ssize(bytes));
    return 1 + static_cast<int>(std::count(bytes.begin(), end, '\n'));
}

// Loads an XML file and checks its root element's name.
bool LoadXml(const CString& path, const char* rootName, pugi::xml_document& doc, CString& error) {
    std::error_code ec;
    const fs::file_status status = fs::status(ToPath(path), ec);
    if (!fs::exists(status))
        return Fail(error, path, L"file not found");
    if (fs::is_directory(status))
        return Fail(error, path, L"is a folder, not a file");
    if (!fs::is_regular_file(status))
        return Fail(error, path, L"is not a regular file");
    pugi::xml_parse_result result = doc.load_file(ToPath(path).c_str());
    if (result.status == pugi::status_file_not_found || result.status == pugi::status_io_error)
        return Fail(error, path, L"cannot be read");
    if (!result) {
        CString what;
        what.Format(L"malformed XML at line %d: %ls", LineOfOffset(path, result.offset),
                    FromUtf8(result.description()).GetString());
        return Fail(error, path, what);
    }
    pugi::xml_node root = doc.document_element();
    if (std::string(root.name()) != rootName)
        return Fail(error, path,
                    L"root element is <" + FromUtf8(root.name()) + L">, expected <" +
                        FromUtf8(rootName) + L">");
    return true;
}

// Element children of a node, each required to have the expected name: a misspelt element
// would otherwise vanish from the catalog without a word.
bool Children(const pugi::xml_node& parent, const char* name, const CString& where,
              const CString& path, std::vector<pugi::xml_node>& out, CString& error) {
    out.clear();
    for (pugi::xml_node child : parent.children()) {
        if (child.type() != pugi::node_element)
            continue;
        if (std::string(child.name()) != name)
            return Fail(error, path,
                        L"unexpected element <" + FromUtf8(child.name()) + L"> in " + where +
                            L", expected <" + FromUtf8(name) + L">");
        out.push_back(child);
    }
    return true;
}

// A character of a name as a message shows it: the character itself where it is visible, and
// always its code point.
CString CharText(char32_t c) {
    CString code;
    code.Format(L"U+%04X", static_cast<unsigned>(c));
    if (c < 0x20 || (c >= 0x7F && c <= 0x9F))
        return code;
    return Quoted(CString(std::wstring(1, static_cast<wchar_t>(c)))) + L" (" + code + L")";
}

// Why a category name can't be used, or nothing. Category names become element names in the
// configuration files and the attribute settings, and a category's path joins them with "\".
std::optional<CString> CategoryNameFault(std::string_view utf8) {
    if (utf8.find('\\') != std::string_view::npos)
        return CString(L"holds a backslash, which separates the levels of a category path");
    const size_t at = XmlNameFaultAt(utf8);
    if (at == std::string_view::npos)
        return std::nullopt;
    CString why;
    char32_t c = 0;
    if (DecodeUtf8(utf8.substr(at), c) == 0)
        why = L"it is not well-formed UTF-8";
    else if (c == U':')
        why = L"a colon would need a namespace declaration";
    else if (at == 0)
        why = CharText(c) + L" can't start a name";
    else
        why = CharText(c) + L" can't stand in a name";
    return L"can't be an XML element name, as the configuration files need: " + why;
}

// Reads the id and name every level of the catalog carries, and rejects a repeat among the
// siblings: both are keys the host looks categories up by.
bool ReadIdAndName(const pugi::xml_node& node, const CString& kind, const CString& where,
                   const CString& path, std::set<int>& ids, std::set<CString>& names, int& id,
                   CString& name, CString& error) {
    name = Attr(node, "name");
    CString idText = Attr(node, "id");
    CString label = kind + (name.IsEmpty() ? CString() : L" " + Quoted(name)) + L" in " + where;
    if (name.IsEmpty())
        return Fail(error, path, kind + L" without a name in " + where);
    if (std::optional<CString> fault = CategoryNameFault(node.attribute("name").value())) {
        // The name as written may hold line breaks and other controls; the message is one line.
        CString shown;
        for (int i = 0; i < name.GetLength(); ++i) {
            const auto c = static_cast<char32_t>(name[i]);
            if (c < 0x20 || (c >= 0x7F && c <= 0x9F))
                shown += CharText(c);
            else
                shown += name[i];
        }
        return Fail(error, path, kind + L" " + Quoted(shown) + L" in " + where + L" " + *fault);
    }
    if (idText.IsEmpty())
        return Fail(error, path, label + L" has no id");
    std::optional<int> parsed = ParseInt(idText, false);
    if (!parsed || *parsed <= 0)
        return Fail(error, path, label + L" has id " + Quoted(idText) + L", not a positive number");
    if (!ids.insert(*parsed).second)
        return Fail(error, path, label + L" repeats the id " + idText + L" of a sibling");
    if (!names.insert(name).second)
        return Fail(error, path, label + L" repeats the name of a sibling");
    id = *parsed;
    return true;
}

// Attribute codes become element names in the configuration files.
bool IsCodeText(const CString& code) {
    if (code.IsEmpty())
        return false;
    for (int i = 0; i < code.GetLength(); ++i) {
        wchar_t ch = code[i];
        bool letter = (ch >= L'A' && ch <= L'Z') || (ch >= L'a' && ch <= L'z') || ch == L'_';
        bool digit = ch >= L'0' && ch <= L'9';
        if (!letter && !(digit && i > 0))
            return false;
    }
    return true;
}

bool ReadAttributes(const pugi::xml_node& smallNode, const CString& where, const CString& path,
                    HostSmallCategory& small, CString& error) {
    std::vector<pugi::xml_node> nodes;
    if (!Children(smallNode, "attr", where, path, nodes, error))
        return false;
    std::set<CString> names;
    std::set<CString> codes;
    for (const auto& node : nodes) {
        HostAttribute attr;
        attr.field = Attr(node, "field");
        attr.name = Attr(node, "name");
        attr.dropKey = Attr(node, "drop");
        attr.code = Attr(node, "code");
        CString label = L"attribute" +
                        (attr.name.IsEmpty() ? CString() : L" " + Quoted(attr.name)) + L" of " +
                        where;
        if (attr.name.IsEmpty())
            return Fail(error, path, label + L" has no name");
        if (attr.field.IsEmpty())
            return Fail(error, path, label + L" has no field");
        if (attr.code.IsEmpty())
            return Fail(error, path, label + L" has no code");
        if (!IsCodeText(attr.code))
            return Fail(error, path,
                        label + L" has code " + Quoted(attr.code) +
                            L", which is not ASCII letters and digits starting with a letter");
        if (!names.insert(attr.name).second)
            return Fail(error, path, label + L" repeats the name of another attribute");
        if (!codes.insert(attr.code).second)
            return Fail(error, path, label + L" repeats the code " + attr.code);
        small.attributes.push_back(attr);
    }
    return true;
}

std::optional<CString> FindProjectFile(const CString& packDir, CString& error) {
    CString folder = Join(packDir, kProjectFolder);
    std::error_code ec;
    if (!fs::is_directory(ToPath(folder), ec)) {
        Fail(error, folder, L"project folder not found");
        return std::nullopt;
    }
    std::vector<CString> found;
    for (const auto& entry : fs::directory_iterator(ToPath(folder), ec))
        if (entry.is_regular_file() &&
            entry.path().extension() == ToUtf8(CString(kProjectExtension)))
            found.push_back(FromPath(entry.path()));
    if (ec) {
        Fail(error, folder, L"cannot list the folder");
        return std::nullopt;
    }
    if (found.size() == 1)
        return found.front();
    if (found.empty()) {
        Fail(error, folder, L"no *.kprj project file in the folder");
        return std::nullopt;
    }
    CString preferred = Join(folder, kDefaultProject);
    if (std::find(found.begin(), found.end(), preferred) != found.end())
        return preferred;
    Fail(error, folder, L"several *.kprj project files; name the one to open");
    return std::nullopt;
}

} // namespace

// A program installed in <prefix>/bin finds the pack installed with it; one run from the build
// tree finds none there and takes the source tree's.
CString BundledPackDir() {
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (!ec) {
        const fs::path installed = exe.parent_path().parent_path() / "share/koqdde/sample";
        if (fs::is_regular_file(installed / ToPath(kCatalogFile), ec))
            return FromPath(installed);
    }
    return FromUtf8(KOQDDE_SAMPLE_DIR);
}

CString PerUserPackDir() {
    // A relative XDG_DATA_HOME is invalid by its own rules and is ignored.
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome && dataHome[0] == '/')
        return Join(FromUtf8(dataHome), L"koqdde/sample");
    const char* home = std::getenv("HOME");
    if (home && home[0])
        return Join(FromUtf8(home), L".local/share/koqdde/sample");
    return {};
}

bool LoadCatalogFile(const CString& path, HostData& out, CString& error) {
    pugi::xml_document doc;
    if (!LoadXml(path, "catalog", doc, error))
        return false;
    pugi::xml_node root = doc.document_element();
    std::vector<HostSpecialty> catalog;
    std::vector<pugi::xml_node> specNodes;
    if (!Children(root, "spec", L"<catalog>", path, specNodes, error))
        return false;
    std::set<int> specIds;
    std::set<CString> specNames;
    for (const auto& specNode : specNodes) {
        HostSpecialty spec;
        if (!ReadIdAndName(specNode, L"specialty", L"<catalog>", path, specIds, specNames, spec.id,
                           spec.name, error))
            return false;
        std::vector<pugi::xml_node> largeNodes;
        if (!Children(specNode, "large", spec.name, path, largeNodes, error))
            return false;
        std::set<int> largeIds;
        std::set<CString> largeNames;
        for (const auto& largeNode : largeNodes) {
            HostLargeCategory large;
            if (!ReadIdAndName(largeNode, L"large category", spec.name, path, largeIds, largeNames,
                               large.id, large.name, error))
                return false;
            CString largePath = spec.name + L"\\" + large.name;
            std::vector<pugi::xml_node> smallNodes;
            if (!Children(largeNode, "small", largePath, path, smallNodes, error))
                return false;
            std::set<int> smallIds;
            std::set<CString> smallNames;
            for (const auto& smallNode : smallNodes) {
                HostSmallCategory small;
                if (!ReadIdAndName(smallNode, L"small category", largePath, path, smallIds,
                                   smallNames, small.id, small.name, error))
                    return false;
                CString smallPath = largePath + L"\\" + small.name;
                CString attType = Attr(smallNode, "attType");
                if (!attType.IsEmpty()) {
                    std::optional<int> parsed = ParseInt(attType, true);
                    if (!parsed)
                        return Fail(error, path,
                                    L"small category " + smallPath + L" has attType " +
                                        Quoted(attType) + L", not a number");
                    small.attType = *parsed;
                }
                if (!ReadAttributes(smallNode, smallPath, path, small, error))
                    return false;
                large.smalls.push_back(std::move(small));
            }
            spec.larges.push_back(std::move(large));
        }
        catalog.push_back(std::move(spec));
    }
    out.catalog = std::move(catalog);
    out.profile.version = Attr(root, "version");
    return true;
}

bool LoadDropListsFile(const CString& path, HostData& out, CString& error) {
    pugi::xml_document doc;
    if (!LoadXml(path, "droplists", doc, error))
        return false;
    std::vector<pugi::xml_node> listNodes;
    if (!Children(doc.document_element(), "list", L"<droplists>", path, listNodes, error))
        return false;
    std::map<CString, CStringArray> lists;
    for (const auto& listNode : listNodes) {
        CString key = Attr(listNode, "key");
        if (key.IsEmpty())
            return Fail(error, path, L"a <list> without a key");
        std::vector<pugi::xml_node> itemNodes;
        if (!Children(listNode, "item", L"list " + Quoted(key), path, itemNodes, error))
            return false;
        CStringArray items;
        for (const auto& item : itemNodes)
            items.Add(FromUtf8(item.child_value()));
        if (!lists.emplace(key, items).second)
            return Fail(error, path, L"list " + Quoted(key) + L" appears twice");
    }
    out.dropLists = std::move(lists);
    return true;
}

bool LoadProjectFile(const CString& path, HostData& out, CString& error) {
    pugi::xml_document doc;
    if (!LoadXml(path, "project", doc, error))
        return false;
    pugi::xml_node root = doc.document_element();
    HostProject project;
    project.path = Absolute(path);
    project.currentSpec = Attr(root, "spec");
    if (project.currentSpec.IsEmpty())
        return Fail(error, path, L"<project> has no spec");
    if (!out.FindSpec(project.currentSpec))
        return Fail(error, path,
                    L"specialty " + Quoted(project.currentSpec) + L" is not in the catalog");
    CString mode = Attr(root, "mode");
    if (!mode.IsEmpty()) {
        std::optional<int> parsed = ParseInt(mode, true);
        if (!parsed)
            return Fail(error, path, L"<project> has mode " + Quoted(mode) + L", not a number");
        project.mode = *parsed;
    }
    std::vector<pugi::xml_node> libraryNodes;
    if (!Children(root, "library", L"<project>", path, libraryNodes, error))
        return false;
    std::set<CString> roles;
    for (const auto& node : libraryNodes) {
        CString role = Attr(node, "role");
        HostLibrary* library = nullptr;
        if (role == L"bill")
            library = &project.bill;
        else if (role == L"billQuota")
            library = &project.billQuota;
        else if (role == L"quota")
            library = &project.quota;
        else
            return Fail(error, path,
                        L"<library> has role " + Quoted(role) +
                            L", expected \"bill\", \"billQuota\" or \"quota\"");
        if (!roles.insert(role).second)
            return Fail(error, path, L"library role " + Quoted(role) + L" appears twice");
        library->fileName = Attr(node, "file");
        library->code = Attr(node, "code");
        library->local = Attr(node, "local");
        library->year = Attr(node, "year");
    }
    out.project = std::move(project);
    return true;
}

bool CheckDropKeys(const HostData& data, const CString& catalogPath, CString& error) {
    for (const auto& spec : data.catalog)
        for (const auto& large : spec.larges)
            for (const auto& small : large.smalls)
                for (const auto& attr : small.attributes)
                    if (!attr.dropKey.IsEmpty() && !data.dropLists.count(attr.dropKey))
                        return Fail(error, catalogPath,
                                    L"attribute " + Quoted(attr.name) + L" of " + spec.name +
                                        L"\\" + large.name + L"\\" + small.name +
                                        L" names the drop-down list " + Quoted(attr.dropKey) +
                                        L", which " + kDropListsFile + L" lacks");
    return true;
}

bool EnsurePackCopy(const CString& from, const CString& to, CString& error) {
    std::error_code ec;
    fs::path target = ToPath(to);
    if (fs::exists(target, ec)) {
        if (!fs::is_directory(target, ec))
            return Fail(error, to, L"exists but is not a folder");
        return true;
    }
    if (from.IsEmpty())
        return Fail(error, to, L"missing, and this build knows no bundled data pack to copy");
    if (!fs::is_directory(ToPath(from), ec))
        return Fail(error, from, L"bundled data pack folder not found");
    fs::create_directories(target.parent_path(), ec);
    if (ec)
        return Fail(error, FromPath(target.parent_path()),
                    L"cannot create the folder: " + FromUtf8(ec.message()));
    fs::path partial = target;
    partial += ".partial-" + std::to_string(::getpid());
    fs::remove_all(partial, ec);
    fs::copy(ToPath(from), partial, fs::copy_options::recursive, ec);
    if (ec) {
        CString what = L"cannot copy the data pack here: " + FromUtf8(ec.message());
        fs::remove_all(partial, ec);
        return Fail(error, FromPath(partial), what);
    }
    fs::rename(partial, target, ec);
    if (ec) {
        // Another program may have made the copy first; theirs is as good as ours.
        bool madeMeanwhile = fs::is_directory(target);
        CString what = L"cannot move the copied data pack into place: " + FromUtf8(ec.message());
        fs::remove_all(partial, ec);
        if (!madeMeanwhile)
            return Fail(error, to, what);
    }
    return true;
}

bool PrepareConfigDir(const CString& configDir, const CString& profileDir, CString& error) {
    std::error_code ec;
    fs::path target = ToPath(configDir);
    if (fs::exists(target, ec)) {
        if (!fs::is_directory(target, ec))
            return Fail(error, configDir, L"exists but is not a folder");
        return true;
    }
    if (!fs::is_directory(ToPath(profileDir), ec))
        return Fail(error, profileDir, L"profile folder not found");
    fs::create_directories(target, ec);
    if (ec)
        return Fail(error, configDir, L"cannot create the folder: " + FromUtf8(ec.message()));
    for (const auto& entry : fs::directory_iterator(ToPath(profileDir), ec)) {
        if (!entry.is_regular_file())
            continue;
        fs::copy_file(entry.path(), target / entry.path().filename(), ec);
        if (ec)
            return Fail(error, FromPath(target / entry.path().filename()),
                        L"cannot copy from the profile folder: " + FromUtf8(ec.message()));
    }
    if (ec)
        return Fail(error, profileDir, L"cannot list the folder: " + FromUtf8(ec.message()));
    return true;
}

bool AddMissingPackFiles(const CString& from, const CString& to, CString& error) {
    std::error_code ec;
    const fs::path source = ToPath(from);
    if (from.IsEmpty() || !fs::is_directory(source, ec))
        return true;
    for (auto it = fs::recursive_directory_iterator(source, ec);
         !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        const fs::path target = ToPath(to) / fs::relative(it->path(), source, ec);
        if (ec || fs::exists(target, ec))
            continue;
        if (it->is_directory(ec))
            fs::create_directories(target, ec);
        else
            fs::copy_file(it->path(), target, ec);
        if (ec)
            return Fail(error, FromPath(target),
                        L"cannot add it from the bundled pack: " + FromUtf8(ec.message()));
    }
    return true;
}

namespace {

// Tried rather than read from the permission bits, which say nothing of read-only mounts.
bool CanWriteInto(const fs::path& folder) {
    std::error_code ec;
    const fs::path probe = folder / ".koqdde-write-probe";
    const bool ok = std::ofstream(probe).good();
    fs::remove(probe, ec);
    return ok;
}

// A folder of its own under the user's cache for the databases of a pack the user may not
// write into (an installed pack): named by a hash of the pack's path, so that two packs never
// share their databases.
CString CacheFolderFor(const CString& packDir) {
    std::uint64_t hash = 14695981039346656037ull; // FNV-1a: stable from run to run
    for (unsigned char byte : ToUtf8(packDir))
        hash = (hash ^ byte) * 1099511628211ull;
    char name[17];
    std::snprintf(name, sizeof name, "%016llx", static_cast<unsigned long long>(hash));
    const CString leaf = L"koqdde/packs/" + FromUtf8(name);
    if (const char* cache = std::getenv("XDG_CACHE_HOME"); cache && cache[0] == '/')
        return Join(FromUtf8(cache), leaf);
    if (const char* home = std::getenv("HOME"); home && home[0])
        return Join(FromUtf8(home), L".cache/" + leaf);
    return {};
}

} // namespace

bool LoadLibraries(const CString& packDir, const CString& projectFile, HostData& out,
                   CString& error) {
    const CString libraries = Join(packDir, kLibrariesFolder);
    const CString schema = Join(libraries, kSchemaFile);
    std::error_code ec;
    if (!fs::exists(ToPath(schema), ec))
        return true; // a pack without libraries: the pickers and numbering find nothing
    // Databases are built beside their sources, except for the bundled pack in the source
    // tree, whose databases go to the build tree: nothing is ever written into the sources.
    const CString sourcePack = FromUtf8(KOQDDE_SAMPLE_DIR);
    const bool sourceTree =
        !sourcePack.IsEmpty() && fs::equivalent(ToPath(packDir), ToPath(sourcePack), ec);
    CString built = sourceTree ? FromUtf8(KOQDDE_SAMPLE_BUILT_DIR) : packDir;
    const bool readOnly = !sourceTree && !CanWriteInto(ToPath(Join(packDir, kLibrariesFolder)));
    if (readOnly) {
        built = CacheFolderFor(packDir);
        if (built.IsEmpty())
            return Fail(error, packDir,
                        L"the pack is read-only and neither XDG_CACHE_HOME nor HOME is set; no "
                        L"place for its databases");
    }
    std::vector<CString> made;
    const CString libraryDbs = Join(built, kLibrariesFolder);
    if (!BuildStaleDatabases(libraries, schema, libraryDbs, made, error))
        return false;
    out.libraryFiles = DatabaseFilesIn(libraryDbs);
    // The project's history sits beside the project file: <project>.history.sql.
    fs::path history = ToPath(projectFile);
    history.replace_extension(".history.sql");
    if (fs::exists(history, ec)) {
        const CString historyDbs =
            sourceTree || readOnly ? Join(built, kProjectFolder) : FromPath(history.parent_path());
        if (!BuildStaleDatabases(FromPath(history.parent_path()), schema, historyDbs, made, error))
            return false;
        fs::path database = ToPath(historyDbs) / history.filename();
        database.replace_extension(".db");
        out.historyFile = FromPath(database);
    }
    return true;
}

bool LoadDataPack(const DataPackOptions& options, HostData& out, CString& error) {
    std::error_code ec;
    CString packDir = options.dataDir;
    if (packDir.IsEmpty()) {
        packDir = PerUserPackDir();
        if (packDir.IsEmpty()) {
            error = L"neither XDG_DATA_HOME nor HOME is set; no place for the data pack";
            return false;
        }
        if (!EnsurePackCopy(BundledPackDir(), packDir, error))
            return false;
    } else if (!fs::is_directory(ToPath(packDir), ec)) {
        return Fail(error, packDir, L"data pack folder not found");
    }
    packDir = Absolute(packDir);
    if (options.dataDir.IsEmpty() && !AddMissingPackFiles(BundledPackDir(), packDir, error))
        return false;

    HostData data;
    CString catalogPath = Join(packDir, kCatalogFile);
    if (!LoadCatalogFile(catalogPath, data, error) ||
        !LoadDropListsFile(Join(packDir, kDropListsFile), data, error) ||
        !CheckDropKeys(data, catalogPath, error))
        return false;

    CString projectFile = options.projectFile;
    if (projectFile.IsEmpty()) {
        std::optional<CString> found = FindProjectFile(packDir, error);
        if (!found)
            return false;
        projectFile = *found;
    }
    if (!LoadProjectFile(projectFile, data, error) ||
        !LoadLibraries(packDir, projectFile, data, error))
        return false;

    CString profileDir = Join(packDir, kProfileFolder);
    if (options.configDir.IsEmpty() && fs::is_directory(ToPath(profileDir), ec) &&
        !CanWriteInto(ToPath(profileDir)))
        return Fail(error, profileDir,
                    L"the pack's configuration folder is read-only: name a folder of your own "
                    L"with --config-dir, or leave out --data to work on your own copy of the "
                    L"bundled pack");
    CString configDir = Absolute(options.configDir.IsEmpty() ? profileDir : options.configDir);
    if (!PrepareConfigDir(configDir, profileDir, error))
        return false;
    data.profile.configPath = configDir;
    data.cloudDir = Join(packDir, L"cloud");

    out = std::move(data);
    return true;
}
