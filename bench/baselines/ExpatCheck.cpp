// Baseline for the well-formedness check of a configuration file: expat over the whole file
// with no handlers, which is as little as a parser can do and still read every byte.
#include <expat.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench-expat-check FILE\n");
        return 2;
    }
    std::FILE* file = std::fopen(argv[1], "rb");
    if (!file) {
        std::perror(argv[1]);
        return 2;
    }
    std::string text;
    char chunk[1 << 16];
    for (size_t n; (n = std::fread(chunk, 1, sizeof chunk, file)) > 0;)
        text.append(chunk, n);
    bool readError = std::ferror(file);
    std::fclose(file);
    if (readError) {
        std::fprintf(stderr, "%s: read error\n", argv[1]);
        return 2;
    }

    XML_Parser parser = XML_ParserCreate(nullptr);
    // XML_Parse takes an int length; the files the program accepts stay far below 2 GiB.
    bool ok = XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) == XML_STATUS_OK;
    if (!ok)
        std::fprintf(stderr, "%s:%lu: %s\n", argv[1],
                     static_cast<unsigned long>(XML_GetCurrentLineNumber(parser)),
                     XML_ErrorString(XML_GetErrorCode(parser)));
    XML_ParserFree(parser);
    return ok ? 0 : 1;
}
