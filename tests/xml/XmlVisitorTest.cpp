#include "xml/XmlVisitor.h"
#include "platform/ComError.h"
#include "support/MessageRecorder.h"

#include <functional>
#include <gtest/gtest.h>
#include <sstream>

namespace {

HRESULT ErrorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const ComError& error) {
        return error.Error();
    }
    return S_OK;
}

std::string Raw(XmlNode node) {
    std::ostringstream out;
    node.print(out, "", pugi::format_raw);
    return out.str();
}

XmlDocPtr Parsed(const std::string& text) {
    XmlDocPtr doc = XmlVisitor::CreateXmlDocPtr();
    EXPECT_TRUE(doc->LoadString(text)) << doc->LastError();
    return doc;
}

} // namespace

TEST(XmlVisitorTest, AttributesAreReplacedInPlace) {
    XmlDocPtr doc = Parsed("<root><item a=\"1\" b=\"2\" c=\"3\"/><!--c--></root>");
    XmlElement item = doc->DocumentElement().first_child();
    XmlVisitor::addatt(item, L"b", L"给排水");
    XmlVisitor::addatt(item, L"d", L"<&\">");
    EXPECT_EQ(Raw(item), "<item a=\"1\" b=\"给排水\" c=\"3\" d=\"&lt;&amp;&quot;>\"/>");
    EXPECT_EQ(XmlVisitor::getNodeAttribute(item, L"b"), L"给排水");
    EXPECT_EQ(XmlVisitor::getNodeAttribute(item, L"d"), L"<&\">");

    EXPECT_EQ(XmlVisitor::getNodeAttribute(item, L"missing"), L"");
    EXPECT_EQ(XmlVisitor::getNodeAttribute(item, L"A"), L"");
    EXPECT_EQ(XmlVisitor::getNodeAttribute(item.next_sibling(), L"a"), L"");
    EXPECT_EQ(XmlVisitor::getNodeAttribute(XmlElement(), L"a"), L"");
}

TEST(XmlVisitorTest, WritesThroughNonElementsRaisePointerErrors) {
    XmlDocPtr doc = Parsed("<root><!--c--></root>");
    XmlNode comment = doc->DocumentElement().first_child();
    EXPECT_EQ(ErrorOf([&] { XmlVisitor::addatt(comment, L"a", L"1"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { XmlVisitor::addatt(XmlElement(), L"a", L"1"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { XmlVisitor::addChild(comment, L"a"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { XmlVisitor::addChild(XmlElement(), L"a"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { XmlVisitor::GetRootNode_C(nullptr, L"a"); }), E_POINTER);
    EXPECT_EQ(Raw(doc->DocumentElement()), "<root><!--c--></root>");
}

TEST(XmlVisitorTest, RootNodeIsCreatedOnceThenFound) {
    MessageRecorder messages;
    XmlDocPtr doc = XmlVisitor::CreateXmlDocPtr();
    ASSERT_TRUE(doc);
    EXPECT_TRUE(messages.Messages().empty());

    XmlNode root = XmlVisitor::GetRootNode_C(doc, L"配置");
    XmlVisitor::addatt(root, L"v", L"1");
    EXPECT_EQ(XmlVisitor::GetRootNode_C(doc, L"配置"), root);
    EXPECT_EQ(doc->ToUtf8String(), "<配置 v=\"1\" />\n");

    // A processing instruction of the same name is no element.
    XmlDocPtr loaded = Parsed("<?Config x?><Config id=\"7\"/>");
    EXPECT_EQ(XmlVisitor::getNodeAttribute(XmlVisitor::GetRootNode_C(loaded, L"Config"), L"id"),
              L"7");
    EXPECT_EQ(Raw(loaded->Doc()), "<?Config x?><Config id=\"7\"/>");

    // Another document element can't be joined by a second one.
    XmlDocPtr foreign = Parsed("<other/>");
    EXPECT_EQ(ErrorOf([&] { XmlVisitor::GetRootNode_C(foreign, L"Config"); }), E_FAIL);
    EXPECT_EQ(Raw(foreign->Doc()), "<other/>");
}

TEST(XmlVisitorTest, SelectsChildElementsByExactName) {
    XmlDocPtr doc = Parsed("<root><!--De--><de n=\"0\"/><De n=\"1\"/><De n=\"2\"/></root>");
    XmlNode root = doc->DocumentElement();
    EXPECT_EQ(XmlVisitor::getNodeAttribute(XmlVisitor::selectSingleNode(root, L"De"), L"n"), L"1");
    EXPECT_EQ(XmlVisitor::getNodeAttribute(XmlVisitor::selectSingleNode(root, L"de"), L"n"), L"0");
    EXPECT_FALSE(XmlVisitor::selectSingleNode(root, L"DE"));
    EXPECT_FALSE(XmlVisitor::selectSingleNode(XmlNode(), L"De"));

    EXPECT_EQ(XmlVisitor::nodeName(XmlVisitor::firstChild(root)), L"#comment");
    // Children are appended after whatever the element holds, each a new one.
    XmlElement a = XmlVisitor::addChild(root, L"给排水");
    XmlElement b = XmlVisitor::addChild(root, L"给排水");
    XmlVisitor::addatt(b, L"n", L"3");
    EXPECT_NE(a, b);
    EXPECT_EQ(XmlVisitor::nodeName(a), L"给排水");
    EXPECT_EQ(Raw(root.last_child().previous_sibling()), "<给排水/>");
    EXPECT_EQ(Raw(root.last_child()), "<给排水 n=\"3\"/>");
}
