// The whole session load (read, resolve, other files, counters) of a folder of 50 000 files
// whose session uses 10 000, against a plain listing with sizes of the same folder; the cost per
// file of the same load at 25 000, 50 000, 100 000 and 200 000 files, which a load linear in its
// folder keeps within 10%, beside the cost per file of the system's own listing (readdir and a
// stat of each name, as `find` lists): what a file costs the kernel grows with its folder too;
// and one check-mark change in a list of 50 000 other files.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <QDir>
#include <QFile>
#include <QSignalBlocker>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

#include "forms/kind_texts.h"
#include "forms/main_form.h"
#include "platform/process_setup.h"
#include "ratio_reporter.h"
#include "readers/session_kinds.h"
#include "session_folder.h"
#include "support/recording_interaction.h"

namespace {

using namespace tidewick;
using bench::kFiles;
using bench::kUsedEvery;
using bench::SessionFolder;

constexpr int kSizes[] = {kFiles / 2, kFiles, 2 * kFiles, 4 * kFiles};

SessionFolder& folder(int files, bool used) {
    static std::map<std::pair<int, bool>, std::unique_ptr<SessionFolder>> folders;
    auto& slot = folders[{files, used}];
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

// The listing the system gives: each name of the folder and a stat of it, on one core.
void rawListing(benchmark::State& state, int files) {
    const QByteArray path = QFile::encodeName(folder(files, true).dir.path());
    for (auto _ : state) {
        qint64 total = 0;
        DIR* dir = ::opendir(path.constData());
        if (dir == nullptr) {
            state.SkipWithError("the folder cannot be listed");
            return;
        }
        while (const dirent* entry = ::readdir(dir)) {
            struct stat info {};
            if (::fstatat(::dirfd(dir), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 &&
                S_ISREG(info.st_mode)) {
                total += info.st_size;
            }
        }
        ::closedir(dir);
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
    plainListing(state, int(state.range(0)));
}
void BM_RawListing(benchmark::State& state) {
    rawListing(state, int(state.range(0)));
}
void BM_SessionLoad(benchmark::State& state) {
    sessionLoad(state, int(state.range(0)));
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

// Runs a benchmark for each folder size, three times over: the figures are the medians, which
// a busy moment of the machine does not move.
void atEachSize(benchmark::internal::Benchmark* runs) {
    for (const int files : kSizes) {
        runs->Arg(files);
    }
    runs->Unit(benchmark::kMillisecond)->MinTime(1.0)->Repetitions(3);
}

BENCHMARK(BM_PlainListing)->Apply(atEachSize);
BENCHMARK(BM_RawListing)->Apply(atEachSize);
BENCHMARK(BM_SessionLoad)->Apply(atEachSize);
BENCHMARK(BM_CheckMarkChange)->Unit(benchmark::kMillisecond)->MinTime(1.0);

}  // namespace

int main(int argc, char** argv) {
    tidewick::prepareProcess();  // the process set up as the programs set theirs up
    benchmark::Initialize(&argc, argv);
    std::printf("folders of %d to %d files, the session using every %dth\n", kSizes[0], kSizes[3],
                kUsedEvery);
    tidewick::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    const auto named = [](const char* name, int files) {
        return std::string(name) + "/" + std::to_string(files);
    };
    const double listing = reporter.seconds(named("BM_PlainListing", kFiles));
    const double load = reporter.seconds(named("BM_SessionLoad", kFiles));
    const double click = reporter.seconds("BM_CheckMarkChange");
    const auto verdict = [](bool ok) { return ok ? "ok" : "MISSED"; };
    if (listing > 0 && load > 0) {
        std::printf("load / plain listing:        %6.1f ms / %6.1f ms = %.2fx (target 3.0x) %s\n",
                    load * 1e3, listing * 1e3, load / listing, verdict(load / listing <= 3.0));
    }
    // Each size against the smallest: how much more a file costs the load, and the system.
    double firstLoad = 0, firstRaw = 0, most = 0, mostRaw = 0, mostAgainstRaw = 0;
    for (const int files : kSizes) {
        const double perFile = reporter.seconds(named("BM_SessionLoad", files)) / files;
        const double listed = reporter.seconds(named("BM_PlainListing", files)) / files;
        const double raw = reporter.seconds(named("BM_RawListing", files)) / files;
        if (perFile <= 0 || listed <= 0 || raw <= 0) {
            continue;
        }
        std::printf(
            "load of %6d files: %.2f us per file (plain listing %.2f us, %.2fx; system's "
            "listing %.2f us)\n",
            files, perFile * 1e6, listed * 1e6, perFile / listed, raw * 1e6);
        firstLoad = firstLoad > 0 ? firstLoad : perFile;
        firstRaw = firstRaw > 0 ? firstRaw : raw;
        most = std::max(most, perFile / firstLoad);
        mostRaw = std::max(mostRaw, raw / firstRaw);
        mostAgainstRaw = std::max(mostAgainstRaw, (perFile / firstLoad) / (raw / firstRaw));
    }
    if (firstLoad > 0) {
        std::printf("most cost per file / at %d files: %.2fx (target 1.1x) %s\n", kSizes[0], most,
                    verdict(most <= 1.1));
        std::printf("the system's own listing, the same: %.2fx\n", mostRaw);
        std::printf("the load's growth against the system's: %.2fx (target 1.1x) %s\n",
                    mostAgainstRaw, verdict(mostAgainstRaw <= 1.1));
    }
    if (click > 0) {
        std::printf("check-mark change, %d lines: %.3f ms (target 16 ms) %s\n", kFiles, click * 1e3,
                    verdict(click * 1e3 < 16.0));
    }
    benchmark::Shutdown();
    return 0;
}
