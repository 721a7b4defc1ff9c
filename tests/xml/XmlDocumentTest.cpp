#include "xml/XmlDocument.h"
#include "platform/TextEncoding.h"
#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

std::string Swapped(std::string bytes) {
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

// Elements <a> nested `levels` deep.
std::string Nested(unsigned levels) {
    std::string open, close;
    for (unsigned i = 0; i < levels; ++i) {
        open += "<a>";
        close += "</a>";
    }
    return open + close;
}

// Nine levels of ten references each: a few hundred bytes that expand to a gigabyte.
std::string LaughingEntities() {
    std::string text = "<!DOCTYPE r [<!ENTITY e0 \"0123456789\">";
    for (int level = 1; level < 10; ++level) {
        text += "<!ENTITY e" + std::to_string(level) + " \"";
        for (int i = 0; i < 10; ++i)
            text += "&e" + std::to_string(level - 1) + ";";
        text += "\">";
    }
    return text + "]><r>&e9;</r>";
}

} // namespace

TEST(XmlDocumentTest, KeepsWhatADomKeeps) {
    XmlDocument doc;
    ASSERT_TRUE(doc.LoadString("<?xml version=\"1.0\"?>\n<root>\n  <!-- note -->\n"
                               "  <?app run?>\n  <item/>\n  <![CDATA[a<b]]> &lt;&#x7ED9;\n</root>"))
        << doc.LastError();
    EXPECT_EQ(doc.Doc().first_child().type(), pugi::node_declaration);
    XmlNode root = doc.DocumentElement();
    ASSERT_STREQ(root.name(), "root");
    std::vector<pugi::xml_node_type> types;
    for (XmlNode child : root.children())
        types.push_back(child.type());
    EXPECT_EQ(types, (std::vector{pugi::node_comment, pugi::node_pi, pugi::node_element,
                                  pugi::node_cdata, pugi::node_pcdata}));
    EXPECT_STREQ(root.last_child().previous_sibling().value(), "a<b");
    EXPECT_STREQ(root.last_child().value(), " <给\n");

    const std::string text = doc.ToUtf8String();
    EXPECT_TRUE(text.starts_with("<?xml version=\"1.0\"?>\n<root>\n  <!-- note -->\n")) << text;

    XmlDocument bare;
    ASSERT_TRUE(bare.LoadString("<root><a/></root>"));
    EXPECT_EQ(bare.ToUtf8String(), "<root>\n  <a />\n</root>\n");

    // Entities of the internal subset are expanded in text and attributes, the declaration is
    // kept as written, and namespaces stay declared where they were.
    XmlDocument entities;
    ASSERT_TRUE(entities.LoadString("<!DOCTYPE r [\n<!ENTITY co \"公司\">\n]>\n"
                                    "<r xmlns:p=\"urn:p\" n=\"&co;A\"><p:a>&co;&amp;</p:a></r>"))
        << entities.LastError();
    EXPECT_STREQ(entities.DocumentElement().attribute("n").value(), "公司A");
    EXPECT_STREQ(entities.DocumentElement().child("p:a").text().get(), "公司&");
    EXPECT_EQ(entities.ToUtf8String(),
              "<!DOCTYPE r [\n<!ENTITY co \"公司\">\n]>\n<r xmlns:p=\"urn:p\" n=\"公司A\">\n"
              "  <p:a>公司&amp;</p:a>\n</r>\n");
}

