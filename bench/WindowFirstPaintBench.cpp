#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QSettings>
#include <benchmark/benchmark.h>

#include "MibrelMac/App/MibrelApp.h"
#include "MibrelMac/State/Tools/Coding/MibrelCodingPresenter.h"
#include "MibrelMac/Views/Coding/MibrelCodingView.h"
#include "MibrelMac/Views/MibrelMainWindow.h"
#include "MibrelMac/Views/MibrelQtPanels.h"
#include "Platform/Foundation/EnumRawValues.h"
#include "tools/generator/MibrelProjectGenerator.h"

// The window on a large project, each step timed to its first painted frame (offscreen):
// opening the project, a keystroke in the source filter, a change of tool, and a long
// transcript opened and scrolled.
namespace mibrel::bench {
namespace {
namespace fs = std::filesystem;

constexpr std::int64_t kLongTranscript = 5'000;

// 2,000 sources of 200 segments, 500 codes, 100,000 applications; the first source's
// transcript is stretched to 5,000 timed segments.
fs::path writeLargeProject(const fs::path& folder) {
    dev::GeneratedProjectSize size;
    size.sources = 2'000;
    size.segments = 200;
    size.codes = 500;
    size.applications = 100'000;
    size.quotes = 2'000;
    size.auditEvents = 5'000;
    dev::GeneratedProject project = dev::generateProject(size);
    auto& segments = project.transcripts.at(project.sources.front().id).segments;
    const auto original = segments;
    for (std::int64_t i = 0; static_cast<std::int64_t>(segments.size()) < kLongTranscript; ++i) {
        TranscriptSegment copy = original[static_cast<std::size_t>(i) % original.size()];
        copy.id = "long-" + std::to_string(i);
        segments.push_back(std::move(copy));
    }
    for (std::size_t i = 0; i < segments.size(); ++i) {
        segments[i].start = 4.0 * static_cast<double>(i);
        segments[i].end = 4.0 * static_cast<double>(i) + 3.5;
    }
    fs::remove_all(folder);
    fs::create_directories(folder);
    const fs::path location = folder / "Large.mvibrl";
    dev::writeProject(project, location);
    return location;
}

struct Window {
    fs::path folder = fs::temp_directory_path() / "mibrel-bench-window";
    fs::path project = writeLargeProject(folder);
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelQtPanels panels;
    MibrelApp app{panels, settings, {}};
    MibrelMainWindow window{app, panels, settings};

    Window() {
        window.resize(1440, 900);
        window.show();
        paint();
    }
    ~Window() { fs::remove_all(folder); }

    // Lays out and paints the whole window once, as the next frame would.
    void paint() {
        QCoreApplication::processEvents();
        benchmark::DoNotOptimize(window.grab());
    }

    void open() {
        app.session().open(project);
        paint();
    }

