#pragma once
// Narrowing the large-file search's results as the user types: by name, by size class and by
// category, in a chosen order, with a display cap. Runs on the found list only, never on the
// disk, so every keystroke refilters without a new search.

#include "core/model/file_category.h"
#include "core/search/large_file_search.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// One entry of the size menu: its label and the smallest size it keeps (0: no size filter).
/// A file of exactly `minimum` bytes passes, whatever the label's ">" says.
struct SizeOption {
    std::string_view label;
    std::int64_t minimum = 0;
};

/// The size menu, in order; the first ("All Sizes") is the initial choice.
inline constexpr std::array<SizeOption, 5> kSizeOptions = {{
    {"All Sizes", 0},
    {"> 100 MB", 104857600},
    {"> 500 MB", 524288000},
    {"> 1 GB", 1073741824},
    {"> 5 GB", 5368709120},
}};

/// How many filtered rows are shown before "Show All" is pressed.
inline constexpr std::size_t kInitialDisplayCount = 100;

/// The order of the filtered rows.
enum class SearchOrder : unsigned char {
    size, ///< largest first (the search's own order)
    name, ///< by name, case-insensitively, A to Z
    date, ///< most recently modified first
};

/// What the user chose.
struct SearchFilter {
    std::string query;                    ///< as typed; surrounding white space is ignored
    std::int64_t minimumSize = 0;         ///< 0: any size
    std::optional<FileCategory> category; ///< absent: all categories
    SearchOrder order = SearchOrder::size;
};

/// The rows that pass a filter.
struct FilteredFiles {
    std::vector<std::size_t> rows; ///< indices into LargeFileList::files(), in display order
    std::int64_t totalBytes = 0;   ///< summed size of every row (shown or not)

    /// How many rows a view capped at `cap` shows.
    std::size_t shownCount(std::size_t cap) const { return rows.size() < cap ? rows.size() : cap; }
};

/// The found files with what filtering needs prepared once (case-folded names). Plain value;
/// not thread-safe for concurrent modification, const use from any thread.
class LargeFileList {
public:
    LargeFileList() = default;
    /// Takes the search's files (largest first, as searchLargeFiles returns them).
    explicit LargeFileList(std::vector<LargeFile> files);

    const std::vector<LargeFile>& files() const { return m_files; }
    bool empty() const { return m_files.empty(); }

    /// The files that pass `filter`: (a) the trimmed query is empty or the name contains it,
    /// compared case-insensitively in the process's locale (LC_CTYPE); (b) the minimum is 0 or
    /// the size is at least the minimum; (c) no category is chosen or the file's category is
    /// it. Ordered by `filter.order`; ties keep the largest-first order.
    FilteredFiles filter(const SearchFilter& filter) const;

    /// Drops the files whose path is in `paths` (after they were trashed); returns how many
    /// went. Indices of earlier FilteredFiles are invalid afterwards.
    std::size_t remove(const std::vector<std::string>& paths);

private:
    std::vector<LargeFile> m_files;
    std::vector<std::string> m_foldedNames;
};

/// `text` without surrounding white space (ASCII and Unicode spaces, no-break space included).
std::string_view trimSearchText(std::string_view text);

/// `text` lower-cased code point by code point with the process's locale (towlower); bytes
/// that are not valid UTF-8 are kept as they are.
std::string foldForSearch(std::string_view text);

} // namespace sondrel
