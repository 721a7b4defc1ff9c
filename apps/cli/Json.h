#pragma once
// A small JSON writer for the tool's --json output: objects and arrays are built as values
// and printed at the end, keys kept in insertion order.

#include "platform/CString.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

class Json {
public:
    using Object = std::vector<std::pair<std::string, Json>>;
    using Array = std::vector<Json>;

    Json() : m_value(nullptr) {}
    Json(std::nullptr_t) : m_value(nullptr) {}
    Json(bool value) : m_value(value) {}
    Json(int value) : m_value(static_cast<long long>(value)) {}
    Json(long long value) : m_value(value) {}
    // Written as the shortest text that reads back as the same double; not finite is null.
    Json(double value) : m_value(value) {}
    Json(const char* value) : m_value(std::string(value)) {}
    Json(std::string value) : m_value(std::move(value)) {}
    Json(const CString& value) : m_value(ToUtf8(value)) {}
    Json(const wchar_t* value) : m_value(ToUtf8(CString(value))) {}
    Json(Object value) : m_value(std::move(value)) {}
    Json(Array value) : m_value(std::move(value)) {}

    static Json MakeObject() { return Json(Object{}); }
    static Json MakeArray() { return Json(Array{}); }

    // Appends a member (objects) or an element (arrays).
    Json& Set(const std::string& key, Json value);
    Json& Push(Json value);

    // Pretty-printed with two-space indentation.
    std::string Dump(int indent = 0) const;

private:
    std::variant<std::nullptr_t, bool, long long, double, std::string, Object, Array> m_value;
};

std::string JsonQuote(const std::string& text);
