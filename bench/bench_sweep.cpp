// The whole session load (read, resolve, other files, counters) of a folder of 50 000 files
// whose session uses 10 000, against a plain listing with sizes of the same folder; the same at
// twice the size; and one check-mark change in a list of 50 000 other files.
#include <QDir>
#include <QFile>
#include <QSignalBlocker>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>

#include "forms/kind_texts.h"
#include "forms/main_form.h"
#include "ratio_reporter.h"
#include "readers/session_kinds.h"
#include "session_folder.h"
#include "support/recording_interaction.h"

namespace {

using namespace tidewick;
using bench::kFiles;
using bench::kUsedEvery;
using bench::SessionFolder;

SessionFolder& folder(int files, bool used) {
    static std::unique_ptr<SessionFolder> folders[2][2];
    auto& slot = folders[files == kFiles ? 0 : 1][used ? 1 : 0];
    if (!slot) {
        slot = std::make_unique<SessionFolder>(files, used);
    }
    return *slot;
}

// The main window's logic on the SESX tab with the folder's session selected, not yet loaded.
struct Window {
    RecordingInteraction ui;
    MainForm form{ui};

    explicit Window(const QString& path) {
        form.Form_Load();
        form.browser().pointBrowserAt(path);
        form.browser().selectTabByKey(kindTexts(SessionKindId::Sesx).tabKey);
        form.browser().refreshSessionFiles();
        const QSignalBlocker blocker(form.control(u"SESFile"));
        form.control(u"SESFile").setListIndex(0);
    }
};

void plainListing(benchmark::State& state, int files) {
    const QString path = folder(files, true).dir.path();
    for (auto _ : state) {
        qint64 total = 0;
        const QFileInfoList entries = QDir(path).entryInfoList(QDir::Files, QDir::NoSort);
        for (const QFileInfo& entry : entries) {
            total += entry.size();
        }
        benchmark::DoNotOptimize(total);
    }
}

void sessionLoad(benchmark::State& state, int files) {
    Window window(folder(files, true).dir.path());
    for (auto _ : state) {
        window.form.lists().SESFile_Click();
        if (window.form.lists().usedFiles().count() != files / kUsedEvery ||
            window.form.lists().unusedFiles().count() != files - files / kUsedEvery) {
            state.SkipWithError("the load did not list what it should");
        }
    }
}

void BM_PlainListing(benchmark::State& state) {
    plainListing(state, kFiles);
}
void BM_PlainListingDouble(benchmark::State& state) {
    plainListing(state, 2 * kFiles);
}
void BM_SessionLoad(benchmark::State& state) {
    sessionLoad(state, kFiles);
}
void BM_SessionLoadDouble(benchmark::State& state) {
    sessionLoad(state, 2 * kFiles);
}

// One click on a check mark as the window delivers it: the mark changes (UnusedFiles_ItemCheck
// updates the sizes), then the click updates the counters.
void BM_CheckMarkChange(benchmark::State& state) {
    Window window(folder(kFiles, false).dir.path());
    window.form.lists().SESFile_Click();
    if (window.form.lists().unusedFiles().count() != kFiles) {
        state.SkipWithError("the list does not hold every file");
        return;
    }
    int row = 0;
    for (auto _ : state) {
        const QModelIndex index = window.form.lists().unusedFiles().index(row);
        const bool checked = window.form.lists().unusedFiles().isChecked(row);
        window.form.lists().unusedFiles().setData(index, checked ? Qt::Unchecked : Qt::Checked,
                                                  Qt::CheckStateRole);
        window.form.lists().UnusedFiles_Click();
        row = (row + 7919) % kFiles;
    }
}

BENCHMARK(BM_PlainListing)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_SessionLoad)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_PlainListingDouble)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_SessionLoadDouble)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_CheckMarkChange)->Unit(benchmark::kMillisecond)->MinTime(1.0);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    std::printf("folder: %d files, the session uses %d; doubled: %d and %d\n", kFiles,
                kFiles / kUsedEvery, 2 * kFiles, 2 * kFiles / kUsedEvery);
    tidewick::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    const double listing = reporter.seconds("BM_PlainListing");
    const double load = reporter.seconds("BM_SessionLoad");
    const double loadDouble = reporter.seconds("BM_SessionLoadDouble");
    const double listingDouble = reporter.seconds("BM_PlainListingDouble");
    const double click = reporter.seconds("BM_CheckMarkChange");
    const auto verdict = [](bool ok) { return ok ? "ok" : "MISSED"; };
    if (listing > 0 && load > 0) {
        std::printf("load / plain listing:        %6.1f ms / %6.1f ms = %.2fx (target 3.0x) %s\n",
                    load * 1e3, listing * 1e3, load / listing, verdict(load / listing <= 3.0));
    }
    if (listingDouble > 0 && loadDouble > 0) {
        std::printf("doubled load / plain listing: %6.1f ms / %6.1f ms = %.2fx\n", loadDouble * 1e3,
                    listingDouble * 1e3, loadDouble / listingDouble);
    }
    if (load > 0 && loadDouble > 0) {
        std::printf("doubled folder / folder:     %.2fx (target 2.2x) %s\n", loadDouble / load,
                    verdict(loadDouble / load <= 2.2));
    }
    if (click > 0) {
        std::printf("check-mark change, %d lines: %.3f ms (target 16 ms) %s\n", kFiles, click * 1e3,
                    verdict(click * 1e3 < 16.0));
    }
    benchmark::Shutdown();
    return 0;
}
