#include "core/util/text_escape.h"

#include "core/util/path_text.h"

#include <cstdint>

namespace sondrel {

namespace {

constexpr char kHex[] = "0123456789abcdef";

void appendUnicodeEscape(std::string& out, unsigned value) {
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        out += kHex[(value >> shift) & 0xF];
    }
}

void appendOctalEscape(std::string& out, unsigned char byte) {
    out += '\\';
    out += static_cast<char>('0' + (byte >> 6));
    out += static_cast<char>('0' + ((byte >> 3) & 7));
    out += static_cast<char>('0' + (byte & 7));
}

// The code point of the well-formed sequence of `length` bytes at `at`.
std::uint32_t codePointAt(std::string_view text, std::size_t at, std::size_t length) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    switch (length) {
    case 1:
        return byte(0);
    case 2:
        return ((byte(0) & 0x1FU) << 6) | (byte(1) & 0x3FU);
    case 3:
        return ((byte(0) & 0x0FU) << 12) | ((byte(1) & 0x3FU) << 6) | (byte(2) & 0x3FU);
    default:
        return ((byte(0) & 0x07U) << 18) | ((byte(1) & 0x3FU) << 12) | ((byte(2) & 0x3FU) << 6) |
               (byte(3) & 0x3FU);
    }
}

bool isControl(std::uint32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint <= 0x9F);
}

void appendUtf8(std::string& out, std::uint32_t codePoint) {
    if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += static_cast<char>(0xE0 | (codePoint >> 12));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (codePoint >> 18));
        out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

// Four hex digits at `at` of `text`, or nullopt.
std::optional<unsigned> hexQuad(std::string_view text, std::size_t at) {
    if (at + 4 > text.size()) {
        return std::nullopt;
    }
    unsigned value = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
        const char c = text[i];
        unsigned digit = 0;
        if (c >= '0' && c <= '9') {
            digit = static_cast<unsigned>(c - '0');
        } else if (c >= 'a' && c <= 'f') {
            digit = static_cast<unsigned>(c - 'a' + 10);
        } else if (c >= 'A' && c <= 'F') {
            digit = static_cast<unsigned>(c - 'A' + 10);
        } else {
            return std::nullopt;
        }
        value = value * 16 + digit;
    }
    return value;
}

} // namespace

void appendJsonString(std::string& out, std::string_view bytes) {
    out += '"';
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = utf8SequenceLength(bytes, i);
        if (length == 0) {
            appendUnicodeEscape(out, 0xDC00U | static_cast<unsigned char>(bytes[i]));
            ++i;
            continue;
        }
        const std::uint32_t codePoint = codePointAt(bytes, i, length);
        switch (codePoint) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\f':
            out += "\\f";
            break;
        case '\r':
            out += "\\r";
            break;
        default:
            if (isControl(codePoint) || codePoint == 0x2028 || codePoint == 0x2029) {
                appendUnicodeEscape(out, codePoint);
            } else {
                out.append(bytes.substr(i, length));
            }
        }
        i += length;
    }
    out += '"';
}

std::string jsonString(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + 2);
    appendJsonString(out, bytes);
    return out;
}

std::optional<std::string> decodeJsonString(std::string_view json) {
    if (json.size() < 2 || json.front() != '"' || json.back() != '"') {
        return std::nullopt;
    }
    const std::string_view body = json.substr(1, json.size() - 2);
    std::string bytes;
    bytes.reserve(body.size());
    for (std::size_t i = 0; i < body.size();) {
        const auto c = static_cast<unsigned char>(body[i]);
        if (c == '"' || c < 0x20) {
            return std::nullopt; // an unescaped quote ends the string early; raw controls are not
                                 // JSON
        }
        if (c != '\\') {
            const std::size_t length = utf8SequenceLength(body, i);
            if (length == 0) {
                return std::nullopt;
            }
            bytes.append(body.substr(i, length));
            i += length;
            continue;
        }
        if (i + 1 >= body.size()) {
            return std::nullopt;
        }
        const char kind = body[i + 1];
        i += 2;
        switch (kind) {
        case '"':
        case '\\':
        case '/':
            bytes += kind;
            continue;
        case 'b':
            bytes += '\b';
            continue;
        case 'f':
            bytes += '\f';
            continue;
        case 'n':
            bytes += '\n';
            continue;
        case 'r':
            bytes += '\r';
            continue;
        case 't':
            bytes += '\t';
            continue;
        case 'u':
            break;
        default:
            return std::nullopt;
        }
        const std::optional<unsigned> unit = hexQuad(body, i);
        if (!unit) {
            return std::nullopt;
        }
        i += 4;
        if (*unit >= 0xD800 && *unit <= 0xDBFF) {
            // A high surrogate must be followed by a low one; together they are one code point.
            const std::optional<unsigned> low =
                body.substr(i, 2) == "\\u" ? hexQuad(body, i + 2) : std::nullopt;
            if (!low || *low < 0xDC00 || *low > 0xDFFF) {
                return std::nullopt;
            }
            i += 6;
            appendUtf8(bytes, 0x10000 + ((*unit - 0xD800) << 10) + (*low - 0xDC00));
        } else if (*unit >= 0xDC00 && *unit <= 0xDFFF) {
            if (*unit < 0xDC80 || *unit > 0xDCFF) {
                return std::nullopt; // a lone surrogate that stands for no byte
            }
            bytes += static_cast<char>(*unit & 0xFF);
        } else {
            appendUtf8(bytes, *unit);
        }
    }
    return bytes;
}

std::string terminalText(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = utf8SequenceLength(bytes, i);
        if (length == 0) {
            appendOctalEscape(out, static_cast<unsigned char>(bytes[i]));
            ++i;
            continue;
        }
        const std::uint32_t codePoint = codePointAt(bytes, i, length);
        static constexpr char kNamed[] = "abtnvfr"; // \a (7) .. \r (13)
        if (codePoint == '\\') {
            out += "\\\\";
        } else if (codePoint >= '\a' && codePoint <= '\r') {
            out += '\\';
            out += kNamed[codePoint - '\a'];
        } else if (isControl(codePoint)) {
            for (std::size_t j = i; j < i + length; ++j) {
                appendOctalEscape(out, static_cast<unsigned char>(bytes[j]));
            }
        } else {
            out.append(bytes.substr(i, length));
        }
        i += length;
    }
    return out;
}

} // namespace sondrel
