// Category, verdict and rationale rules, one table each, including the deliberate quirks:
// raw substring tests, and the rationale's own rule order.

#include "core/model/file_category.h"
#include "core/model/platform_terms.h"
#include "core/model/reclaimable_status.h"

#include <gtest/gtest.h>

#include <string>

namespace sondrel {
namespace {

struct CategoryCase {
    const char* path;
    bool isDirectory;
    FileCategory expected;
};

TEST(CategoryFrom, FolderAndFileRules) {
    const CategoryCase cases[] = {
        // Folders: suffix test on the lower-cased path, then developer words anywhere.
        {"/Users/a/Foo.APP", true, FileCategory::application},
        {"/Users/a/project/.git/objects", true, FileCategory::developer},
        {"/Users/a/x.github", true, FileCategory::developer},
        {"/home/a/web/node_modules/left-pad/lib", true, FileCategory::developer},
        {"/home/a/Library/Developer/Xcode/DerivedData", true, FileCategory::developer},
        {"/home/a/.cargo", true, FileCategory::developer},
        {"/Users/a/Movies", true, FileCategory::other},
        {"/Users/a/photos.jpg", true, FileCategory::other},
        {"/Users/a/Foo.app.backup", true, FileCategory::other},
        // Files: the lower-cased extension of the last component, first list wins.
        {"/Users/a/Foo.app", false, FileCategory::application},
        {"/Users/a/photo.JPG", false, FileCategory::image},
        {"/Users/a/notes.key", false, FileCategory::document},
        {"/Users/a/lib.a", false, FileCategory::developer},
        {"/Users/a/installer.pkg", false, FileCategory::archive},
        {"/Users/a/a.tar.gz", false, FileCategory::archive},
        {"/Users/a/README", false, FileCategory::other},
        {"/Users/a/archive.", false, FileCategory::other},
        {"/Users/a/.bashrc", false, FileCategory::other},
        {"/Users/a/node_modules/x/index.bin", false, FileCategory::other},
        {"/Users/a/clip.MKV", false, FileCategory::video},
        {"/Users/a/song.flac", false, FileCategory::audio},
        {"/Users/a/vector.svg", false, FileCategory::image},
        {"/Users/a/main.rs", false, FileCategory::developer},
        {"/weird.dir/noext", false, FileCategory::other},
        // Near misses of listed extensions: a prefix, one letter more, far too long, not ASCII.
        {"/a/clip.mp", false, FileCategory::other},
        {"/a/sheet.numbersx", false, FileCategory::other},
        {"/a/sheet.NUMBERS", false, FileCategory::document},
        {"/a/x.averyveryverylongextension", false, FileCategory::other},
        {"/a/x.p\xc3\xa9"
         "f",
         false, FileCategory::other},
    };
    for (const CategoryCase& c : cases) {
        EXPECT_EQ(categoryFrom(c.path, c.isDirectory), c.expected)
            << c.path << (c.isDirectory ? " (folder)" : " (file)");
    }
}

TEST(CategoryFrom, NeverProducesSystemAndDisplayTablesAreComplete) {
    for (FileCategory category : kAllFileCategories) {
        EXPECT_FALSE(displayName(category).empty());
        EXPECT_FALSE(iconName(category).empty());
        EXPECT_EQ(categoryFromDisplayName(std::string(displayName(category))), category);
    }
    EXPECT_EQ(displayName(FileCategory::system), "System Data");
    EXPECT_EQ(color(FileCategory::developer), (Rgb{0.98, 0.45, 0.18}));
    EXPECT_FALSE(categoryFromDisplayName("developer").has_value());
}

struct JudgementCase {
    const char* path;
    FileCategory category;
    ReclaimableStatus status;
    const char* rationaleStart;
};

TEST(Judgement, VerdictAndRationaleFollowTheirOwnRuleOrders) {
    using S = ReclaimableStatus;
    using C = FileCategory;
    const JudgementCase cases[] = {
        {"/Applications/Foo.app", C::application, S::systemProtected, "Installed application"},
        // "cache" anywhere lifts the /Applications protection; nothing else then matches.
        {"/Applications/Foo.app/Contents/Caches/x", C::other, S::cautionUserData,
         "Installed application"},
        {"/Applications/Foo.app/Contents/Library/Caches/x", C::other, S::safeToClean,
         "Application disk cache"},
        {"/Users/a/Downloads/setup.DMG", C::archive, S::safeToClean, "Downloaded software"},
        {"/Users/a/Downloads/photo.jpg", C::image, S::cautionUserData, "Personal user file"},
        {"/Users/a/Downloads/tool.zip", C::archive, S::cautionUserData, "User storage item"},
        {"/private/var/tmp/x", C::other, S::safeToClean, "User storage item"},
        {"/private/var/tmp/x.mp3", C::audio, S::safeToClean, "Personal user file"},
        {"/usr/local/lib/node_modules/x", C::developer, S::systemProtected, "Local JavaScript"},
        {"/usr/share/doc/readme.txt", C::document, S::systemProtected, "Core Linux"},
        {"/sbin/init", C::other, S::systemProtected, "User storage item"},
        {"/private/var/db/x", C::other, S::systemProtected, "User storage item"},
        // Raw substring: "/tmp" matches a component that merely starts with tmp.
        {"/home/a/tmpfiles/report.pdf", C::document, S::safeToClean, "Personal user file"},
        {"/home/a/.cache/thumbnails", C::other, S::safeToClean, "Application disk cache"},
        {"/Users/a/Library/Logs/x.log", C::other, S::safeToClean, "Historical diagnostic"},
        {"/Users/a/Library/Developer/Xcode/DerivedData/App", C::developer, S::safeToClean,
         "Xcode build cache"},
        {"/home/a/.local/share/Trash/files/x", C::other, S::cautionUserData, "User storage"},
        {"/Users/a/.Trash/old.doc", C::document, S::safeToClean, "Items already placed"},
        {"/home/a/.gradle/caches/x", C::other, S::safeToClean, "Build tool package cache"},
        {"/home/a/.cargo/registry/src", C::developer, S::safeToClean, "Build tool package"},
        {"/home/a/Library/Caches/CocoaPods/cache", C::other, S::safeToClean, "Application disk"},
        {"/home/a/cocoapods/cache/x", C::other, S::safeToClean, "User storage item"},
        {"/SYSTEM/Library/x", C::other, S::systemProtected, "Core Linux"},
        {"/home/a/notes.md", C::document, S::cautionUserData, "Personal user file"},
    };
    for (const JudgementCase& c : cases) {
        EXPECT_EQ(reclaimableStatusFor(c.path), c.status) << c.path;
        const std::string rationale =
            withPlatformTerms(removalRationaleFor(c.path, c.category), TextPlatform::gnuLinux);
        EXPECT_EQ(rationale.rfind(c.rationaleStart, 0), 0U) << c.path << " -> " << rationale;
    }
}

TEST(Judgement, StatusTablesAndPlatformTerms) {
    EXPECT_EQ(displayName(ReclaimableStatus::safeToClean), "Safe to Clean");
    EXPECT_EQ(displayName(ReclaimableStatus::cautionUserData), "User Data (Caution)");
    EXPECT_EQ(displayName(ReclaimableStatus::systemProtected), "System Managed");
    EXPECT_EQ(iconName(ReclaimableStatus::systemProtected), "lock.shield.fill");
    EXPECT_EQ(withPlatformTerms("Move to macOS Trash", TextPlatform::gnuLinux), "Move to Trash");
    EXPECT_EQ(withPlatformTerms("Reveal in Finder", TextPlatform::gnuLinux), "Show in Files");
    // The privacy-prompt sentences become what is true on Linux; macOS keeps them.
    const std::string refused =
        "You selected 'Don't Allow' for this directory, so its files were not pulled into the app.";
    EXPECT_EQ(withPlatformTerms(refused, TextPlatform::gnuLinux),
              "The folder's permissions do not let you read it, so its files were not pulled "
              "into the app.");
    EXPECT_EQ(withPlatformTerms(refused, TextPlatform::macos), refused);
    EXPECT_EQ(withPlatformTerms("macOS requires permission to scan your ", TextPlatform::gnuLinux),
              "The folder's permissions do not let you read your ");
    EXPECT_EQ(withPlatformTerms("Reveal in Finder", TextPlatform::macos), "Reveal in Finder");
    EXPECT_EQ(withPlatformTerms("macOS macOS", TextPlatform::gnuLinux), "Linux Linux");
}

} // namespace
} // namespace sondrel
