// The Linux sampler on recorded /proc texts, on missing sources, and against `free` and `df`
// on the live machine.

#include "platform/linux/linux_system_sampler.h"
#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace sondrel {
namespace {

std::string fixtureRoot(const std::string& name) {
    return SONDREL_SOURCE_DIR "/tests/fixtures/proc/" + name;
}

// Standard output of a program run in the C locale; "" when it cannot run.
std::string outputOf(const std::vector<std::string>& argv) {
    const test::ProcessResult result = test::runProcess(argv, {}, {{"LC_ALL", "C"}});
    return result.exitCode == 0 ? result.out : std::string();
}

TEST(LinuxSystemSamplerTest, ReadsRecordedProcTexts) {
    test::TempDir temp;
    const std::string osRelease =
        temp.writeFile("os-release", "NAME=Test\nPRETTY_NAME=\"Testix 1 (odd \\\"$(name)\\\")\"\n");
    LinuxSystemSampler sampler(fixtureRoot("debian12-a"), temp.path(),
                               {temp / "absent", osRelease});

    const std::vector<ProcessorTicks> ticks = sampler.processorTicks();
    ASSERT_EQ(ticks.size(), 2u);
    EXPECT_EQ(ticks[0].user, 6380u);

    const MemoryStats memory = sampler.memory();
    EXPECT_EQ(memory.totalBytes, 24684084ull * 1024);
    EXPECT_EQ(memory.usedBytes(), (24684084ull - 24161256ull) * 1024);

    const HostFacts facts = sampler.hostFacts();
    EXPECT_FALSE(facts.hostName.empty());
    EXPECT_EQ(facts.osVersion.rfind("Testix 1 (odd \"$(name)\"), kernel ", 0), 0u)
        << facts.osVersion;
    EXPECT_GT(facts.uptimeSeconds, 0.0);
}

TEST(LinuxSystemSamplerTest, MissingSourcesGiveDefaults) {
    test::TempDir temp;
    LinuxSystemSampler sampler(temp / "no-proc", temp / "no-volume", {temp / "no-os-release"});
    EXPECT_TRUE(sampler.processorTicks().empty());
    EXPECT_EQ(sampler.memory(), MemoryStats{});
    EXPECT_EQ(sampler.disk(), DiskStats{});
    const HostFacts facts = sampler.hostFacts();
    EXPECT_EQ(facts.uptimeSeconds, 0.0);
    EXPECT_EQ(facts.osVersion.rfind("kernel ", 0), 0u) << facts.osVersion;
}

TEST(LinuxSystemSamplerTest, FoldersAndFifosInPlaceOfProcFilesGiveDefaults) {
    test::TempDir temp;
    temp.makeDir("proc/stat");
    temp.makeDir("proc/meminfo");
    const std::string uptime = temp / "proc/uptime";
    ASSERT_EQ(::mkfifo(uptime.c_str(), 0600), 0);
    LinuxSystemSampler sampler(temp / "proc", temp.path(), {});
    EXPECT_TRUE(sampler.processorTicks().empty());
    EXPECT_EQ(sampler.memory(), MemoryStats{});
    EXPECT_EQ(sampler.hostFacts().uptimeSeconds, 0.0);
    EXPECT_GT(sampler.disk().totalBytes, 0);
}

TEST(LinuxSystemSamplerTest, LiveMemoryAgreesWithFree) {
    // free -b: "Mem:  total used free shared buff/cache available"
    std::istringstream lines(outputOf({"/usr/bin/free", "-b"}));
    std::string line;
    double total = 0;
    double available = 0;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string label;
        double used = 0, free = 0, shared = 0, cache = 0;
        if (fields >> label >> total >> used >> free >> shared >> cache >> available &&
            label == "Mem:") {
            break;
        }
        total = 0;
    }
    if (total <= 0) {
        GTEST_SKIP() << "free is not available";
    }
    const MemoryStats memory = LinuxSystemSampler().memory();
    EXPECT_NEAR(memory.usagePercent(), (total - available) / total * 100.0, 2.0);
    EXPECT_EQ(static_cast<double>(memory.totalBytes), total);
}

TEST(LinuxSystemSamplerTest, LiveDiskAgreesWithDf) {
    // df -B1 --output=size,used,avail,pcent /: a header line, then "<size> <used> <avail> N%".
    std::istringstream lines(
        outputOf({"/usr/bin/df", "-B1", "--output=size,used,avail,pcent", "/"}));
    std::string header;
    std::int64_t size = 0;
    std::int64_t used = 0;
    std::int64_t avail = 0;
    double percent = 0;
    if (!std::getline(lines, header) || !(lines >> size >> used >> avail >> percent)) {
        GTEST_SKIP() << "df is not available";
    }
    const DiskStats disk = LinuxSystemSampler().disk();
    EXPECT_EQ(disk.totalBytes, size);
    // The two reads are a moment apart; other programs may write in between.
    EXPECT_NEAR(static_cast<double>(disk.availableBytes), static_cast<double>(avail), 64e6);
    EXPECT_NEAR(static_cast<double>(disk.usedBytes()), static_cast<double>(used), 64e6);
    EXPECT_EQ(disk.freeBytes, disk.availableBytes);
    EXPECT_EQ(disk.usedBytes() + disk.availableBytes + disk.reservedBytes, disk.totalBytes);
    // df rounds its Use% up.
    EXPECT_NEAR(disk.usagePercent(), percent - 0.5, 0.6);
}

TEST(LinuxSystemSamplerTest, LiveProcessorsMatchTheOnlineCount) {
    const long online = ::sysconf(_SC_NPROCESSORS_ONLN);
    EXPECT_EQ(static_cast<long>(LinuxSystemSampler().processorTicks().size()), online);
}

} // namespace
} // namespace sondrel
