#include "core/util/json_writer.h"

#include "core/util/path_text.h"

#include <cmath>
#include <cstdio>

namespace sondrel {

JsonWriter::JsonWriter(std::ostream& out, bool pretty) : m_out(out), m_pretty(pretty) {}

void JsonWriter::newline() {
    if (!m_pretty) {
        return;
    }
    m_out << '\n';
    for (std::size_t i = 0; i < m_hasItems.size(); ++i) {
        m_out << "  ";
    }
}

void JsonWriter::beforeValue() {
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (!m_hasItems.empty()) {
        if (m_hasItems.back()) {
            m_out << ',';
        }
        m_hasItems.back() = true;
        newline();
    }
}

JsonWriter& JsonWriter::beginObject() {
    beforeValue();
    m_out << '{';
    m_hasItems.push_back(false);
    return *this;
}

JsonWriter& JsonWriter::endObject() {
    const bool hadItems = m_hasItems.back();
    m_hasItems.pop_back();
    if (hadItems) {
        newline();
    }
    m_out << '}';
    if (m_hasItems.empty() && m_pretty) {
        m_out << '\n';
    }
    return *this;
}

JsonWriter& JsonWriter::beginArray() {
    beforeValue();
    m_out << '[';
    m_hasItems.push_back(false);
    return *this;
}

JsonWriter& JsonWriter::endArray() {
    const bool hadItems = m_hasItems.back();
    m_hasItems.pop_back();
    if (hadItems) {
        newline();
    }
    m_out << ']';
    if (m_hasItems.empty() && m_pretty) {
        m_out << '\n';
    }
    return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
    beforeValue();
    m_out << '"';
    escapeInto(m_out, name, false);
    m_out << (m_pretty ? "\": " : "\":");
    m_afterKey = true;
    return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
    beforeValue();
    m_out << '"';
    escapeInto(m_out, text, false);
    m_out << '"';
    return *this;
}

JsonWriter& JsonWriter::rawString(std::string_view bytes) {
    beforeValue();
    m_out << '"';
    escapeInto(m_out, bytes, true);
    m_out << '"';
    return *this;
}

JsonWriter& JsonWriter::value(std::int64_t number) {
    beforeValue();
    m_out << number;
    return *this;
}

JsonWriter& JsonWriter::value(std::uint64_t number) {
    beforeValue();
    m_out << number;
    return *this;
}

JsonWriter& JsonWriter::value(double number) {
    beforeValue();
    if (!std::isfinite(number)) {
        m_out << "null";
        return *this;
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", number);
    m_out << text;
    return *this;
}

JsonWriter& JsonWriter::value(bool flag) {
    beforeValue();
    m_out << (flag ? "true" : "false");
    return *this;
}

JsonWriter& JsonWriter::null() {
    beforeValue();
    m_out << "null";
    return *this;
}

void JsonWriter::escapeInto(std::ostream& out, std::string_view text, bool keepBytes) {
    const bool valid = isValidUtf8(text);
    const std::string sanitised = (valid || keepBytes) ? std::string() : toDisplayText(text);
    const std::string_view source = (valid || keepBytes) ? text : std::string_view(sanitised);
    for (std::size_t i = 0; i < source.size(); ++i) {
        const auto c = static_cast<unsigned char>(source[i]);
        switch (c) {
        case '"':
            out << "\\\"";
            break;
        case '\\':
            out << "\\\\";
            break;
        case '\n':
            out << "\\n";
            break;
        case '\r':
            out << "\\r";
            break;
        case '\t':
            out << "\\t";
            break;
        case '\b':
            out << "\\b";
            break;
        case '\f':
            out << "\\f";
            break;
        default:
            if (c < 0x20 || c == 0x7F || (keepBytes && !valid && c >= 0x80)) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                out << escaped;
            } else {
                out << static_cast<char>(c);
            }
        }
    }
}

} // namespace sondrel
