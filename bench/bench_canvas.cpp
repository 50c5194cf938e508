// Repaints of the storage canvases into an image with the software rasteriser, as the offscreen
// software renderer does: the treemap with 5,000 tiles in 1600 x 1000, and the rings of a folder
// deep enough to fill the middle ring. "Full" redraws every shape (what follows a change of
// size, folder, threshold or theme; the shapes themselves are not recomputed); "Hover" is the
// repaint after a pointer move or a selection: the cached layer plus the emphasised shapes.
// Times are wall clock; the CPU column counts every thread of the process, so work handed to
// Qt's thread pool shows there too.
#include "app/storage_navigator.h"
#include "ui/src/color_rings_canvas_view.h"
#include "ui/src/treemap_canvas_view.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <benchmark/benchmark.h>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace sondrel;

constexpr int kWidth = 1600;
constexpr int kHeight = 1000;

// A folder of `children` items; each folder child holds `grandchildren` files and each of
// those levels repeats `depth` times. Sizes have a long tail; categories vary.
FileNode* buildFolder(NodeArena& arena, std::mt19937_64& rng, int children, int grandchildren,
                      int depth) {
    std::lognormal_distribution<double> size(14.0, 1.2);
    std::uniform_int_distribution<int> category(0, 8);
    std::vector<FileNode*> nodes;
    std::int64_t total = 0;
    for (int i = 0; i < children; ++i) {
        FileNode* node = nullptr;
        if (depth > 0) {
            node = buildFolder(arena, rng, grandchildren, grandchildren, depth - 1);
        } else {
            node = arena.create("file.bin", false, static_cast<std::int64_t>(size(rng)) + 1, 1,
                                static_cast<FileCategory>(category(rng)));
        }
        nodes.push_back(node);
        total += node->size;
    }
    sortBySizeDescending(nodes);
    FileNode* folder = arena.create("folder", true, total);
    setChildren(folder, nodes);
    return folder;
}

struct Scene {
    std::shared_ptr<FileTree> tree = std::make_shared<FileTree>("/bench");
    StorageNavigator navigator;

    Scene(int children, int grandchildren, int depth) {
        std::mt19937_64 rng(11);
        tree->setRoot(buildFolder(tree->arena(), rng, children, grandchildren, depth));
        navigator.setRoot(FileItem::rootOf(tree));
    }
};

// Wall-clock time, with the CPU time of every thread of the process beside it.
void wallClock(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

template <typename Canvas>
void repaint(benchmark::State& state, int children, int grandchildren, int depth, bool full) {
    Scene scene(children, grandchildren, depth);
    Canvas canvas;
    canvas.setNavigator(&scene.navigator);
    scene.navigator.setSelectedItem(scene.navigator.currentFolder().children().front());
    // Switching between two theme holders marks the cached layer stale without new shapes.
    QObject themes[2];
    int theme = 0;
    canvas.setSize(QSizeF(kWidth, kHeight));
    QImage image(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    {
        QPainter warm(&image);
        canvas.paint(&warm); // computes the shapes and renders the icons once
    }
    for (auto _ : state) {
        if (full) {
            canvas.setTheme(&themes[theme ^= 1]);
        }
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing, true);
        canvas.paint(&painter);
    }
    state.counters["shapes"] = canvas.shapeCount();
}

void BM_TreemapFullRepaint(benchmark::State& state) {
    repaint<TreemapCanvasView>(state, 5'000, 0, 0, true);
}
BENCHMARK(BM_TreemapFullRepaint)->Apply(wallClock);

void BM_TreemapHoverRepaint(benchmark::State& state) {
    repaint<TreemapCanvasView>(state, 5'000, 0, 0, false);
}
BENCHMARK(BM_TreemapHoverRepaint)->Apply(wallClock);

// 18 folders of 30 folders of 30 files: the middle ring as full as its 0.6 degree minimum sweep
// allows (the minimum sweeps cap a ring view at roughly 1,400 sectors).
void BM_ColorRingsFullRepaint(benchmark::State& state) {
    repaint<ColorRingsCanvasView>(state, 18, 30, 2, true);
}
BENCHMARK(BM_ColorRingsFullRepaint)->Apply(wallClock);

void BM_ColorRingsHoverRepaint(benchmark::State& state) {
    repaint<ColorRingsCanvasView>(state, 18, 30, 2, false);
}
BENCHMARK(BM_ColorRingsHoverRepaint)->Apply(wallClock);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
