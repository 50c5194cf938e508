#pragma once
// One fuzz input for the application catalogue's readers: the first byte picks the reader (a
// desktop entry with its Exec line, an Info.plist, a dpkg status file), the rest is the text.
// Shared by the libFuzzer target (tests/fuzz/desktop_entry_fuzz.cpp) and the replay test that
// runs the committed corpus in the ordinary suite. Returns false when an invariant breaks.

#include "core/apps/desktop_entry.h"
#include "core/apps/dpkg_database.h"
#include "core/apps/info_plist.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace sondrel::fuzz {

// A parsed entry has the two required keys, values without raw newlines, and parses the same
// way twice; the Exec split never yields an empty program.
inline bool checkDesktopEntry(const std::string& text) {
    const auto entry = parseDesktopEntry(text);
    if (!entry) {
        return true;
    }
    if (entry->value("Type").empty() || entry->value("Name").empty()) {
        return false;
    }
    for (const auto& [key, value] : entry->values) {
        if (key.empty() || key.find_first_of("[]=\n") != std::string::npos) {
            return false;
        }
    }
    for (const std::string& word : splitExecLine(entry->value("Exec"))) {
        (void)word;
    }
    const auto again = parseDesktopEntry(text);
    return again && again->values == entry->values;
}

inline bool checkInfoPlist(const std::string& text) {
    const auto strings = parseInfoPlistStrings(text);
    return !strings || strings->count("") <= 1;
}

inline bool checkDpkgStatus(const std::string& text) {
    for (const DpkgPackage& package : parseDpkgStatus(text)) {
        if (package.name.empty() || package.installedSizeKiB < 0) {
            return false;
        }
    }
    return true;
}

inline bool checkCatalogueInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return true;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 3) {
    case 0:
        return checkDesktopEntry(text);
    case 1:
        return checkInfoPlist(text);
    default:
        return checkDpkgStatus(text);
    }
}

} // namespace sondrel::fuzz
