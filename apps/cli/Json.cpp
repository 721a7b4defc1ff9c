#include "Json.h"

#include <charconv>
#include <cmath>
#include <cstdio>

Json& Json::Set(const std::string& key, Json value) {
    std::get<Object>(m_value).emplace_back(key, std::move(value));
    return *this;
}

Json& Json::Push(Json value) {
    std::get<Array>(m_value).push_back(std::move(value));
    return *this;
}

std::string JsonQuote(const std::string& text) {
    std::string out = "\"";
    for (char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", static_cast<unsigned char>(c));
                out += buf;
            } else {
                out += c;
            }
        }
    }
    return out + "\"";
}

std::string Json::Dump(int indent) const {
    std::string pad(static_cast<size_t>(indent + 2), ' ');
    std::string close(static_cast<size_t>(indent), ' ');
    if (std::holds_alternative<std::nullptr_t>(m_value))
        return "null";
    if (auto* b = std::get_if<bool>(&m_value))
        return *b ? "true" : "false";
    if (auto* n = std::get_if<long long>(&m_value))
        return std::to_string(*n);
    if (auto* d = std::get_if<double>(&m_value)) {
        if (!std::isfinite(*d))
            return "null";
        char text[32];
        const auto end = std::to_chars(text, text + sizeof text, *d).ptr;
        return std::string(text, end);
    }
    if (auto* s = std::get_if<std::string>(&m_value))
        return JsonQuote(*s);
    if (auto* o = std::get_if<Object>(&m_value)) {
        if (o->empty())
            return "{}";
        std::string out = "{\n";
        for (size_t i = 0; i < o->size(); ++i) {
            out += pad + JsonQuote((*o)[i].first) + ": " + (*o)[i].second.Dump(indent + 2);
            out += i + 1 < o->size() ? ",\n" : "\n";
        }
        return out + close + "}";
    }
    const auto& a = std::get<Array>(m_value);
    if (a.empty())
        return "[]";
    std::string out = "[\n";
    for (size_t i = 0; i < a.size(); ++i) {
        out += pad + a[i].Dump(indent + 2);
        out += i + 1 < a.size() ? ",\n" : "\n";
    }
    return out + close + "]";
}
