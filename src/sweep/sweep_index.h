#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <vector>

#include "sweep/main_form.h"

// What the other-files list and its sizes line keep between calls so that neither has to scan a
// whole list per file: hash sets over the used-media lines, and the size of each other file.
namespace tidewick {

class MainForm::SweepIndex {
public:
    /// Follows the two lists from here on: any line added to or cleared from either list is
    /// seen before the next question.
    SweepIndex(CheckListModel& used, CheckListModel& unused);

    // The used-media lines, upper-cased; rebuilt once after the list has changed.

    /// Every line.
    const QSet<QString>& usedLines();
    /// The lines with a folder part (GetParentFolderName not empty).
    const QSet<QString>& usedLinesWithFolder();
    /// The lines without a folder part.
    const QSet<QString>& usedBareLines();
    /// The base names of the lines whose extension is "wav", or with `anyMedia` one of "wav",
    /// "wv", "ape", "aif", "flac", "mp3", "ogg": the media a peak file can belong to.
    const QSet<QString>& peakOwners(bool anyMedia);

    // The sizes of the other-files lines, each resolved against the session folder.

    /// Records the size of the last `sizes.size()` lines, just appended: what their listing
    /// found for the files that `sessionFolder` joined with each line names; −1 for not known.
    void appendedSizes(const QString& sessionFolder, const std::vector<qint64>& sizes);
    /// Forgets the size of one line: it is read from the disk again at the next total.
    void forgetSize(int row);

    struct Totals {
        qint64 listed = 0;
        qint64 checked = 0;
    };
    /// The sum of the sizes of all lines and of the checked lines. A line whose size is not
    /// known is read now: its length when `sessionFolder` joined with it names a file, else 0.
    Totals totals(const QString& sessionFolder);

private:
    void rebuildUsed();
    void useSessionFolder(const QString& sessionFolder);

    CheckListModel& used_;
    CheckListModel& unused_;
    QObject context_;  // ends the list connections with this object

    bool usedValid_ = false;
    QSet<QString> usedLines_;
    QSet<QString> usedWithFolder_;
    QSet<QString> usedBare_;
    QSet<QString> wavOwners_;
    QSet<QString> mediaOwners_;

    QString sizesFolder_;
    std::vector<qint64> sizes_;  // one per line of the other-files list; −1 not known
};

}  // namespace tidewick
