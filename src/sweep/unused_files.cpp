#include <vector>

#include "platform/path_text.h"
#include "platform/wildcard.h"
#include "readers/session_kinds.h"
#include "sweep/folder_lister.h"
#include "sweep/main_form.h"
#include "sweep/sweep_index.h"

// The other files of the session folder that no scanned session uses: "Files to be Moved".
namespace tidewick {

namespace {

bool isAuditionKind(SessionKindId id) {
    return id == SessionKindId::Ses || id == SessionKindId::Xml || id == SessionKindId::Sesx;
}

// REAPER and Vegas name their peak files after the whole media name (song.wav.reapeaks), and
// compare a used line without a folder with the candidate shortened once more.
bool isProjectKind(SessionKindId id) {
    return id == SessionKindId::Rpp || id == SessionKindId::Veg;
}

}  // namespace

std::shared_ptr<MainForm::SweepIndex> MainForm::makeSweepIndex() {
    return std::make_shared<SweepIndex>(UsedFiles, UnusedFiles);
}

void MainForm::UpdateUnusedFileSpec() {
    QString mpath = SESDir.text();
    AddBackslash(mpath);
    UnusedFiles.clear();

    const SessionKind* kind = sessionKindByKey(selectedTabKey());
    QString extn = FileTypePatterns.value(FileTypesCombo.listIndex());
    const QString selected = SESFile.items().value(SESFile.listIndex());
    if (kind != nullptr) {
        QString noFolder;
        if (kind->id == SessionKindId::Rpp) {
            QString ignore = state.CheckAllFiles ? QStringLiteral("*.rpp") : selected;
            FillUnused(mpath, noFolder, extn, ignore);
            QString subFolder = trimBlanks(SubFolderName.text());
            if (SubFolderCheck.checked() && FSO.FolderExists(subFolder)) {
                ui().processEvents();
                QString projectFolder = SESFile.text();
                AddBackslash(projectFolder);
                FillUnused(projectFolder, subFolder, extn, ignore);
            }
        } else {
            QString ignore = state.CheckAllFiles ? kind->sessionPattern : selected;
            FillUnused(mpath, noFolder, extn, ignore);
        }

        if (isAuditionKind(kind->id)) {
            // Each scanned session's recordings folder: mix_Recorded for mix.ses.
            const QStringList sessions = SESFile.items();
            for (int i = state.ScanFirst; i <= state.ScanLast; ++i) {
                if (i < 0 || i >= sessions.size()) {
                    continue;
                }
                QString recorded =
                    GetBaseName(sessions.at(i)) + state.RecordFolder + hostSeparator();
                QString ignore = state.CheckAllFiles ? QString() : selected;
                FillUnused(mpath, recorded, extn, ignore);
            }
        }
    }

    if (SubFolderCheck.enabled() && SubFolderCheck.checked()) {
        QString subFolder = SubFolderName.text();
        QString ignore = state.CheckAllFiles
                             ? QStringLiteral("*.") +
                                   FileTypeTab.items().value(FileTypeTab.listIndex()).toLower()
                             : selected;
        FillUnused(mpath, subFolder, extn, ignore);
    }
    UnusedFilesBox.setListIndex(-1);
}

void MainForm::FillUnused(QString& mpath, QString& sFolder, QString& extn,
                          QString& sesFileToIgnore) {
    const SessionKind* kind = sessionKindByKey(selectedTabKey());
    const bool reaper = kind != nullptr && kind->id == SessionKindId::Rpp;

    // In the REAPER sub-folder mode sFolder is an absolute folder, listed as it is and put in
    // front of each name.
    bool subFolderMode = false;
    if (reaper && SubFolderCheck.checked()) {
        ReplaceAll(QStringLiteral("\""), state.RecordFolder, QString());
        subFolderMode = FSO.FolderExists(trimBlanks(state.RecordFolder));
    }

    QString folder;
    if (subFolderMode) {
        folder = sFolder.isEmpty() ? mpath : AddBackslash(sFolder);
    } else {
        folder = mpath + sFolder;
        if (!FSO.FolderExists(folder)) {
            return;  // a session without a recordings folder: nothing, not even the pointer
        }
    }

    ui().setBusyPointer(true);
    DummyFileList.setText(folder);
    const bool keepPeaks = KeepPKCheck.checked();
    // Only "All Files" enables KeepPKCheck, and only then can peak files be listed at all.
    const bool peakPass = kind != nullptr && KeepPKCheck.enabled();
    const PatternList wanted(extn);
    const PatternList peaks(peakPass ? QStringLiteral("*.") + kind->peakExtension : QString());
    // One reading of the folder serves both passes.
    const QFileInfoList files = listFolderFiles(folder, wanted.nameFilters() + peaks.nameFilters());

    // A line resolves against the session folder; where the listed folder is the one a line
    // names, the listing's size is the line's size and needs no second look at the disk.
    QString sessionFolder = SESDir.text();
    AddBackslash(sessionFolder);
    const bool listedSizesHold = sessionFolder + sFolder == folder;

    QList<CheckItem> lines;
    std::vector<qint64> sizes;
    const auto append = [&](const QString& text, const QFileInfo& file) {
        lines.append({text, false});
        sizes.push_back(listedSizesHold ? file.size() : -1);
    };
    const auto flush = [&] {
        UnusedFiles.addItems(lines);
        sweepIndex_->appendedSizes(sessionFolder, sizes);
        lines.clear();
        sizes.clear();
    };

    if (kind != nullptr) {
        // A name ending in the peak extension is exactly a name whose extension equals it, and
        // exactly a name that the peak pattern selects: the two passes never meet, and each
        // name of the folder comes once, so neither pass can add a text twice.
        const QString peakSuffix = QLatin1Char('.') + kind->peakExtension;
        const QString ignoreUpper = sesFileToIgnore.toUpper();
        // Copies share the index's data and stay valid if it is rebuilt meanwhile.
        const QSet<QString> usedLines = sweepIndex_->usedLines();
        const QSet<QString> usedWithFolder = sweepIndex_->usedLinesWithFolder();
        const QSet<QString> usedBare = sweepIndex_->usedBareLines();

        // A used line equal to the candidate ignoring case makes the file used. A used line
        // without a folder part names a file of the session folder (that is where the load
        // looked for it), so it is compared with the candidate shortened once more. Every kind
        // does this: were a bare name compared with the whole candidate, a file the session
        // uses, shown checked in the used list, would be offered for moving as well. Without
        // bare lines, shortening or REAPER's folder rules the test needs only the name
        // upper-cased per file.
        const bool plainCandidate = !reaper && !state.TrimFoldersFlag && usedBare.isEmpty();
        const QString plainPrefixUpper = (mpath + sFolder).toUpper();
        const auto isUsed = [&](const QString& name, const QString& nameUpper) {
            if (plainCandidate) {
                return usedLines.contains(plainPrefixUpper + nameUpper);
            }
            QString candidate;
            if (reaper) {
                candidate = subFolderMode && !sFolder.isEmpty()
                                ? AddBackslash(sFolder) + name
                                : AddBackslash(mpath) + sFolder + name;
            } else {
                candidate = mpath + sFolder + name;
            }
            if (state.TrimFoldersFlag) {
                candidate = TrimFolders(candidate);
            }
            return usedWithFolder.contains(candidate.toUpper()) ||
                   (!usedBare.isEmpty() && usedBare.contains(TrimFolders(candidate).toUpper()));
        };

        QList<qsizetype> peakFiles;
        for (qsizetype i = 0; i < files.size(); ++i) {
            const QFileInfo& file = files.at(i);
            const QString name = file.fileName();
            if (name.endsWith(peakSuffix, Qt::CaseInsensitive)) {
                if (peakPass) {
                    peakFiles.append(i);
                }
                continue;  // peak files have their own pass
            }
            if (!wanted.matchesEveryName() && !wanted.matches(name)) {
                continue;  // listed for the peak pass only
            }
            const QString text = sFolder + name;
            if (UnusedFiles.contains(text)) {
                continue;
            }
            const QString nameUpper = name.toUpper();
            if (!ignoreUpper.isEmpty() && wildcardMatch(nameUpper, ignoreUpper)) {
                continue;
            }
            if (isUsed(name, nameUpper)) {
                continue;
            }
            append(text, file);
        }
        flush();

        if (peakPass) {
            // REAPER and Vegas peak names carry the media's whole name (song.wav.reapeaks).
            const bool secondTrim = isProjectKind(kind->id);
            if (secondTrim) {
                ui().processEvents();
            }
            // A peak file belongs to the used media of the same base name: song.pk to song.wav,
            // and for REAPER and Vegas song.wav.reapeaks to song.flac as well as to song.wav.
            const QSet<QString> owners =
                keepPeaks ? sweepIndex_->peakOwners(secondTrim) : QSet<QString>();
            for (const qsizetype i : peakFiles) {
                const QFileInfo& file = files.at(i);
                const QString name = file.fileName();
                QString base = GetBaseName(name);
                if (secondTrim) {
                    base = GetBaseName(base);
                }
                if (keepPeaks && owners.contains(base.toUpper())) {
                    continue;
                }
                const QString text = sFolder + name;
                if (!UnusedFiles.contains(text)) {
                    append(text, file);
                }
            }
            flush();
        }
    }
    ui().setBusyPointer(false);
}

void MainForm::KeepPKCheck_Click() {
    if (SESFile.listIndex() >= 0) {
        UpdateUnusedFileSpec();
    }
    UpdateSizes();
}

void MainForm::ExcludedCheck_Click() {
    // The exclusion list is applied by the move, not here: the list keeps showing such files.
    Q_EMIT focusRequested(QStringLiteral("UnusedFiles"));
    if (ExcludedCheck.checked()) {
        Q_EMIT exclusionEditorRequested();
    }
}

}  // namespace tidewick
