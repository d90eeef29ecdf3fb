#pragma once

#include <QObject>
#include <QString>
#include <algorithm>
#include <vector>

#include "forms/check_list_model.h"
#include "platform/file_system.h"

// The size of each line of the other-files list, kept between calls so that a change of check
// mark adds up known numbers instead of asking the disk about every listed file.
namespace tidewick {

class SizeCache {
public:
    /// Follows the list from here on: any line added to or cleared from it is seen before the
    /// next question.
    SizeCache(CheckListModel& unused, const FileSystem& fs);

    // The sizes of the other-files lines, each resolved against the session folder.

    /// Records the size of the last `sizes.size()` lines, just appended: what their listing
    /// found for the files that `sessionFolder` joined with each line names; −1 for not known.
    void appendedSizes(const QString& sessionFolder, const std::vector<qint64>& sizes);
    /// Forgets the size of one line: it is read from the disk again at the next total.
    void forgetSize(int row);
    /// Forgets every size: each line is read from the disk again at the next total.
    void forgetAll() { std::fill(sizes_.begin(), sizes_.end(), -1); }

    struct Totals {
        qint64 listed = 0;
        qint64 checked = 0;
    };
    /// The sum of the sizes of all lines and of the checked lines. A line whose size is not
    /// known is read now: the length of the file it names (otherFilePath), 0 when it has none.
    Totals totals(const QString& sessionFolder);

private:
    void useSessionFolder(const QString& sessionFolder);

    CheckListModel& unused_;
    const FileSystem& fs_;
    QObject context_;  // ends the list connections with this object

    QString sizesFolder_;
    std::vector<qint64> sizes_;  // one per line of the other-files list; −1 not known
};

}  // namespace tidewick
