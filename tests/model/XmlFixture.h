#pragma once
// Parses a snippet and hands out its document element, for reading nodes in tests.

#include "xml/XmlDocument.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

class XmlSnippet {
public:
    explicit XmlSnippet(const std::string& xml) {
        loaded = m_doc.LoadString(xml);
        EXPECT_TRUE(loaded) << m_doc.LastError();
    }
    XmlNode Root() const { return m_doc.DocumentElement(); }
    // A fresh element to write into.
    XmlNode NewElement(const char* name = "node") { return m_out.append_child(name); }
    std::string Serialised(XmlNode node) const {
        std::ostringstream out;
        node.print(out, "", pugi::format_raw);
        return out.str();
    }
    bool loaded = false;

private:
    XmlDocument m_doc;
    pugi::xml_document m_out;
};