TEST(XmlDocumentTest, RefusesMalformedInputAndEmptiesTheDocument) {
    TempDir dir;
    const std::pair<const char*, std::string> cases[] = {
        {"not XML", "hello world"},
        {"empty", ""},
        {"binary", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16)},
        {"binary head", "\x01\x02\x7F<?xml version=\"1.0\"?><root/>"},
        {"high binary head", "\xA3\xC7\x05<?xml version=\"1.0\"?><root/>"},
        {"truncated", "<?xml version=\"1.0\"?><root><item a=\"1\"/>"},
        {"truncated attribute", "<root><item a=\"1"},
        {"two roots", "<root/><other/>"},
        {"text after root", "<root/>tail"},
        {"declaration not first", " <?xml version=\"1.0\"?><root/>"},
        {"invalid UTF-8", "<root a=\"\xC3\x28\"/>"},
        {"overlong UTF-8", "<root a=\"\xC0\xAF\"/>"},
        {"control character", "<root>\x01</root>"},
        {"odd UTF-16", "\xFF\xFE<\0r\0/\0>"},
        {"reference to U+FFFF", "<root a=\"&#xFFFF;\"/>"},
        {"reference to U+FFFE in text", "<root>&#65534;</root>"},
        {"reference to NUL", "<root>&#0;</root>"},
        {"reference to a surrogate", "<root>&#xD800;</root>"},
        {"reference beyond Unicode", "<root>&#x110000000041;</root>"},
        {"reference without digits", "<root>&#x;</root>"},
        {"encoding behind another name", "<?xml version=\"1.0\" note=\"encoding\" "
                                         "encoding=\"GB2312\"?><root/>"},
        {"declaration out of order", "<?xml encoding=\"UTF-8\" version=\"1.0\"?><root/>"},
        {"encoding not read here", "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><root/>"},
        {"nested too deep", Nested(kMaxXmlDepth + 1)},
        {"double hyphen in a comment", "<root><!--x--y--></root>"},
        {"comment ending in a hyphen", "<root/><!--x--->"},
        {"attribute given twice", "<root a=\"1\" a=\"2\"/>"},
        {"bare ampersand", "<root>A & B</root>"},
        {"< in an attribute value", "<root a=\"x<y\"/>"},
        {"undeclared entity", "<root>&co;</root>"},
        {"undeclared namespace prefix", "<root><p:a/></root>"},
        {"the same attribute under two prefixes",
         "<root xmlns:p=\"urn:x\" xmlns:q=\"urn:x\"><a p:b=\"1\" q:b=\"2\"/></root>"},
        {"entity declared in an external subset only",
         "<!DOCTYPE root SYSTEM \"root.dtd\"><root>&co;</root>"},
        {"entity expanding without end", LaughingEntities()},
    };
    XmlDocument doc;
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(doc.LoadString("<old a=\"1\"/>"));
        EXPECT_FALSE(doc.Load(dir.Write(L"bad.xml", bytes)));
        EXPECT_FALSE(doc.Doc().first_child());
        EXPECT_FALSE(doc.LastError().empty());
    }
    EXPECT_FALSE(doc.Load(dir.File(L"missing.xml")));
    EXPECT_NE(doc.LastError().find("missing.xml"), std::string::npos);
    EXPECT_EQ(doc.LoadFailure(), XmlLoadFailure::Missing);
    // A folder or a FIFO is refused at once (a FIFO would otherwise wait for a writer).
    ASSERT_EQ(::mkfifo(ToUtf8(dir.File(L"fifo.xml")).c_str(), 0600), 0);
    for (const wchar_t* name : {L"fifo.xml", L"."}) {
        EXPECT_FALSE(doc.Load(dir.File(name)));
        EXPECT_EQ(doc.LoadFailure(), XmlLoadFailure::Unreadable);
        EXPECT_NE(doc.LastError().find("not a regular file"), std::string::npos);
    }
    // What a conforming parser keeps literal stays accepted.
    ASSERT_TRUE(doc.LoadString("<root><!-- &#xFFFF; --><?p &#0;?><![CDATA[&#xFFFE;]]></root>"))
        << doc.LastError();
    EXPECT_TRUE(doc.LoadString(Nested(kMaxXmlDepth))) << doc.LastError();

    // The reason names the fault and where it is.
    EXPECT_FALSE(doc.LoadString("<root/>\n<other/>"));
    EXPECT_EQ(doc.LastError(), "junk after document element at line 2, column 1 (offset 8)");
    EXPECT_FALSE(doc.LoadString("<root a=\"1\" a=\"2\"/>"));
    EXPECT_EQ(doc.LastError().rfind("duplicate attribute at line 1", 0), 0u) << doc.LastError();
    EXPECT_FALSE(doc.LoadString(Nested(kMaxXmlDepth + 1)));
    EXPECT_EQ(doc.LastError().rfind("elements are nested deeper than 256 levels at line 1", 0), 0u)
        << doc.LastError();
}

TEST(XmlDocumentTest, LoadsTenMegabyteAttribute) {
    TempDir dir;
    const std::string value = std::string(10 * 1024 * 1024, 'x') + "给";
    XmlDocument doc;
    ASSERT_TRUE(doc.Load(dir.Write(L"big.xml", "<root v=\"" + value + "\"/>"))) << doc.LastError();
    EXPECT_EQ(doc.DocumentElement().attribute("v").value(), value);
}

