// The desktop entry reader: what counts as an entry, the value escapes and the Exec quoting.

#include "core/apps/desktop_entry.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

TEST(DesktopEntry, ReadsTheMainGroupAndIgnoresLocalesAndOtherGroups) {
    const auto entry = parseDesktopEntry("# made by hand\n\n[Desktop Entry]\r\n"
                                         "Type=Application\nName=Editor\nName[de]=Bearbeiter\n"
                                         "Name=Second\nIcon = editor \n"
                                         "[Desktop Action new]\nName=New window\nExec=other\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->value("Name"), "Editor"); // the first of a repeated key
    EXPECT_EQ(entry->value("Icon"), "editor");
    EXPECT_EQ(entry->value("Exec"), "");
    EXPECT_EQ(entry->values.count("Name[de]"), 0U);
}

TEST(DesktopEntry, RejectsTextsThatAreNotEntries) {
    EXPECT_FALSE(parseDesktopEntry(""));
    EXPECT_FALSE(parseDesktopEntry("[Other]\nType=Application\nName=x\n[Desktop Entry]\n"));
    EXPECT_FALSE(parseDesktopEntry("Type=Application\n[Desktop Entry]\nName=x\n"));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Application\nName=x\nno equals\n"));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Application\nNa me=x\nName=x\n"));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Application\n"));
    EXPECT_FALSE(
        parseDesktopEntry(std::string("[Desktop Entry]\nType=Application\nName=a\0b\n", 41)));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=A\nName=x\n[Desktop Entry]\nName=y\n"));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=A\nName[=x\nName=y\n"));
}

TEST(DesktopEntry, BooleansAreOnlyTheLiteralTrue) {
    const auto entry = parseDesktopEntry(
        "[Desktop Entry]\nType=Application\nName=x\nNoDisplay=true\nHidden=True\nTerminal=1\n");
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->flag("NoDisplay"));
    EXPECT_FALSE(entry->flag("Hidden"));
    EXPECT_FALSE(entry->flag("Terminal"));
    EXPECT_FALSE(entry->flag("Missing"));
}

TEST(DesktopEntry, UnescapesValues) {
    EXPECT_EQ(unescapeDesktopValue(R"(a\sb\nc\td\re\\f)"), "a b\nc\td\re\\f");
    EXPECT_EQ(unescapeDesktopValue(R"(keep\q and end\)"), R"(keep\q and end\)");
    EXPECT_EQ(unescapeDesktopValue(R"(\\s)"), R"(\s)");
}

TEST(DesktopEntry, SplitsExecLinesWithQuotes) {
    using Words = std::vector<std::string>;
    EXPECT_EQ(splitExecLine("gimp-2.10 %U"), (Words{"gimp-2.10", "%U"}));
    EXPECT_EQ(splitExecLine(R"("/opt/My App/run" --name "a \"b\" \$c \\d")"),
              (Words{"/opt/My App/run", "--name", R"(a "b" $c \d)"}));
    EXPECT_EQ(splitExecLine("  spaced   out  "), (Words{"spaced", "out"}));
    EXPECT_EQ(splitExecLine(R"("open quote)"), (Words{"open quote"}));
    EXPECT_EQ(splitExecLine(R"("")"), (Words{""}));
    EXPECT_TRUE(splitExecLine("").empty());
    const auto entry = parseDesktopEntry(
        "[Desktop Entry]\nType=Application\nName=x\nExec=\"/home/u/My\\\\sApps/x.AppImage\" %f\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->program(), "/home/u/My\\sApps/x.AppImage");
}

TEST(DesktopEntry, FileIdsReplaceSlashesWithDashes) {
    EXPECT_EQ(desktopFileId("kde/konsole.desktop"), "kde-konsole.desktop");
    EXPECT_EQ(desktopFileId("a/b/c.desktop"), "a-b-c.desktop");
    EXPECT_EQ(desktopFileId("firefox.desktop"), "firefox.desktop");
}

} // namespace
} // namespace sondrel
