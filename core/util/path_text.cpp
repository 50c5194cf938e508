#include "core/util/path_text.h"

namespace sondrel {

std::string asciiLower(std::string_view text) {
    std::string lowered(text);
    for (char& c : lowered) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return lowered;
}

std::string_view lastPathComponent(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') {
        path.remove_suffix(1);
    }
    if (path == "/") {
        return {};
    }
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view pathExtension(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return {};
    }
    return name.substr(dot + 1);
}

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (path.empty() || path.back() != '/') {
        path += '/';
    }
    path += name;
    return path;
}

std::size_t utf8SequenceLength(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) {
        return 1;
    }
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0) {
            low = 0xA0;
        } else if (lead == 0xED) {
            high = 0x9F;
        }
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0) {
            low = 0x90;
        } else if (lead == 0xF4) {
            high = 0x8F;
        }
    } else {
        return 0;
    }
    if (at + length > text.size()) {
        return 0;
    }
    if (byte(at + 1) < low || byte(at + 1) > high) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if (byte(at + i) < 0x80 || byte(at + i) > 0xBF) {
            return 0;
        }
    }
    return length;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8SequenceLength(text, i);
        if (length == 0) {
            return false;
        }
        i += length;
    }
    return true;
}

std::string toDisplayText(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = utf8SequenceLength(bytes, i);
        if (length == 0) {
            text += "\xEF\xBF\xBD";
            ++i;
        } else {
            text.append(bytes.substr(i, length));
            i += length;
        }
    }
    return text;
}

} // namespace sondrel
