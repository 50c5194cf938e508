#pragma once
// A small streaming JSON writer for the command line's --json output. Every string (keys and
// values) is written with appendJsonString (core/util/text_escape.h): names and paths that are not
// valid UTF-8 keep every byte as \udcXX escapes, so they can be told apart and read back.

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
    /// Writes a string value; any bytes, see the encoding above.
    JsonWriter& value(std::string_view text);
    JsonWriter& value(const char* text) { return value(std::string_view(text)); }
    JsonWriter& value(std::int64_t number);
    JsonWriter& value(int number) { return value(static_cast<std::int64_t>(number)); }
    JsonWriter& value(std::uint64_t number);
    JsonWriter& value(double number);
    JsonWriter& value(bool flag);
    JsonWriter& null();

private:
    void beforeValue();
    void newline();
    void writeString(std::string_view bytes);

    std::ostream& m_out;
    bool m_pretty;
    bool m_afterKey = false;
    std::vector<bool> m_hasItems;
};

} // namespace sondrel
