// The Info.plist and dpkg readers: the values the catalogue takes from them, and bad input.

#include "core/apps/dpkg_database.h"
#include "core/apps/info_plist.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

TEST(InfoPlist, ReadsTopLevelStringsOnly) {
    const auto strings = parseInfoPlistStrings(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "x">
<plist version="1.0">
<dict>
  <!-- <key>Commented</key><string>no</string> -->
  <key>CFBundleIdentifier</key><string>com.example.R&amp;D</string>
  <key>LSRequiresNative</key><true/>
  <key>CFBundleVersion</key><integer>12</integer>
  <key>CFBundleDocumentTypes</key>
  <array><dict><key>CFBundleTypeName</key><string>Inner</string></dict></array>
  <key>Empty</key><dict/>
  <key>CFBundleShortVersionString</key><string>3.1&#x2013;beta</string>
  <key>Blank</key><string/>
</dict>
</plist>)");
    ASSERT_TRUE(strings);
    EXPECT_EQ(strings->at("CFBundleIdentifier"), "com.example.R&D");
    EXPECT_EQ(strings->at("CFBundleShortVersionString"), "3.1\xE2\x80\x93"
                                                         "beta");
    EXPECT_EQ(strings->at("Blank"), "");
    EXPECT_EQ(strings->count("CFBundleVersion"), 0U);
    EXPECT_EQ(strings->count("CFBundleTypeName"), 0U);
    EXPECT_EQ(strings->count("LSRequiresNative"), 0U);
    EXPECT_EQ(strings->count("Commented"), 0U);
}

TEST(InfoPlist, GivesNothingForBinaryOrBrokenLists) {
    EXPECT_FALSE(parseInfoPlistStrings("bplist00\xd1\x01\x02"));
    EXPECT_FALSE(parseInfoPlistStrings("<plist><dict><key>A</key><string>x</string>"));
    EXPECT_FALSE(parseInfoPlistStrings("<plist><array></array></plist>"));
    EXPECT_FALSE(parseInfoPlistStrings("not xml at all"));
    EXPECT_FALSE(parseInfoPlistStrings("<plist><dict><key>A</key><string>x</dict></plist>"));
}

TEST(DpkgStatus, KeepsInstalledPackagesAndSkipsBrokenStanzas) {
    const auto packages = parseDpkgStatus("Package: gimp\nStatus: install ok installed\n"
                                          "Version: 2.10.34-1\nArchitecture: amd64\n"
                                          "Installed-Size: 20480\nDescription: editor\n more\n\n"
                                          "Package: gone\nStatus: deinstall ok config-files\n\n"
                                          "Package: broken\nStatus: install ok installed\n"
                                          "this line has no colon\n\n"
                                          "Status: install ok installed\nVersion: 1\n\n"
                                          "Package: held\nStatus: hold ok installed\n"
                                          "Installed-Size: lots\n");
    ASSERT_EQ(packages.size(), 2U);
    EXPECT_EQ(packages[0].name, "gimp");
    EXPECT_EQ(packages[0].version, "2.10.34-1");
    EXPECT_EQ(packages[0].installedSizeKiB, 20480);
    EXPECT_EQ(packages[1].name, "held");
    EXPECT_EQ(packages[1].installedSizeKiB, 0);
}

TEST(DpkgStatus, ListFileNamesGivePackages) {
    EXPECT_EQ(packageOfListFile("gimp.list"), "gimp");
    EXPECT_EQ(packageOfListFile("libc6:amd64.list"), "libc6");
    EXPECT_FALSE(packageOfListFile("gimp.md5sums"));
    EXPECT_FALSE(packageOfListFile(".list"));
}

TEST(DpkgDatabase, IndexesOwnersOfInstalledPackagesOnly) {
    const test::TempDir dir;
    dir.writeFile("status", "Package: editor\nStatus: install ok installed\nVersion: 1.2\n\n"
                            "Package: removed\nStatus: deinstall ok config-files\n");
    dir.writeFile(
        "info/editor:amd64.list",
        "/.\n/usr\n/usr/bin/editor\n/usr/share/applications/editor.desktop\n"
        "/usr/share/applications/kde/editor-tools.desktop\n/usr/share/doc/x.desktop.gz\n");
    dir.writeFile("info/removed.list", "/usr/share/applications/removed.desktop\n");
    const DpkgDatabase database = DpkgDatabase::load(dir.path(), {".desktop"});
    EXPECT_EQ(database.size(), 1U);
    EXPECT_EQ(database.ownerOf("/usr/share/applications/editor.desktop"), "editor");
    EXPECT_EQ(database.ownerOf("/usr/share/applications/kde/editor-tools.desktop"), "editor");
    EXPECT_EQ(database.ownerOf("/usr/share/applications/removed.desktop"), "");
    EXPECT_EQ(database.ownerOf("/usr/share/doc/x.desktop.gz"), "");
    EXPECT_EQ(database.filesOf("editor").size(), 6U);
    ASSERT_NE(database.package("editor"), nullptr);
    EXPECT_EQ(database.package("editor")->version, "1.2");
    EXPECT_EQ(DpkgDatabase::load(dir / "missing", {".desktop"}).size(), 0U);
}

} // namespace
} // namespace sondrel
