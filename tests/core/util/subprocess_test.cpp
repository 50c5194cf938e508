// Running programs: exit codes and signals, both streams at once in volume, stdin, the
// environment, the time limit and programs that cannot be started.

#include "core/util/subprocess.h"

#include <csignal>
#include <gtest/gtest.h>

namespace sondrel {
namespace {

SubprocessRequest shell(const std::string& script) {
    SubprocessRequest request;
    request.argv = {"sh", "-c", script, "sh"};
    return request;
}

TEST(Subprocess, ExitCodesAndSignals) {
    for (const int code : {0, 1, 2, 126, 255}) {
        const SubprocessResult result = runSubprocess(shell("exit " + std::to_string(code)));
        EXPECT_TRUE(result.started);
        EXPECT_EQ(result.exitCode, code);
        EXPECT_EQ(result.signal, 0);
        EXPECT_EQ(result.status(), code);
        EXPECT_EQ(result.succeeded(), code == 0);
    }
    const SubprocessResult killed = runSubprocess(shell("kill -TERM $$"));
    EXPECT_EQ(killed.signal, SIGTERM);
    EXPECT_EQ(killed.exitCode, -1);
    EXPECT_EQ(killed.status(), 128 + SIGTERM);
    EXPECT_FALSE(killed.succeeded());
}

TEST(Subprocess, ArgumentsAreNeverInterpretedByAShell) {
    SubprocessRequest request;
    request.argv = {"printf", "%s|", "$(echo no)", "a b", "*", "`x`;y", ""};
    const SubprocessResult result = runSubprocess(request);
    EXPECT_EQ(result.out, "$(echo no)|a b|*|`x`;y||");
}

// Megabytes on both streams while megabytes go in: neither side may block on a full pipe.
TEST(Subprocess, LargeInputAndOutputOnBothStreams) {
    SubprocessRequest request = shell("tee /dev/stderr; head -c 3000000 /dev/zero");
    request.input.assign(5'000'000, 'i');
    request.input.back() = '\n';
    const SubprocessResult result = runSubprocess(request);
    EXPECT_TRUE(result.succeeded()) << result.err.substr(0, 200);
    EXPECT_EQ(result.out.size(), 8'000'000U);
    EXPECT_EQ(result.out.substr(0, 5'000'000), request.input);
    EXPECT_EQ(result.err, request.input);
}

TEST(Subprocess, InputIsDroppedWhenTheProgramStopsReading) {
    SubprocessRequest request = shell("head -c 10; exit 3");
    request.input.assign(2'000'000, 'x');
    const SubprocessResult result = runSubprocess(request);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.out, std::string(10, 'x'));
}

TEST(Subprocess, Environment) {
    SubprocessRequest request = shell("printf '%s|%s|%s' \"$SONDREL_A\" \"$SONDREL_B\" \"$HOME\"");
    request.environment = {{"SONDREL_A", "one two"}, {"SONDREL_B", "$(x)"}};
    setenv("SONDREL_B", "replaced", 1);
    const SubprocessResult inherited = runSubprocess(request);
    unsetenv("SONDREL_B");
    const char* home = std::getenv("HOME");
    EXPECT_EQ(inherited.out, std::string("one two|$(x)|") + (home != nullptr ? home : ""));

    request.inheritEnvironment = false;
    request.argv = {"/usr/bin/env"};
    request.environment = {{"ONLY", "this"}};
    EXPECT_EQ(runSubprocess(request).out, "ONLY=this\n");
}

TEST(Subprocess, TimeoutKillsAndSaysSo) {
    SubprocessRequest request = shell("echo started; exec sleep 30");
    request.timeout = std::chrono::milliseconds(200);
    const SubprocessResult result = runSubprocess(request);
    EXPECT_TRUE(result.started);
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.signal, SIGKILL);
    EXPECT_EQ(result.out, "started\n");

    // A program that closes its streams and lingers is killed too.
    SubprocessRequest closed = shell("exec >&- 2>&-; sleep 30");
    closed.timeout = std::chrono::milliseconds(200);
    EXPECT_TRUE(runSubprocess(closed).timedOut);

    // Within the limit nothing is killed.
    SubprocessRequest quick = shell("echo done");
    quick.timeout = std::chrono::seconds(30);
    const SubprocessResult fine = runSubprocess(quick);
    EXPECT_FALSE(fine.timedOut);
    EXPECT_TRUE(fine.succeeded());
}

TEST(Subprocess, MissingProgramsAreNotStarted) {
    for (const bool searchPath : {true, false}) {
        SubprocessRequest request;
        request.searchPath = searchPath;
        request.argv = {searchPath ? "sondrel-no-such-program" : "/nonexistent/program"};
        const SubprocessResult result = runSubprocess(request);
        EXPECT_FALSE(result.started);
        EXPECT_FALSE(result.startError.empty());
        EXPECT_EQ(result.status(), -1);
    }
    EXPECT_FALSE(runSubprocess(SubprocessRequest{}).started);
    // Without a search a bare name is not looked up on PATH.
    SubprocessRequest bare;
    bare.searchPath = false;
    bare.argv = {"sh"};
    EXPECT_FALSE(runSubprocess(bare).started);
}

// A signal the caller ignores is not ignored by the child: it gets default dispositions.
TEST(Subprocess, ChildGetsDefaultSignalDispositions) {
    struct sigaction previous {};
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGINT, &ignore, &previous);
    const SubprocessResult result = runSubprocess(shell("kill -INT $$; exit 0"));
    sigaction(SIGINT, &previous, nullptr);
    EXPECT_EQ(result.signal, SIGINT);
}

} // namespace
} // namespace sondrel
