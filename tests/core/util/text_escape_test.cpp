// Names as JSON and as terminal text: lossless, distinct and free of control bytes.

#include "core/util/path_text.h"
#include "core/util/text_escape.h"

#include <gtest/gtest.h>

#include <random>

namespace sondrel {
namespace {

TEST(TextEscape, JsonKeepsEveryNameDistinct) {
    const struct {
        std::string_view bytes;
        std::string_view json;
    } cases[] = {
        {"plain", R"("plain")"},
        {"quote\" back\\", R"("quote\" back\\")"},
        {"new\nline\ttab\x01\x7f", R"("new\nline\ttab\u0001\u007f")"},
        {"caf\xC3\xA9", "\"caf\xC3\xA9\""},            // valid UTF-8 passes through
        {"caf\xE9", R"("caf\udce9")"},                 // a Latin-1 byte is not é
        {"bad\xff\xC3\xA9", "\"bad\\udcff\xC3\xA9\""}, // only the invalid byte escaped
        {"\xE2\x82", R"("\udce2\udc82")"},             // a sequence cut short
        {"\xED\xA0\x80", R"("\udced\udca0\udc80")"},   // an encoded surrogate
        {"\xC0\xAF", R"("\udcc0\udcaf")"},             // an overlong '/'
        {"csi\xC2\x9B"
         "2J",
         R"("csi\u009b2J")"},                                   // a C1 control character
        {"sep\xE2\x80\xA8", R"("sep\u2028")"},                  // a JavaScript line break
        {"emoji\xF0\x9F\x98\x80", "\"emoji\xF0\x9F\x98\x80\""}, // four bytes pass through
        {std::string_view("nul\0x", 5), R"("nul\u0000x")"},
    };
    for (const auto& c : cases) {
        const std::string json = jsonString(c.bytes);
        EXPECT_EQ(json, c.json) << testing::PrintToString(std::string(c.bytes));
        EXPECT_TRUE(isValidUtf8(json));
        EXPECT_EQ(decodeJsonString(json), std::string(c.bytes));
    }
}

TEST(TextEscape, JsonRoundTripsArbitraryBytes) {
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        std::string bytes(random() % 12, '\0');
        for (char& c : bytes) {
            // Mostly high bytes and controls, where the encodings differ.
            const unsigned r = random() % 4;
            c = static_cast<char>(r == 0 ? random() % 0x20 : r == 1 ? 'a' : 0x80 + random() % 0x80);
        }
        const std::string json = jsonString(bytes);
        ASSERT_TRUE(isValidUtf8(json)) << testing::PrintToString(bytes);
        for (const char c : json) {
            ASSERT_GE(static_cast<unsigned char>(c), 0x20U) << testing::PrintToString(bytes);
        }
        ASSERT_EQ(decodeJsonString(json), bytes) << json;
    }
}

TEST(TextEscape, DecoderReadsOtherWritersAndRejectsWhatIsNotOneString) {
    EXPECT_EQ(decodeJsonString(R"("\ud83d\ude00 \u00e9\/")"), "\xF0\x9F\x98\x80 \xC3\xA9/");
    EXPECT_EQ(decodeJsonString(R"("\uDCE9")"), "\xE9");
    EXPECT_EQ(decodeJsonString(R"("")"), "");
    for (const std::string_view bad :
         {R"("open)", R"(no quotes)", "\"", R"("a"b")", R"("trailing\")", R"("\x41")", R"("\u12")",
          R"("\ud800")", R"("\ud800\u0041")", R"("\udc41")", R"("\ude00")", "\"raw\ncontrol\"",
          "\"raw \xE9 byte\""}) {
        EXPECT_EQ(decodeJsonString(bad), std::nullopt) << bad;
    }
}

TEST(TextEscape, TerminalTextShowsControlBytesVisibly) {
    const struct {
        std::string_view bytes;
        std::string_view shown;
    } cases[] = {
        {"report.pdf", "report.pdf"},
        {"caf\xC3\xA9 \xE6\x97\xA5", "caf\xC3\xA9 \xE6\x97\xA5"},
        {"\x1b[31mred\x1b[0m", R"(\033[31mred\033[0m)"},
        {"a\nb\rc\td\be\af\vg\fh", R"(a\nb\rc\td\be\af\vg\fh)"},
        {"back\\slash", R"(back\\slash)"},
        {"del\x7f", R"(del\177)"},
        {"caf\xE9", R"(caf\351)"},
        {"csi\xC2\x9B"
         "2J",
         R"(csi\302\2332J)"},
        {std::string_view("nul\0", 4), R"(nul\000)"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(terminalText(c.bytes), c.shown) << testing::PrintToString(std::string(c.bytes));
    }
    std::mt19937 random(11);
    for (int i = 0; i < 5000; ++i) {
        std::string bytes(random() % 10, '\0');
        for (char& c : bytes) {
            c = static_cast<char>(random() % 256);
        }
        const std::string shown = terminalText(bytes);
        ASSERT_TRUE(isValidUtf8(shown)) << testing::PrintToString(bytes);
        for (std::size_t at = 0; at < shown.size(); at += utf8SequenceLength(shown, at)) {
            const auto c = static_cast<unsigned char>(shown[at]);
            ASSERT_TRUE(c >= 0x20 && c != 0x7F) << testing::PrintToString(bytes);
            ASSERT_FALSE(c == 0xC2 && static_cast<unsigned char>(shown[at + 1]) < 0xA0)
                << testing::PrintToString(bytes);
        }
    }
}

} // namespace
} // namespace sondrel
