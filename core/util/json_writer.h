#pragma once
// A small streaming JSON writer for the command line's --json output and exports.
// Strings are written as valid UTF-8: bytes of invalid sequences become U+FFFD (paths that need
// to round-trip exactly should be written with rawString, which escapes them as \u00XX of a
// Latin-1 reading, the convention of ncdu's export format).

#include <cstdint>
#include <ostream>
#include <string_view>
#include <vector>

namespace sondrel {

/// Writes one JSON document to a stream. Not thread-safe. Misuse (a value where a key is
/// expected) is a programming error and is not checked beyond debug assertions.
class JsonWriter {
public:
    /// Writes to `out`; `pretty` adds newlines and two-space indentation.
    explicit JsonWriter(std::ostream& out, bool pretty = true);

    JsonWriter& beginObject();
    JsonWriter& endObject();
    JsonWriter& beginArray();
    JsonWriter& endArray();
    /// Writes an object key; the next call writes its value.
    JsonWriter& key(std::string_view name);
    JsonWriter& value(std::string_view text);
    JsonWriter& value(const char* text) { return value(std::string_view(text)); }
    JsonWriter& value(std::int64_t number);
    JsonWriter& value(int number) { return value(static_cast<std::int64_t>(number)); }
    JsonWriter& value(std::uint64_t number);
    JsonWriter& value(double number);
    JsonWriter& value(bool flag);
    JsonWriter& null();
    /// Writes bytes as a JSON string keeping every byte: valid UTF-8 passes through, other bytes
    /// >= 0x80 are written as \u0080..\u00FF.
    JsonWriter& rawString(std::string_view bytes);

    /// Escapes `text` as the inside of a JSON string (no quotes), sanitising invalid UTF-8.
    static void escapeInto(std::ostream& out, std::string_view text, bool keepBytes);

private:
    void beforeValue();
    void newline();

    std::ostream& m_out;
    bool m_pretty;
    bool m_afterKey = false;
    std::vector<bool> m_hasItems;
};

} // namespace sondrel
