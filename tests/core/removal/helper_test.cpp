// The helper binary as pkexec would run it, but in its test mode: odd names act literally,
// paths outside the home are refused whatever the caller asks, and the test mode cannot be
// switched on under pkexec.

#include "core/removal/privileged_helper_client.h"
#include "core/removal/trash_info.h"
#include "removal_test_support.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::exists;

class HelperTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_helper = test::helperBinary();
        if (m_helper.empty()) {
            GTEST_SKIP() << "sondrel-helper is not built next to this test (build the "
                            "sondrel-helper target or set SONDREL_HELPER_PATH)";
        }
    }
    PrivilegedHelperClient client(const test::TempHome& t) const {
        return PrivilegedHelperClient(m_helper, runCommand, false,
                                      {"--home", t.home, "--data-home", t.dataHome});
    }
    std::string m_helper;
};

TEST_F(HelperTest, InjectionNamesActLiterally) {
    test::TempHome t;
    const std::vector<std::string> names = {"new\nline",
                                            "$(touch pwned)",
                                            "`touch pwned2`",
                                            "-rf",
                                            "--help",
                                            "\"quoted\" 'single'",
                                            "100%",
                                            std::string("bad\xff"),
                                            "semi;colon && touch pwned3",
                                            "*"};
    std::vector<std::string> paths;
    for (const std::string& name : names) {
        paths.push_back(t.dir.writeFile("home/junk/" + name, "x"));
    }
    const std::string sibling = t.dir.writeFile("home/junk-sibling", "keep");
    const std::vector<HelperPathResult> results =
        client(t).run(HelperVerb::remove, paths, {t.home + "/junk"});
    ASSERT_EQ(results.size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        EXPECT_TRUE(results[i].ok) << paths[i] << ": " << results[i].message;
        EXPECT_EQ(results[i].path, paths[i]);
        EXPECT_FALSE(exists(paths[i])) << paths[i];
    }
    EXPECT_TRUE(exists(sibling));
    EXPECT_TRUE(exists(t.home + "/junk"));
    for (const char* stray : {"pwned", "pwned2", "pwned3"}) {
        EXPECT_FALSE(exists(t.home + "/junk/" + stray));
        EXPECT_FALSE(exists(t.dir / stray));
    }

    // The trash verb moves into the user's Trash with a record.
    const std::string odd = t.dir.writeFile("home/junk/$(id) \n x", "y");
    const auto trashed = client(t).run(HelperVerb::trash, {odd}, {t.home});
    ASSERT_EQ(trashed.size(), 1U);
    EXPECT_TRUE(trashed[0].ok) << trashed[0].message;
    EXPECT_EQ(parseTrashInfo(test::readFile(t.trash + "/info/$(id) \n x.trashinfo"))->path, odd);
}

TEST_F(HelperTest, OutOfHomePathsAreRefusedEvenWhenAsked) {
    test::TempHome t;
    const std::string outside = t.dir.writeFile("outside/precious", "keep");
    const std::string inside = t.dir.writeFile("home/ok", "x");
    const std::vector<std::string> paths = {outside,        "/",          t.home, t.home + "/",
                                            t.home + "/..", t.dir.path(), inside, ""};
    const std::vector<HelperPathResult> results =
        client(t).run(HelperVerb::remove, paths, {"/", t.dir.path(), t.dir / "outside"});
    ASSERT_EQ(results.size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (paths[i] == inside) {
            EXPECT_TRUE(results[i].ok) << results[i].message;
        } else {
            EXPECT_FALSE(results[i].ok) << paths[i];
            EXPECT_FALSE(results[i].message.empty());
        }
    }
    EXPECT_EQ(test::readFile(outside), "keep");
    EXPECT_TRUE(exists(t.home));
    EXPECT_FALSE(exists(inside));
}

