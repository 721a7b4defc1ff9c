// Baseline for one edit of a configuration file: pugixml loads the whole file, one attribute
// of one bill item changes, and the whole file is written back, indented as the store indents.
// The item is found as the store finds it: specialty, large and small category by name, then
// the configuration and the bill item by id within their lists.
#include <pugixml.hpp>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

pugi::xml_node ChildNamed(pugi::xml_node parent, const std::string& name) {
    for (pugi::xml_node child : parent.children())
        if (name == child.attribute("name").value())
            return child;
    return {};
}

pugi::xml_node MemberWithId(pugi::xml_node list, int id) {
    for (pugi::xml_node member : list.children())
        if (member.attribute("id").as_int() == id)
            return member;
    return {};
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 8) {
        std::fprintf(
            stderr,
            "usage: bench-pugixml-edit FILE [SPEC LARGE SMALL CONFIG-ID QD-ID FORMULA]\n"
            "Sets strFormula of the bill item (default: 给排水 管道 给水管 10 2 L*1.05).\n");
        return 2;
    }
    const char* path = argv[1];
    std::string spec = argc == 8 ? argv[2] : "给排水";
    std::string large = argc == 8 ? argv[3] : "管道";
    std::string small = argc == 8 ? argv[4] : "给水管";
    int configId = argc == 8 ? std::atoi(argv[5]) : 10;
    int qdId = argc == 8 ? std::atoi(argv[6]) : 2;
    const char* formula = argc == 8 ? argv[7] : "L*1.05";

    pugi::xml_document doc;
    pugi::xml_parse_result result = doc.load_file(path);
    if (!result) {
        std::fprintf(stderr, "%s: %s at offset %lld\n", path, result.description(),
                     static_cast<long long>(result.offset));
        return 1;
    }
    pugi::xml_node smallNode =
        ChildNamed(ChildNamed(ChildNamed(doc.document_element(), spec), large), small);
    pugi::xml_node config = MemberWithId(smallNode.child("Config"), configId);
    pugi::xml_node qd = MemberWithId(config.child("Qd"), qdId);
    if (!qd) {
        // A timing of an edit that found nothing to edit would mean nothing.
        std::fprintf(stderr, "%s: no bill item %d in configuration %d of %s\\%s\\%s\n", path, qdId,
                     configId, spec.c_str(), large.c_str(), small.c_str());
        return 1;
    }
    qd.attribute("strFormula").set_value(formula);
    if (!doc.save_file(path, "  ", pugi::format_default, pugi::encoding_utf8)) {
        std::fprintf(stderr, "%s: cannot write\n", path);
        return 1;
    }
    return 0;
}
