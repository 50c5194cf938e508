#pragma once

#include <functional>
#include <vector>

namespace sondrel {

/// Runs the jobs of `jobs` (batches of QPainter calls, each on its own QImage) on Qt's global
/// thread pool, as many at once as it has free threads, so that Qt's raster engine fills every
/// job's spans on that job's thread; returns when all jobs have finished.
///
/// Workaround for the raster engine's parallel span fills in Qt 6.4 (QT_THREAD_PARALLEL_FILLS in
/// qdrawhelper.cpp): every blend of 96 or more spans is cut into segments handed to
/// QThreadPool::globalInstance(), and the caller waits on a semaphore. A canvas draws thousands
/// of such blends, and on two cores the futex hand-offs cost more than the fill itself (a rings
/// repaint measured 49 ms instead of 13 ms). Qt skips the split when the painting thread already
/// belongs to that pool, so the jobs run on its threads while the caller waits.
///
/// Jobs must only paint on images (no QPixmap), may only read GUI-thread objects (the GUI
/// thread is blocked while a QQuickPaintedItem paints) and must not share objects with lazily
/// filled caches (QPainterPath, QStaticText) with each other. Jobs that find
/// no free thread are run by the jobs that did start; when none could start (or the caller is a
/// pool thread already) all run on the calling thread, one after another. Blocking: call it from
/// paint(), never while holding a lock a job needs.
void runJobsWithoutParallelFills(const std::vector<std::function<void()>>& jobs);

/// runJobsWithoutParallelFills with the single job `work`.
void runWithoutParallelFills(const std::function<void()>& work);

} // namespace sondrel
