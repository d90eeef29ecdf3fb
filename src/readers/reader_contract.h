#pragma once

#include <QByteArrayView>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include "platform/file_system.h"
#include "platform/interaction.h"

// What every session reader hands on, and the program-wide values the readers and the sweep
// share. There is one ProgramState per program run, passed to whatever needs it.
namespace tidewick {

/// The media paths of the session just read, in the order first met, never the same text twice
/// (letter case counts). The set beside the list keeps the duplicate test constant-time.
class MediaPathList {
public:
    /// Appends `path` unless the list holds it already; returns whether it was appended.
    bool appendUnique(const QString& path) {
        if (seen_.contains(path)) {
            return false;
        }
        seen_.insert(path);
        paths_.append(path);
        return true;
    }
    void clear() {
        paths_.clear();
        seen_.clear();
    }
    const QStringList& paths() const { return paths_; }
    qsizetype size() const { return paths_.size(); }
    bool isEmpty() const { return paths_.isEmpty(); }

private:
    QStringList paths_;
    QSet<QString> seen_;
};

/// A 4-byte identifier of a binary session ("FILE", "LIST", "vers"), held without allocating.
struct FourCC {
    char bytes[4] = {0, 0, 0, 0};

    static FourCC from(QByteArrayView text) {
        FourCC id;
        for (qsizetype i = 0; i < 4 && i < text.size(); ++i) {
            id.bytes[i] = text[i];
        }
        return id;
    }
    QByteArrayView view() const { return QByteArrayView(bytes, 4); }
    bool operator==(const FourCC&) const = default;
    bool operator==(QByteArrayView text) const { return view() == text; }
};

/// One file entry of a binary session, in file order; duplicates stay.
struct SesMediaRecord {
    qint32 EntryValue = 0;  ///< the value that follows the entry's header
    QString FileName;       ///< the name, cut to 255 characters; readers of it trim blanks
    FourCC ChunkID;         ///< the entry's identifier

    bool operator==(const SesMediaRecord&) const = default;
};

/// The values that live for the whole run and that several subsystems read and write.
struct ProgramState {
    MediaPathList MediaPaths;               ///< written by the text and Vegas readers
    QList<SesMediaRecord> SesMediaRecords;  ///< written by the binary session reader
    QString SesVersion;                     ///< version text of the last binary session read
    QString RecordFolder;          ///< the session's recordings folder (see the session kinds)
    bool CheckAllFiles = false;    ///< true while every session of the folder is read at once
    bool TrimFoldersFlag = false;  ///< true while "Ignore Leading Folder names" is checked
    qint16 ScanFirst = 0;          ///< first session-list index of the next load
    qint16 ScanLast = -1;          ///< last session-list index of the next load
};

/// How a read ended.
enum class ReaderOutcome {
    Read,      ///< the file was read, with or without media
    Rejected,  ///< the file is not a session of this kind; the reader has said so if it says so
    Failed,    ///< the file could not be read; the reader has reported it
};

/// What a reader works with besides the file.
struct ReaderContext {
    ProgramState& state;
    UserInteraction& ui;
    const FileSystem& fs;
    /// The folder that the session-file list shows, where the session lives.
    QString sessionFolder;
};

}  // namespace tidewick
