#pragma once

#include <QString>
#include <QStringList>

// The name patterns of the "File Types" drop-down list and of the session-file list, as the
// listings apply them.
namespace tidewick {

/// The single patterns of a pattern list, without blanks: "*.mid; *.rmi" gives *.mid and *.rmi.
QStringList splitPatternList(const QString& patternList);

/// A pattern list as the lister applies it: "*.mid; *.rmi" selects the files of either pattern
/// (blanks around each pattern do not count), letter case never counts, and "*.*" selects every
/// file, also one without an extension, as on the platform the behaviour comes from. Each
/// pattern is matched by wildcardMatch.
class PatternList {
public:
    explicit PatternList(const QString& patternList);

    bool isEmpty() const { return filters_.isEmpty(); }
    /// True when the list selects every file ("*.*" or "*"), so no name needs a test.
    bool matchesEveryName() const { return everyName_; }
    /// True when `fileName` matches one of the patterns.
    bool matches(const QString& fileName) const;
    /// The patterns as QDir name filters.
    const QStringList& nameFilters() const { return filters_; }

private:
    QStringList filters_;
    QStringList upperFilters_;
    // For each pattern that is "*" and an ASCII text without wildcards ("*.SESX"), that text:
    // an ASCII name matches it when it ends with it, letter case aside. Empty for the others.
    QStringList endings_;
    bool everyName_ = false;
};

}  // namespace tidewick