TEST(XmlDocumentTest, LegacyChineseFileRoundTrips) {
    TempDir dir;
    const CString path = dir.Write(L"gb.xml", "<?xml version=\"1.0\" encoding=\"gb2312\"?>\r\n"
                                              "<root name=\"\xB8\xF8\xC5\xC5\xCB\xAE\"/>");
    XmlDocument doc;
    ASSERT_TRUE(doc.Load(path)) << doc.LastError();
    EXPECT_EQ(doc.Encoding(), TextEncoding::Legacy);
    EXPECT_EQ(doc.LegacyName(), "GB2312");
    EXPECT_STREQ(doc.DocumentElement().attribute("name").value(), "给排水");

    // What GB2312 holds is written in it, byte for byte as it came.
    doc.DocumentElement().attribute("name").set_value("给水");
    ASSERT_TRUE(doc.Save(path));
    EXPECT_EQ(dir.Read(path), "<?xml version=\"1.0\" encoding=\"gb2312\"?>\n"
                              "<root name=\"\xB8\xF8\xCB\xAE\" />\n");

    // A character GB2312 lacks, in a value and in a name, takes the file to GB18030: no
    // character reference, which a name can't hold.
    doc.DocumentElement().attribute("name").set_value("给水€😀");
    doc.DocumentElement().append_attribute("\xE5\x83\xB6o") = "僶"; // U+50F6
    ASSERT_TRUE(doc.Save(path));
    const std::string bytes = dir.Read(path);
    EXPECT_TRUE(bytes.starts_with("<?xml version=\"1.0\" encoding=\"GB18030\"?>\n<root")) << bytes;
    EXPECT_EQ(bytes.find("&#"), std::string::npos);
    EXPECT_EQ(bytes.find("\xE7\xBB\x99"), std::string::npos); // no UTF-8 left

    XmlDocument again;
    ASSERT_TRUE(again.Load(path)) << again.LastError();
    EXPECT_EQ(again.LegacyName(), "GB18030");
    EXPECT_STREQ(again.DocumentElement().attribute("name").value(), "给水€😀");
    EXPECT_STREQ(again.DocumentElement().attribute("\xE5\x83\xB6o").value(), "僶");

    // Text held in memory is written in the encoding its declaration names.
    XmlDocument fromText;
    ASSERT_TRUE(fromText.LoadString("<?xml version=\"1.0\" encoding=\"GBK\"?><root n=\"给\"/>"));
    ASSERT_TRUE(fromText.Save(path));
    EXPECT_NE(dir.Read(path).find("n=\"\xB8\xF8\""), std::string::npos);
}

TEST(XmlDocumentTest, UnicodeFilesKeepTheirByteOrderMarks) {
    TempDir dir;
    const std::string le = "\xFF\xFE" + Utf8ToUtf16Le("<?xml version=\"1.0\" encoding=\"UTF-16\"?>"
                                                      "<root name=\"给\"/>");
    struct Case {
        std::string input;
        TextEncoding encoding;
        std::string written; // how the changed attribute must appear in the file
    };
    const Case cases[] = {
        {le, TextEncoding::Utf16LeBom,
         Utf8ToUtf16Le("encoding=\"UTF-16\"?>\n<root name=\"排水😀\"")},
        {Swapped(le), TextEncoding::Utf16BeBom, Swapped(Utf8ToUtf16Le("name=\"排水😀\""))},
        {"\xEF\xBB\xBF<root name=\"给\"/>", TextEncoding::Utf8Bom, "name=\"排水😀\""},
    };
    for (const auto& [input, encoding, written] : cases) {
        SCOPED_TRACE(static_cast<int>(encoding));
        const CString path = dir.Write(L"u.xml", input);
        XmlDocument doc;
        ASSERT_TRUE(doc.Load(path)) << doc.LastError();
        EXPECT_EQ(doc.Encoding(), encoding);
        EXPECT_STREQ(doc.DocumentElement().attribute("name").value(), "给");
        doc.DocumentElement().attribute("name").set_value("排水😀");
        ASSERT_TRUE(doc.Save(path));

        const std::string bytes = dir.Read(path);
        EXPECT_EQ(bytes.substr(0, 2), input.substr(0, 2));
        EXPECT_NE(bytes.find(written), std::string::npos);

        XmlDocument again;
        ASSERT_TRUE(again.Load(path)) << again.LastError();
        EXPECT_EQ(again.Encoding(), encoding);
        EXPECT_STREQ(again.DocumentElement().attribute("name").value(), "排水😀");
    }
}

TEST(XmlDocumentTest, SaveReplacesTheFileWhole) {
    TempDir dir;
    const CString path = dir.Write(L"out.xml", std::string(4096, 'o'));
    XmlDocument doc;
    doc.Doc().append_child("root").append_attribute("a").set_value("1");
    ASSERT_TRUE(doc.Save(path));
    EXPECT_EQ(dir.Read(path), "<root a=\"1\" />\n"); // no declaration invented
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(ToUtf8(dir.Path())), {}), 1);
}
