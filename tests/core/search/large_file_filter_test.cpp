// The filter behind the search page: trimmed, case-insensitive name match, the size options'
// "at least" rule, the category, the orders, the cap and removal after a trash.

#include "core/model/byte_format.h"
#include "core/search/large_file_filter.h"
#include "core/search/search_texts.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <string>
#include <vector>

namespace sondrel {
namespace {

LargeFile file(std::string name, std::int64_t size, std::time_t modified = 0) {
    LargeFile f;
    f.path = "/home/u/" + name;
    f.name = std::move(name);
    f.size = size;
    f.modified = modified;
    f.category = categoryFrom(f.path, false);
    return f;
}

std::vector<std::string> namesOf(const LargeFileList& list, const FilteredFiles& filtered) {
    std::vector<std::string> names;
    for (std::size_t row : filtered.rows) {
        names.push_back(list.files()[row].name);
    }
    return names;
}

class LargeFileFilterTest : public ::testing::Test {
protected:
    void SetUp() override {
        // Case folding follows the process's locale; the tests need a UTF-8 one.
        ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
        m_list = LargeFileList(std::vector<LargeFile>{
            file("Holiday MOVIE.mkv", 6000000000, 300),
            file("\xc3\x89t\xc3\xa9 Photos.zip", 600000000, 100),
            file("exact100.iso", 104857600, 200),
            file("below100.iso", 104857599, 400),
            file("bad \xff name.bin", 30000000, 50),
        });
    }
    void TearDown() override { std::setlocale(LC_CTYPE, "C"); }

    LargeFileList m_list;
};

TEST_F(LargeFileFilterTest, NameMatchIsTrimmedAndCaseInsensitive) {
    SearchFilter filter;
    filter.query = " \t movie\xc2\xa0";
    EXPECT_EQ(namesOf(m_list, m_list.filter(filter)),
              std::vector<std::string>{"Holiday MOVIE.mkv"});
    filter.query = "\xc3\xa9T\xc3\x89"; // "éTÉ" finds "Été"
    EXPECT_EQ(namesOf(m_list, m_list.filter(filter)),
              std::vector<std::string>{"\xc3\x89t\xc3\xa9 Photos.zip"});
    filter.query = "\xff"; // bytes that are not UTF-8 match themselves
    EXPECT_EQ(m_list.filter(filter).rows.size(), 1U);
    filter.query = "   ";
    EXPECT_EQ(m_list.filter(filter).rows.size(), 5U);
    filter.query = "nothing like it";
    const FilteredFiles none = m_list.filter(filter);
    EXPECT_TRUE(none.rows.empty());
    EXPECT_EQ(none.totalBytes, 0);
}

TEST_F(LargeFileFilterTest, SizeOptionsKeepTheirMinimumAndCategoryNarrows) {
    SearchFilter filter;
    filter.minimumSize = kSizeOptions[1].minimum;
    EXPECT_EQ(kSizeOptions[1].label, "> 100 MB");
    const FilteredFiles over100 = m_list.filter(filter);
    EXPECT_EQ(namesOf(m_list, over100),
              (std::vector<std::string>{"Holiday MOVIE.mkv", "\xc3\x89t\xc3\xa9 Photos.zip",
                                        "exact100.iso"}));
    EXPECT_EQ(over100.totalBytes, 6000000000 + 600000000 + 104857600);

    filter.minimumSize = kSizeOptions[4].minimum; // "> 5 GB"
    EXPECT_EQ(m_list.filter(filter).rows.size(), 1U);

    filter.minimumSize = 0;
    filter.category = FileCategory::archive;
    EXPECT_EQ(
        namesOf(m_list, m_list.filter(filter)),
        (std::vector<std::string>{"\xc3\x89t\xc3\xa9 Photos.zip", "exact100.iso", "below100.iso"}));
    filter.query = "below";
    filter.minimumSize = kSizeOptions[1].minimum;
    EXPECT_TRUE(m_list.filter(filter).rows.empty()); // all three conditions must hold
}

TEST_F(LargeFileFilterTest, OrdersCapAndRemoval) {
    SearchFilter filter;
    filter.order = SearchOrder::name;
    EXPECT_EQ(namesOf(m_list, m_list.filter(filter)),
              (std::vector<std::string>{"bad \xff name.bin", "below100.iso", "exact100.iso",
                                        "Holiday MOVIE.mkv", "\xc3\x89t\xc3\xa9 Photos.zip"}));
    filter.order = SearchOrder::date;
    EXPECT_EQ(namesOf(m_list, m_list.filter(filter)).front(), "below100.iso");
    filter.order = SearchOrder::size;
    const FilteredFiles all = m_list.filter(filter);
    EXPECT_EQ(all.shownCount(2), 2U);
    EXPECT_EQ(all.shownCount(kInitialDisplayCount), 5U);
    EXPECT_EQ(searchFooterText(all.shownCount(2), all.rows.size(), 1500000),
              "Showing 2 of 5 files \u00b7 Total: 1.5 MB");
    EXPECT_EQ(searchFooterText(5, 5, 0), "Showing 5 files \u00b7 Total: Zero KB");
    EXPECT_EQ(showAllText(5), "Show All (5 Files)");

    LargeFileList list = m_list;
    EXPECT_EQ(list.remove({"/home/u/exact100.iso", "/home/u/not-there"}), 1U);
    filter.query = "100";
    EXPECT_EQ(namesOf(list, list.filter(filter)), std::vector<std::string>{"below100.iso"});
}

TEST(SearchText, TrimAndFold) {
    EXPECT_EQ(trimSearchText("\xe3\x80\x80 a b \xc2\xa0\n"), "a b");
    EXPECT_EQ(trimSearchText("\xc2"), "\xc2"); // a cut sequence is not white space
    EXPECT_EQ(trimSearchText(""), "");
    EXPECT_EQ(foldForSearch("ABC\xff"), "abc\xff");
    EXPECT_EQ(groupedCount(1234567), "1,234,567");
    EXPECT_EQ(groupedCount(999), "999");
}

TEST(SearchText, MessagesSayWhatHappened) {
    EXPECT_EQ(searchRootFailedText("/d/movie.mkv", ENOTDIR),
              "\u201c/d/movie.mkv\u201d is not a folder");
    EXPECT_EQ(searchRootFailedText("/d/gone", ENOENT), "\u201c/d/gone\u201d cannot be read");
    // The smallest hit (exactly the minimum) reads as the size the hint promises.
    EXPECT_EQ(searchHintText(), "Find every file of " + formatBytes(kLargeFileMinimum) +
                                    " and more in your folders.");
    EXPECT_EQ(formatBytes(kLargeFileMinimum), "21 MB");
    // Only the file manager's name follows the platform; a file name is never translated.
    EXPECT_EQ(revealFailedText("Finder \xff.iso", TextPlatform::gnuLinux),
              "Could not show \u201cFinder \ufffd.iso\u201d in Files");
    EXPECT_EQ(revealFailedText("a.iso", TextPlatform::macos),
              "Could not show \u201ca.iso\u201d in Finder");
}

} // namespace
} // namespace sondrel
