// CPU load between successive tick readings: first-sample, zero-delta and processor-count rules.

#include "core/monitor/cpu_load_tracker.h"
#include "tests/core/monitor/fixture_text.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::procFixture;

void expectStats(const CPUStats& stats, double user, double system, double idle) {
    EXPECT_NEAR(stats.userPercent, user, 1e-9);
    EXPECT_NEAR(stats.systemPercent, system, 1e-9);
    EXPECT_NEAR(stats.idlePercent, idle, 1e-9);
}

TEST(CpuLoadTrackerTest, RecordedSamplesGiveTheLoadBetweenThem) {
    CpuLoadTracker tracker;
    EXPECT_EQ(tracker.next(parseProcStat(procFixture("debian12-a/stat"))), CPUStats{});
    EXPECT_TRUE(tracker.hasPrevious());
    // cpu0: user +91, system +10, idle +0; cpu1: user +91, system +10, idle +1.
    const CPUStats stats = tracker.next(parseProcStat(procFixture("debian12-b/stat")));
    expectStats(stats, 182.0 / 203 * 100, 20.0 / 203 * 100, 1.0 / 203 * 100);
}

TEST(CpuLoadTrackerTest, NiceCountsAsUser) {
    CpuLoadTracker tracker;
    tracker.next({{100, 100, 100, 100}});
    expectStats(tracker.next({{110, 120, 160, 110}}), 20.0, 20.0, 60.0);
}

TEST(CpuLoadTrackerTest, ZeroDeltaGivesDefault) {
    CpuLoadTracker tracker;
    tracker.next({{100, 50, 1000, 0}, {100, 50, 1000, 0}});
    EXPECT_EQ(tracker.next({{100, 50, 1000, 0}, {100, 50, 1000, 0}}), CPUStats{});
}

TEST(CpuLoadTrackerTest, ProcessorCountChangeRestartsTheComparison) {
    CpuLoadTracker tracker;
    tracker.next(parseProcStat(procFixture("debian12-a/stat")));
    const std::vector<ProcessorTicks> oneCpu =
        parseProcStat(procFixture("debian12-cpu1-offline/stat"));
    ASSERT_EQ(oneCpu.size(), 1u);
    EXPECT_EQ(tracker.next(oneCpu), CPUStats{});
    // The one-processor reading is now the previous one.
    ProcessorTicks later = oneCpu[0];
    later.user += 30;
    later.idle += 70;
    expectStats(tracker.next({later}), 30.0, 0.0, 70.0);
}

TEST(CpuLoadTrackerTest, UnreadableSourceKeepsThePreviousReading) {
    CpuLoadTracker tracker;
    tracker.next({{100, 100, 100, 0}});
    EXPECT_EQ(tracker.next({}), CPUStats{});
    expectStats(tracker.next({{150, 100, 150, 0}}), 50.0, 0.0, 50.0);
}

TEST(CpuLoadTrackerTest, CounterGoingBackwardsAddsNothing) {
    CpuLoadTracker tracker;
    tracker.next({{100, 100, 1000, 0}});
    // idle (with iowait) went back by 5 ticks: only user and system count.
    expectStats(tracker.next({{110, 110, 995, 0}}), 50.0, 50.0, 0.0);
    // Compared against the latest reading, not the one before it.
    expectStats(tracker.next({{110, 110, 1005, 0}}), 0.0, 0.0, 100.0);
}

} // namespace
} // namespace sondrel
