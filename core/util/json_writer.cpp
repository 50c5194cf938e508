#include "core/util/json_writer.h"

#include "core/util/text_escape.h"

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

void JsonWriter::writeString(std::string_view bytes) {
    m_out << jsonString(bytes);
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
    writeString(name);
    m_out << (m_pretty ? ": " : ":");
    m_afterKey = true;
    return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
    beforeValue();
    writeString(text);
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

} // namespace sondrel
