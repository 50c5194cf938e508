#include "core/search/large_file_filter.h"

#include <algorithm>
#include <cwctype>
#include <unordered_set>

namespace sondrel {

namespace {

// Decodes one well-formed UTF-8 sequence at `text[at]`; 0 when there is none (then the byte
// stands for itself).
std::size_t decodeUtf8(std::string_view text, std::size_t at, char32_t& code) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    std::size_t length = 0;
    char32_t value = 0;
    char32_t least = 0;
    if (lead < 0x80) {
        code = lead;
        return 1;
    }
    if ((lead & 0xE0) == 0xC0) {
        length = 2;
        value = lead & 0x1F;
        least = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        value = lead & 0x0F;
        least = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        value = lead & 0x07;
        least = 0x10000;
    } else {
        return 0;
    }
    if (at + length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) {
            return 0;
        }
        value = (value << 6) | (byte(at + i) & 0x3F);
    }
    if (value < least || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
        return 0;
    }
    code = value;
    return length;
}

void appendUtf8(std::string& out, char32_t code) {
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (code >> 6)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (code >> 12)));
        out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (code >> 18)));
        out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
}

// White space by the Unicode White_Space property, independent of the locale.
bool isSpace(char32_t code) {
    return code == ' ' || (code >= '\t' && code <= '\r') || code == 0x85 || code == 0xA0 ||
           code == 0x1680 || (code >= 0x2000 && code <= 0x200A) || code == 0x2028 ||
           code == 0x2029 || code == 0x202F || code == 0x205F || code == 0x3000;
}

} // namespace

std::string_view trimSearchText(std::string_view text) {
    // Leading: decode forward.
    std::size_t begin = 0;
    while (begin < text.size()) {
        char32_t code = 0;
        const std::size_t length = decodeUtf8(text, begin, code);
        if (length == 0 || !isSpace(code)) {
            break;
        }
        begin += length;
    }
    // Trailing: step back over continuation bytes to each sequence's start.
    std::size_t end = text.size();
    while (end > begin) {
        std::size_t start = end - 1;
        while (start > begin && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80 &&
               end - start < 4) {
            --start;
        }
        char32_t code = 0;
        if (decodeUtf8(text, start, code) != end - start || !isSpace(code)) {
            break;
        }
        end = start;
    }
    return text.substr(begin, end - begin);
}

std::string foldForSearch(std::string_view text) {
    std::string folded;
    folded.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        char32_t code = 0;
        const std::size_t length = decodeUtf8(text, at, code);
        if (length == 0) {
            folded.push_back(text[at]);
            ++at;
            continue;
        }
        if (code < 0x80) {
            folded.push_back(static_cast<char>(code >= 'A' && code <= 'Z' ? code + 32 : code));
        } else {
            appendUtf8(folded, static_cast<char32_t>(std::towlower(static_cast<wint_t>(code))));
        }
        at += length;
    }
    return folded;
}

LargeFileList::LargeFileList(std::vector<LargeFile> files) : m_files(std::move(files)) {
    m_foldedNames.reserve(m_files.size());
    for (const LargeFile& file : m_files) {
        m_foldedNames.push_back(foldForSearch(file.name));
    }
}

FilteredFiles LargeFileList::filter(const SearchFilter& filter) const {
    const std::string query = foldForSearch(trimSearchText(filter.query));
    FilteredFiles result;
    result.rows.reserve(std::min<std::size_t>(m_files.size(), 500));
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        const LargeFile& file = m_files[i];
        if ((!query.empty() && m_foldedNames[i].find(query) == std::string::npos) ||
            (filter.minimumSize > 0 && file.size < filter.minimumSize) ||
            (filter.category && file.category != *filter.category)) {
            continue;
        }
        result.rows.push_back(i);
        result.totalBytes += file.size;
    }
    if (filter.order == SearchOrder::name) {
        std::stable_sort(
            result.rows.begin(), result.rows.end(),
            [this](std::size_t a, std::size_t b) { return m_foldedNames[a] < m_foldedNames[b]; });
    } else if (filter.order == SearchOrder::date) {
        std::stable_sort(result.rows.begin(), result.rows.end(),
                         [this](std::size_t a, std::size_t b) {
                             return m_files[a].modified > m_files[b].modified;
                         });
    }
    return result;
}

std::size_t LargeFileList::remove(const std::vector<std::string>& paths) {
    const std::unordered_set<std::string> gone(paths.begin(), paths.end());
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (gone.count(m_files[i].path) != 0) {
            continue;
        }
        if (kept != i) {
            m_files[kept] = std::move(m_files[i]);
            m_foldedNames[kept] = std::move(m_foldedNames[i]);
        }
        ++kept;
    }
    const std::size_t removed = m_files.size() - kept;
    m_files.resize(kept);
    m_foldedNames.resize(kept);
    return removed;
}

} // namespace sondrel
