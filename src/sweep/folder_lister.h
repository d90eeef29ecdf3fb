#pragma once

#include <QFileInfoList>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

// The folder lister behind the other-files list: the files of one folder whose names match a
// pattern list of the "File Types" drop-down list.
namespace tidewick {

/// A pattern list as the lister applies it: "*.mid; *.rmi" selects the files of either pattern
/// (blanks around each pattern do not count), letter case never counts, and "*.*" selects every
/// file, also one without an extension, as on the platform the behaviour comes from.
class PatternList {
public:
    explicit PatternList(const QString& patternList);

    bool isEmpty() const { return filters_.isEmpty(); }
    /// True when the list selects every file ("*.*" or "*"), so no name needs a test.
    bool matchesEveryName() const { return filters_.contains(QStringLiteral("*")); }
    /// True when `fileName` matches one of the patterns.
    bool matches(const QString& fileName) const;
    /// The patterns as QDir name filters.
    const QStringList& nameFilters() const { return filters_; }

private:
    QStringList filters_;
    QList<QRegularExpression> expressions_;
};

/// The files of `folder` that match any of `nameFilters`, sorted by name ignoring case; one
/// reading of the folder. Ordinary files only, read-only ones and links to files included;
/// hidden files (a leading dot, or the hidden attribute on Windows), sockets, pipes, devices,
/// broken links and folders are left out, like the platform's file list in its default state:
/// what the user does not see in the folder is never offered for moving. Sizes are read when
/// first asked for.
QFileInfoList listFolderFiles(const QString& folder, const QStringList& nameFilters);

}  // namespace tidewick
