#include "core/apps/dpkg_database.h"

#include "core/fs/folder_listing.h"
#include "core/util/path_text.h"

#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace sondrel {

namespace {

// The whole content of a regular file, or nothing.
std::optional<std::string> readWholeFile(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0) {
        return std::nullopt;
    }
    std::string data;
    char buffer[65536];
    for (;;) {
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0) {
            close(fd);
            return std::nullopt;
        }
        if (n == 0) {
            break;
        }
        data.append(buffer, static_cast<std::size_t>(n));
    }
    close(fd);
    return data;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

// Reads one stanza's fields; nothing when a line is malformed.
std::optional<DpkgPackage> parseStanza(std::string_view stanza) {
    DpkgPackage package;
    bool installed = false;
    std::size_t start = 0;
    while (start < stanza.size()) {
        auto end = stanza.find('\n', start);
        if (end == std::string_view::npos) {
            end = stanza.size();
        }
        const std::string_view line = stanza.substr(start, end - start);
        start = end + 1;
        if (line.empty() || line.front() == ' ' || line.front() == '\t') {
            continue; // a continuation of a multi-line field
        }
        const auto colon = line.find(':');
        if (colon == std::string_view::npos || colon == 0) {
            return std::nullopt;
        }
        const std::string_view field = line.substr(0, colon);
        const std::string_view value = trimmed(line.substr(colon + 1));
        if (field == "Package") {
            package.name = std::string(value);
        } else if (field == "Architecture") {
            package.architecture = std::string(value);
        } else if (field == "Version") {
            package.version = std::string(value);
        } else if (field == "Installed-Size") {
            const std::string digits(value);
            char* endPtr = nullptr;
            const long long kib = std::strtoll(digits.c_str(), &endPtr, 10);
            package.installedSizeKiB = (endPtr != digits.c_str() && kib > 0) ? kib : 0;
        } else if (field == "Status") {
            const auto lastSpace = value.rfind(' ');
            installed = lastSpace != std::string_view::npos &&
                        value.substr(lastSpace + 1) == "installed" &&
                        value.find(' ') != lastSpace; // three words, the last "installed"
        }
    }
    if (!installed || package.name.empty()) {
        return std::nullopt;
    }
    return package;
}

} // namespace

std::vector<DpkgPackage> parseDpkgStatus(std::string_view text) {
    std::vector<DpkgPackage> packages;
    std::size_t start = 0;
    while (start < text.size()) {
        auto end = text.find("\n\n", start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        if (auto package = parseStanza(text.substr(start, end - start))) {
            packages.push_back(std::move(*package));
        }
        start = end + 2;
    }
    return packages;
}

std::optional<std::string> packageOfListFile(std::string_view fileName) {
    if (!endsWith(fileName, ".list") || fileName.size() <= 5) {
        return std::nullopt;
    }
    std::string_view stem = fileName.substr(0, fileName.size() - 5);
    stem = stem.substr(0, stem.find(':'));
    if (stem.empty()) {
        return std::nullopt;
    }
    return std::string(stem);
}

DpkgDatabase DpkgDatabase::load(const std::string& adminDir,
                                const std::vector<std::string>& indexedSuffixes) {
    DpkgDatabase database;
    database.m_adminDir = adminDir;
    if (const auto status = readWholeFile(joinPath(adminDir, "status"))) {
        for (DpkgPackage& package : parseDpkgStatus(*status)) {
            database.m_names.insert(package.name);
            database.m_packages.emplace(package.name, std::move(package));
        }
    }
    const std::string infoDir = joinPath(adminDir, "info");
    const int fd = open(infoDir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return database;
    }
    std::vector<std::string> listFiles;
    const auto buffer = std::make_unique<std::byte[]>(kListingBufferBytes);
    forEachEntryAt(fd, buffer.get(), kListingBufferBytes, [&](const ListedEntry& entry) {
        if (endsWith(entry.name, ".list")) {
            listFiles.emplace_back(entry.name);
        }
        return true;
    });
    close(fd);
    for (const std::string& file : listFiles) {
        const auto package = packageOfListFile(file);
        if (!package || database.m_packages.count(*package) == 0) {
            continue; // a list left behind by a removed package
        }
        database.m_listFiles[*package] = file;
        if (indexedSuffixes.empty()) {
            continue;
        }
        const auto text = readWholeFile(joinPath(infoDir, file));
        if (!text) {
            continue;
        }
        for (const std::string& suffix : indexedSuffixes) {
            const std::string needle = suffix + "\n";
            for (auto at = text->find(needle); at != std::string::npos;
                 at = text->find(needle, at + 1)) {
                const auto lineStart = text->rfind('\n', at);
                const std::size_t from = lineStart == std::string::npos ? 0 : lineStart + 1;
                database.m_owners.emplace(text->substr(from, at + suffix.size() - from), *package);
            }
        }
    }
    return database;
}

const DpkgPackage* DpkgDatabase::package(const std::string& name) const {
    const auto it = m_packages.find(name);
    return it == m_packages.end() ? nullptr : &it->second;
}

std::string DpkgDatabase::ownerOf(const std::string& path) const {
    const auto it = m_owners.find(path);
    return it == m_owners.end() ? std::string() : it->second;
}

std::vector<std::string> DpkgDatabase::filesOf(const std::string& package) const {
    std::vector<std::string> files;
    const auto it = m_listFiles.find(package);
    if (it == m_listFiles.end()) {
        return files;
    }
    const auto text = readWholeFile(joinPath(joinPath(m_adminDir, "info"), it->second));
    if (!text) {
        return files;
    }
    std::size_t start = 0;
    while (start < text->size()) {
        auto end = text->find('\n', start);
        if (end == std::string::npos) {
            end = text->size();
        }
        if (end > start && (*text)[start] == '/') {
            files.push_back(text->substr(start, end - start));
        }
        start = end + 1;
    }
    return files;
}

} // namespace sondrel
