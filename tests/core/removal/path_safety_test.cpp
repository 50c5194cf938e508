// The path rules every removal obeys: refusals by component, links, protected folders.

#include "core/removal/path_safety.h"
#include "removal_test_support.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

TEST(PathSafety, LexicalTable) {
    const std::string home = "/home/alice";
    const std::vector<std::string> roots = {"/home/alice", "/home/alice/.cache", "/data/media"};
    struct Case {
        std::string path;
        PathVerdict verdict;
    };
    const std::vector<Case> cases = {
        {"", PathVerdict::empty},
        {"relative/x", PathVerdict::notAbsolute},
        {"~/x", PathVerdict::notAbsolute},
        {"/", PathVerdict::isFilesystemRoot},
        {"//", PathVerdict::isFilesystemRoot},
        {"///", PathVerdict::isFilesystemRoot},
        {"/./", PathVerdict::dotComponent},
        {"/etc/..", PathVerdict::dotComponent},
        {"/home/alice/..", PathVerdict::dotComponent},
        {"/home/alice/x/../../bob", PathVerdict::dotComponent},
        {"/home/alice/./x", PathVerdict::dotComponent},
        {"/home/alice", PathVerdict::isHome},
        {"/home/alice/", PathVerdict::isHome},
        {"//home//alice//", PathVerdict::isHome},
        {"/home", PathVerdict::isHome},
        {"/home/al", PathVerdict::outsideRoots},
        {"/home/al/x", PathVerdict::outsideRoots},
        {"/home/alicex/file", PathVerdict::outsideRoots},
        {"/etc/passwd", PathVerdict::outsideRoots},
        {"/data/mediax/a", PathVerdict::outsideRoots},
        {"/data/media", PathVerdict::isAllowedRoot},
        {"/data/media/", PathVerdict::isAllowedRoot},
        {"/home/alice/.cache", PathVerdict::isProtected},
        {"/home/alice/.ssh", PathVerdict::isProtected},
        {"/home/alice/.ssh/id_ed25519", PathVerdict::isProtected},
        {"/home/alice/.gnupg/private-keys-v1.d", PathVerdict::isProtected},
        {"/home/alice/.local/share/keyrings/login.keyring", PathVerdict::isProtected},
        {"/home/alice/.config", PathVerdict::isProtected},
        {"/home/alice/.config/", PathVerdict::isProtected},
        {"/home/alice/.local/share", PathVerdict::isProtected},
        {"/home/alice/.local", PathVerdict::isProtected},
        {"/home/alice/x", PathVerdict::allowed},
        {"/home/alice/.config/some-app", PathVerdict::allowed},
        {"/home/alice/.local/share/some-app", PathVerdict::allowed},
        {"/home/alice/.sshx", PathVerdict::allowed},
        {"/home/alice/.cache/thumbnails", PathVerdict::allowed},
        {"/data/media/film.mkv", PathVerdict::allowed},
        {"/home/alice/name with\nnewline", PathVerdict::allowed},
        {"/home/alice/$(touch x)", PathVerdict::allowed},
        {"/home/alice/...", PathVerdict::allowed},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(checkRemovablePath(c.path, home, roots), c.verdict) << c.path;
    }
    // /home/al as the home must not protect or allow /home/alice.
    EXPECT_EQ(checkRemovablePath("/home/alice/x", "/home/al", {"/home/al"}),
              PathVerdict::outsideRoots);
    // No roots: nothing is allowed.
    EXPECT_EQ(checkRemovablePath("/home/alice/x", home, {}), PathVerdict::outsideRoots);
    // A root that is not clean allows nothing.
    EXPECT_EQ(checkRemovablePath("/home/alice/x", home, {"/home/alice/.."}),
              PathVerdict::outsideRoots);
}

TEST(PathSafety, ComponentHelpers) {
    EXPECT_EQ(normalizeAbsolutePath("//a///b/"), "/a/b");
    EXPECT_EQ(normalizeAbsolutePath("/"), "/");
    EXPECT_FALSE(normalizeAbsolutePath("/a/./b"));
    EXPECT_FALSE(normalizeAbsolutePath("a/b"));
    EXPECT_TRUE(isWithinFolder("/home/alice/x", "/home/alice"));
    EXPECT_TRUE(isWithinFolder("/home/alice", "/home/alice"));
    EXPECT_FALSE(isWithinFolder("/home/alice", "/home/al"));
    EXPECT_TRUE(isWithinFolder("/x", "/"));
}

TEST(PathSafety, LinksAreResolvedOnDisk) {
    test::TempHome t;
    const std::string outside = t.dir.makeDir("outside");
    t.dir.makeFile("outside/precious");
    const std::string work = t.dir.makeDir("home/work");
    ASSERT_EQ(symlink("/", (work + "/to-root").c_str()), 0);
    ASSERT_EQ(symlink(t.home.c_str(), (work + "/to-home").c_str()), 0);
    ASSERT_EQ(symlink((t.home + "/").c_str(), (work + "/to-home-slash").c_str()), 0);
    t.dir.makeDir("home/.ssh");
    ASSERT_EQ(symlink((t.home + "/.ssh").c_str(), (work + "/to-ssh").c_str()), 0);
    ASSERT_EQ(symlink(outside.c_str(), (work + "/to-outside").c_str()), 0);
    ASSERT_EQ(symlink(outside.c_str(), (t.home + "/linked-dir").c_str()), 0);

    const auto verdict = [&](const std::string& path) {
        return checkRemovablePath(path, t.home, {t.home});
    };
    EXPECT_EQ(verdict(work + "/to-root"), PathVerdict::linkToProtected);
    EXPECT_EQ(verdict(work + "/to-home"), PathVerdict::linkToProtected);
    EXPECT_EQ(verdict(work + "/to-home-slash"), PathVerdict::linkToProtected);
    EXPECT_EQ(verdict(work + "/to-ssh"), PathVerdict::linkToProtected);
    // A link to somewhere ordinary may go: only the link is removed.
    EXPECT_EQ(verdict(work + "/to-outside"), PathVerdict::allowed);
    EXPECT_EQ(verdict(t.home + "/linked-dir"), PathVerdict::allowed);
    // But nothing may be reached through it.
    EXPECT_EQ(verdict(t.home + "/linked-dir/precious"), PathVerdict::outsideRoots);
    // Ordinary files and paths that do not exist yet are judged by their text.
    EXPECT_EQ(verdict(t.dir.makeFile("home/work/a.txt")), PathVerdict::allowed);
    EXPECT_EQ(verdict(t.home + "/missing/deeper"), PathVerdict::allowed);
}

} // namespace
} // namespace sondrel