    QLineEdit* filter() { return window.findChild<QLineEdit*>(QStringLiteral("shellSourceFilter")); }
    QListView* transcript() { return window.findChild<QListView*>(QStringLiteral("transcriptSegments")); }
};

// Made on first use and dropped before the application object, which its widgets need.
std::unique_ptr<Window> shared;

Window& window() {
    if (!shared) shared = std::make_unique<Window>();
    return *shared;
}

void BM_OpenProjectToShell(benchmark::State& state) {
    Window& w = window();
    for (auto _ : state) {
        state.PauseTiming();
        w.app.session().close();
        w.paint();
        state.ResumeTiming();
        w.open();
    }
}
BENCHMARK(BM_OpenProjectToShell)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

// Typing "Interview 1999" one character at a time; each keystroke refilters 2,000 labels.
void BM_FilterKeystroke(benchmark::State& state) {
    Window& w = window();
    if (!w.app.session().manifest()) w.open();
    const QString typed = QStringLiteral("Interview 1999");
    qsizetype next = 0;
    for (auto _ : state) {
        if (next == typed.size()) {
            state.PauseTiming();
            w.filter()->clear();
            w.paint();
            next = 0;
            state.ResumeTiming();
        }
        w.filter()->setText(typed.left(++next));
        w.paint();
    }
    w.filter()->clear();
}
BENCHMARK(BM_FilterKeystroke)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(28);

void BM_SwitchTool(benchmark::State& state) {
    Window& w = window();
    if (!w.app.session().manifest()) w.open();
    const auto tools = platform::allCases<MibrelTool>();
    const MibrelTool tool = tools[static_cast<std::size_t>(state.range(0))];
    const MibrelTool away = tool == MibrelTool::firstRead ? MibrelTool::report : MibrelTool::firstRead;
    state.SetLabel(std::string(platform::rawValue(tool)));
    for (auto _ : state) {
        state.PauseTiming();
        w.app.shellUI().setSelectedTool(away);
        w.paint();
        state.ResumeTiming();
        w.app.shellUI().setSelectedTool(tool);
        w.paint();
    }
}
BENCHMARK(BM_SwitchTool)->DenseRange(0, 10)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

void selectSource(Window& w, std::size_t index) {
    w.app.shellUI().setSelectedTool(MibrelTool::sources);
    w.app.sourcesState().select(w.app.sourcesState().sources().at(index).id);
    w.paint();
}

void BM_OpenLongTranscript(benchmark::State& state) {
    Window& w = window();
    if (!w.app.session().manifest()) w.open();
    for (auto _ : state) {
        state.PauseTiming();
        selectSource(w, 1);
        state.ResumeTiming();
        selectSource(w, 0);
    }
}
BENCHMARK(BM_OpenLongTranscript)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

// One page down the 5,000-segment transcript, painted.
void BM_ScrollLongTranscript(benchmark::State& state) {
    Window& w = window();
    if (!w.app.session().manifest()) w.open();
    selectSource(w, 0);
    // Scrolling is measured once the rows are laid out, which the list does in batches
    // between frames after the first paint.
    for (int pass = 0; pass < 200; ++pass) QCoreApplication::processEvents();
    QScrollBar* bar = w.transcript()->verticalScrollBar();
    for (auto _ : state) {
        if (bar->value() >= bar->maximum()) bar->setValue(0);
        bar->setValue(bar->value() + bar->pageStep());
        w.paint();
    }
}
BENCHMARK(BM_ScrollLongTranscript)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(40);

// Read & Code on the 5,000-segment source with 500 codes: the selection moved one row, the
// active code applied to it until its chip shows (the workspace's save included), and undone.
MibrelCodingPresenter& codingOnLongSource(Window& w) {
    if (!w.app.session().manifest()) w.open();
    w.app.sourcesState().select(w.app.sourcesState().sources().at(0).id);
    w.app.shellUI().setSelectedTool(MibrelTool::coding);
    w.paint();
    return w.window.findChild<MibrelCodingView*>()->presenter();
}

void BM_CodingMoveSelection(benchmark::State& state) {
    Window& w = window();
    MibrelCodingPresenter& coding = codingOnLongSource(w);
    for (auto _ : state) {
        if (coding.selectedRow().value_or(0) + 1 >= coding.rowCount()) coding.select(0);
        coding.moveSelection(1);
        w.paint();
    }
}
BENCHMARK(BM_CodingMoveSelection)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(40);

void BM_CodingApplyActiveCode(benchmark::State& state) {
    Window& w = window();
    MibrelCodingPresenter& coding = codingOnLongSource(w);
    std::size_t row = 100;
    const std::size_t before = w.app.workspaceState().workspace().applications.size();
    for (auto _ : state) {
        coding.applyActiveCode(++row);
        w.paint();
    }
    // Each apply must have added one application, or the figure would measure nothing.
    const std::size_t added = w.app.workspaceState().workspace().applications.size() - before;
    if (added != state.iterations()) state.SkipWithError("an apply added nothing");
}
BENCHMARK(BM_CodingApplyActiveCode)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);

void BM_CodingUndoApply(benchmark::State& state) {
    Window& w = window();
    MibrelCodingPresenter& coding = codingOnLongSource(w);
    std::size_t row = 2'000;
    for (auto _ : state) {
        state.PauseTiming();
        coding.applyActiveCode(++row);
        w.paint();
        state.ResumeTiming();
        w.app.workspaceState().undo();
        w.paint();
    }
}
BENCHMARK(BM_CodingUndoApply)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);

} // namespace
} // namespace mibrel::bench

int main(int argc, char** argv) {
    // Painted offscreen unless a display is asked for.
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    mibrel::bench::shared.reset();
    return 0;
}
