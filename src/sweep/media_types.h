#pragma once

#include <QString>
#include <QStringList>

// The media types of the "File Types" drop-down list: which files of a session's folder may be
// listed as other files.
namespace tidewick {

/// The display names and pattern lists of the 24 media types, index for index. A pattern list
/// holds one wildcard pattern or several separated by "; ".
struct MediaTypeTable {
    QStringList FileTypeNames;
    QStringList FileTypePatterns;
};

/// The table, in the order of the drop-down list, made once.
const MediaTypeTable& mediaTypeTable();

/// The line of the drop-down list for entry `index`: "All Files (*.*)".
QString mediaTypeItemText(const MediaTypeTable& table, int index);

}  // namespace tidewick
