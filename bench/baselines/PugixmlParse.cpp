// Baseline for opening a configuration file: pugixml's DOM over the whole file with its default
// options, and nothing else.
#include <pugixml.hpp>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench-pugixml-parse FILE\n");
        return 2;
    }
    pugi::xml_document doc;
    pugi::xml_parse_result result = doc.load_file(argv[1]);
    if (!result) {
        std::fprintf(stderr, "%s: %s at offset %lld\n", argv[1], result.description(),
                     static_cast<long long>(result.offset));
        return 1;
    }
    return 0;
}
