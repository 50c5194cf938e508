#pragma once

#include <functional>

namespace sondrel {

/// Runs `work` (a batch of QPainter calls on a QImage) so that Qt's raster engine fills its
/// spans on one thread, and returns when `work` has finished.
///
/// Workaround for the raster engine's parallel span fills in Qt 6.4 (QT_THREAD_PARALLEL_FILLS in
/// qdrawhelper.cpp): every blend of 96 or more spans is cut into segments handed to
/// QThreadPool::globalInstance(), and the caller waits on a semaphore. A canvas draws thousands
/// of such blends, and on two cores the futex hand-offs cost twice the fill itself (a rings
/// repaint measured 49 ms instead of 13 ms). Qt skips the split when the painting thread already
/// belongs to that pool, so `work` runs on one of its threads while the caller waits.
///
/// `work` must only paint on images (no QPixmap, no GUI-thread objects). Runs `work` on the
/// calling thread when the caller is a pool thread already or the pool has no free thread.
/// Blocking: the caller waits for `work`; call it from paint(), never while holding a lock the
/// work needs.
void runWithoutParallelFills(const std::function<void()>& work);

} // namespace sondrel
