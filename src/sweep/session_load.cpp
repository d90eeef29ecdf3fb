#include <QDir>
#include <QList>
#include <QSet>
#include <exception>

#include "platform/path_text.h"
#include "readers/import_ses.h"
#include "readers/session_bytes.h"
#include "readers/session_kinds.h"
#include "sweep/main_form.h"

// Choosing a session: each session file of the scan range goes to the reader of the selected
// kind, and every media path it names is resolved against the session folder and the disk into
// one line of UsedFiles, checked when the file exists.
namespace tidewick {

namespace {

// Whether the root that a path's first character stands for exists. On Windows that is the
// drive letter's root. Elsewhere only "/" is a root: a drive letter or a leading "\" comes from
// a session saved on Windows, and its path is listed unchecked without a look at the disk.
bool driveRootExists(QChar first) {
#ifdef Q_OS_WIN
    return first.isLetter() && QDir(QString(first) + QStringLiteral(":/")).exists();
#else
    return first == u'/';
#endif
}

QChar firstChar(const QString& text) {
    return text.isEmpty() ? QChar() : text.front();
}

// A media path in host form: on a host whose separator is "/", the "\" of a path saved on
// Windows becomes "/", so a relative "Audio\take.wav" resolves inside the session folder.
QString toHostPath(QString path) {
    if (hostSeparator() == u'/') {
        path.replace(u'\\', u'/');
    }
    return path;
}

// The length of extension a session file of a text kind must have to be read: four letters for
// SESX, three for XML, REAPER and Vegas.
qsizetype extensionLength(SessionKindId kind) {
    return kind == SessionKindId::Sesx ? 4 : 3;
}

}  // namespace

QString MainForm::TrimFolders(const QString& fullFileName) const {
    QString folder = GetParentFolderName(fullFileName);
    const QString& record = state.RecordFolder;
    // A folder named after the recordings ("Song_Recorded") stays part of the result; with no
    // RecordFolder the test always holds, so one folder level always stays.
    if (folder.right(record.size()).toUpper() == record.toUpper()) {
        folder = GetParentFolderName(folder);
    }
    // The folder and the separator after it go; that separator may be "\" or "/", whichever
    // the path was written with.
    qsizetype cut = folder.size();
    if (folder.isEmpty() || !isPathSeparator(folder.back())) {
        if (cut >= fullFileName.size() || !isPathSeparator(fullFileName[cut])) {
            return fullFileName;
        }
        ++cut;
    }
    if (fullFileName.startsWith(folder)) {
        return fullFileName.mid(cut);
    }
    return fullFileName;
}

void MainForm::SESFile_Click() {
    // The other-files computation lets window events run, and with them a new selection. It
    // must not write into the lists that the running load is filling, so it waits, and the
    // latest selection is loaded once the running load is over.
    if (load_.running) {
        load_.pending = true;
        return;
    }
    do {
        load_.pending = false;
        load_.running = true;
        const quint64 browserChanges = load_.browserChanges;
        runSessionLoad();
        load_.running = false;
        if (load_.browserChanges != browserChanges) {
            // The drive, folder or tab changed under the load: what it listed belongs to a
            // folder or kind no longer shown.
            UsedFiles.clear();
            UnusedFiles.clear();
            SESVersionLabel.setText({});
            UpdateSelCounter();
        }
    } while (load_.pending);
}

void MainForm::runSessionLoad() {
    const SessionKind* kind = sessionKindByKey(selectedTabKey());
    if (!kind || kind->id == SessionKindId::Veg) {
        kind = &sessionKind(SessionKindId::Veg);  // any other key reads Vegas projects
    }
    const bool ses = kind->id == SessionKindId::Ses;

    if (ses) {
        ui_.setBusyPointer(true);
    }
    const QString savedCaption = Main.text();
    SetScanParams();
    UsedFiles.clear();
    UnusedFiles.clear();

    QString folder = SESFile.text();
    const QString sessionFolder = AddBackslash(folder);  // S
    const QStringList sessionFiles = SESFile.items();
    const bool nothingSelected = !state.CheckAllFiles && SESFile.listIndex() < 0;
    ReaderContext context{state, ui_, FSO, SESFile.text()};
    QString version;
    QString extension;  // of the last session file looked at
    bool stopped = false;

    for (int index = state.ScanFirst; index <= state.ScanLast && !nothingSelected; ++index) {
        if (index < 0 || index >= sessionFiles.size()) {
            continue;
        }
        const QString fullName = sessionFolder + sessionFiles.at(index);
        if (!ses) {
            extension = GetExtensionName(fullName);
            if (extension.size() != extensionLength(kind->id)) {
                continue;
            }
        }
        Main.setText(QStringLiteral("Reading ") + fullName + QStringLiteral("...Please Wait"));

        QStringList paths;
        bool failed = false;
        try {
            if (ses) {
                if (ImportSesFile(fullName, version, true, context)) {
                    if (!state.CheckAllFiles) {
                        ui_.setBusyPointer(false);
                        version.clear();
                        UpdateSizes();
                        SESVersionLabel.setText({});
                        showOk(ui_,
                               u'"' + sessionFiles.at(index) + u'"' +
                                   QStringLiteral(" does not appear to be a valid session file."),
                               QStringLiteral("SES File Error"), MessageIcon::Critical);
                    }
                    continue;
                }
                // After a good probe a true answer is a read error, which the reader has
                // reported; the records it read before are not the whole session.
                failed = ImportSesFile(fullName, version, false, context);
            } else {
                state.MediaPaths.clear();
                failed = kind->reader(fullName, context) == ReaderOutcome::Failed;
            }
            paths = readerMediaPaths(*kind, state);
        } catch (const std::exception& error) {
            // A fault the reader did not trap ends this load, never the program.
            reportFileError(ui_, kind->tabCaption, QString::fromLocal8Bit(error.what()));
            failed = true;
        } catch (...) {
            reportFileError(ui_, kind->tabCaption, QStringLiteral("Unknown error"));
            failed = true;
        }

        // The lines of one session go into the list in one go; the set finds repeats within it.
        QList<CheckItem> lines;
        QSet<QString> seen;
        for (const QString& readPath : paths) {
            const QString path = toHostPath(readPath);
            QString shown;   // the line's text, P
            QString tested;  // the file whose existence sets the check mark
            QChar drive;     // D
            if (state.TrimFoldersFlag) {
                shown = TrimFolders(path);
                tested = sessionFolder + shown;
                drive = firstChar(sessionFolder);
            } else if (ses) {
                shown = tested = path;
                drive = firstChar(readPath);
            } else if (GetParentFolderName(path).isEmpty()) {
                shown = path;  // a bare name lives in the session folder
                tested = sessionFolder + path;
                drive = firstChar(sessionFolder);
            } else if (!path.contains(u':') && !isPathSeparator(firstChar(path))) {
                shown = tested = sessionFolder + path;
                drive = firstChar(sessionFolder);
            } else {
                // A drive path, a rooted one or a network one is taken as it stands; its drive
                // is the one it names, as saved.
                shown = tested = path;
                drive = firstChar(readPath);
            }
            if (UsedFiles.contains(shown) || seen.contains(shown)) {
                continue;
            }
            seen.insert(shown);
            lines.append({shown, driveRootExists(drive) && FSO.FileExists(tested)});
        }
        UsedFiles.addItems(lines);

        if (failed) {
            // Whatever is listed stays, but the other files are not computed from a session
            // that was read only in part: they could hold media that it uses.
            stopped = true;
            break;
        }
        if (UsedFiles.count() == 0 && !state.CheckAllFiles) {
            UsedFiles.addItem(NoMediaText, false);
            UsedFrame.setText(QStringLiteral("0 ") + UsedFrameCaption);
        }
    }

    if (!stopped) {
        UsedFilesBox.setListIndex(-1);
        const bool longExtension =
            extension.size() > extensionLength(kind->id) && !state.CheckAllFiles;
        if (nothingSelected) {
            UnusedFiles.clear();  // without a session every file would look unused
        } else if (ses) {
            UpdateUnusedFileSpec();
        } else if (kind->id == SessionKindId::Rpp) {
            if (longExtension || SESFile.listIndex() < 0) {
                UnusedFiles.clear();
            } else {
                GetRPPSubFolder();
                AddFolder();
            }
        } else if (longExtension) {
            UnusedFiles.clear();
        } else {
            UpdateUnusedFileSpec();
        }
        UpdateSelCounter();
        UpdateSubFolder();
        SetListHorizontalExtent(UsedFiles);
        SetListHorizontalExtent(UnusedFiles);
    }

    if (state.CheckAllFiles) {
        version.clear();
        SESVersionLabel.setText({});
    } else {
        SESVersionLabel.setText(version);
    }
    ui_.setBusyPointer(false);
    Main.setText(savedCaption);
}

void MainForm::UsedFiles_ItemCheck(int item) {
    if (item < 0 || item >= UsedFiles.count()) {
        return;
    }
    QString folder = SESFile.text();
    const QString sessionFolder = AddBackslash(folder);
    ui_.setBusyPointer(true);
    const QString& path = UsedFiles.text(item);
    bool exists = false;
    if (path != NoMediaText || UsedFiles.count() != 1) {
        if (state.TrimFoldersFlag || GetParentFolderName(path).isEmpty()) {
            exists = FSO.FileExists(sessionFolder + path);
        } else {
            exists = FSO.FileExists(path);
        }
    }
    UsedFiles.setChecked(item, exists);
    ui_.setBusyPointer(false);
}

// The window's list views size their horizontal scroll range to their widest line themselves.
void MainForm::SetListHorizontalExtent(CheckListModel& list) {
    Q_UNUSED(list);
}

}  // namespace tidewick