TEST_F(HelperTest, LinkedRootsAndFoldersLeadNowhere) {
    test::TempHome t;
    const std::string outside = t.dir.makeDir("outside");
    const std::string precious = t.dir.writeFile("outside/precious", "keep");
    ASSERT_EQ(symlink(outside.c_str(), (t.home + "/evil").c_str()), 0);
    for (const HelperVerb verb : {HelperVerb::remove, HelperVerb::trash}) {
        // A root that is a link out of the home, and a path through such a link.
        const auto viaRoot = client(t).run(verb, {t.home + "/evil/precious"}, {t.home + "/evil"});
        const auto viaPath = client(t).run(verb, {t.home + "/evil/precious"}, {t.home});
        ASSERT_EQ(viaRoot.size(), 1U);
        ASSERT_EQ(viaPath.size(), 1U);
        EXPECT_FALSE(viaRoot[0].ok);
        EXPECT_FALSE(viaPath[0].ok);
        EXPECT_EQ(test::readFile(precious), "keep");
    }
    // The link itself may go; its target stays.
    const auto link = client(t).run(HelperVerb::remove, {t.home + "/evil"}, {t.home});
    ASSERT_EQ(link.size(), 1U);
    EXPECT_TRUE(link[0].ok) << link[0].message;
    EXPECT_EQ(test::readFile(precious), "keep");
}

TEST_F(HelperTest, StartRules) {
    test::TempHome t;
    const std::string file = t.dir.writeFile("home/file", "x");
    const std::string input = encodeHelperInput({t.home}, {file});
    struct Case {
        std::vector<std::string> argv;
        std::map<std::string, std::string> environment;
        std::string input;
    };
    const std::vector<Case> refused = {
        // Under pkexec the test options are not accepted.
        {{m_helper, "remove", "--home", t.home}, {{"PKEXEC_UID", "0"}}, input},
        // Without pkexec the home must be named.
        {{m_helper, "remove"}, {}, input},
        {{m_helper, "shred", "--home", t.home}, {}, input},
        {{m_helper}, {}, input},
        {{m_helper, "remove", "--home", t.home, "--data-home", "/etc"}, {}, input},
        {{m_helper, "remove", "--home", "relative"}, {}, input},
        {{m_helper, "remove", "--home", t.home}, {}, std::string("Xjunk") + '\0'},
        {{m_helper, "remove", "--home", t.home}, {}, "P" + file},
    };
    for (const Case& c : refused) {
        const test::ProcessResult result = test::runProcess(c.argv, c.input, c.environment);
        EXPECT_EQ(result.exitCode, 2) << c.argv.back();
        EXPECT_TRUE(result.out.empty());
        EXPECT_TRUE(exists(file));
    }
    const test::ProcessResult ok = test::runProcess({m_helper, "remove", "--home", t.home}, input);
    EXPECT_EQ(ok.exitCode, 0);
    EXPECT_EQ(ok.out, "0 ok\n");
    EXPECT_FALSE(exists(file));
}

TEST(HelperProtocol, EncodingAndAnswers) {
    std::vector<std::string> roots;
    std::vector<std::string> paths;
    const std::string input = encodeHelperInput({"/r"}, {"/a\nb", "", std::string("/n\0ul", 5)});
    ASSERT_TRUE(decodeHelperInput(input, roots, paths));
    EXPECT_EQ(roots, std::vector<std::string>{"/r"});
    // A path holding NUL cannot travel: it arrives empty and is refused.
    EXPECT_EQ(paths, (std::vector<std::string>{"/a\nb", "", ""}));

    const std::vector<std::string> asked = {"/a", "/b", "/c"};
    const auto results =
        parseHelperOutput(formatHelperResultLine(0, true, "") +
                              formatHelperResultLine(2, false, "bad\nthing") + "garbage\n99 ok\n",
                          asked);
    ASSERT_EQ(results.size(), 3U);
    EXPECT_TRUE(results[0].ok);
    EXPECT_FALSE(results[1].ok);
    EXPECT_EQ(results[1].message, "no answer from the helper");
    EXPECT_FALSE(results[2].ok);
    EXPECT_EQ(results[2].message, "bad thing");

    for (const int status : {126, 127}) {
        const PrivilegedHelperClient client(
            "/nonexistent/helper", [status](const std::vector<std::string>&, const std::string&) {
                return CommandOutcome{true, status, "0 ok\n"};
            });
        const auto cancelled = client.run(HelperVerb::remove, {"/a"}, {});
        ASSERT_EQ(cancelled.size(), 1U);
        EXPECT_FALSE(cancelled[0].ok);
        EXPECT_EQ(cancelled[0].message, "cancelled");
    }
}

} // namespace
} // namespace sondrel
