#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>
#include <optional>

#include "fileops/overwrite_answer.h"
#include "platform/file_system.h"
#include "platform/result.h"
#include "settings/settings_store.h"

// What the program keeps of its user between runs, as one value: read once when the main window
// loads, written once when it unloads.
namespace tidewick {

struct Preferences {
    /// The main window's top-left corner, in twips.
    QPoint windowPlace;
    bool trimFolders = false;       ///< "Ignore Leading Folder names"
    bool keepPeaks = false;         ///< "Keep Used ... Files"
    bool checkAllFiles = false;     ///< "Check All ... files"
    bool storeInSubFolder = false;  ///< "Store in sub-folder ..."
    QString lastFolder;             ///< the folder the session browser shows
    QString moveFolder;             ///< the move's target folder
    QString copyFolder;             ///< the folder of the last copy of used files
    /// The active tab as the store numbers it: 1 SES, 2 XML, 3 SESX, 4 RPP, 5 VEG.
    int activeFileTab = 1;
    /// The exclusion list: names and wildcard patterns whose files the move leaves in place.
    QStringList excludedFiles;
    /// The overwrite question's button pressed last, which has the focus at the next question.
    /// It lasts for one run of the program and is not stored: every run starts at "&Yes".
    OverwriteAnswer lastOverwriteAnswer = OverwriteAnswer::Yes;

    bool operator==(const Preferences&) const = default;
};

/// The number under which "ActiveFileTab" stores a tab key: 1 "SESFiles", 2 "XMLFiles",
/// 3 "SESXFiles", 4 "RPPFiles", 5 "VEGFiles", 6 "MoreFiles"; 0 for any other key.
int activeFileTabNumber(const QString& tabKey);
/// The tab key that "ActiveFileTab" number `number` stands for; empty outside 1 to 6.
QString activeFileTabKey(int number);
/// The key of exclusion entry `position`: "File00001" for the first.
QString exclusionKey(int position);

/// Reads the preferences from `store`, in the order the store lists them: a missing value, or
/// one that is no value of its setting (a hand-edited store may hold anything), gives the
/// default; a folder that no longer exists gives the current directory of `fs`.
Preferences loadPreferences(SettingsStore& store, const FileSystem& fs);

/// Writes `preferences` to `store`, unless it holds exactly them already, so that a run that
/// changes nothing leaves the store alone. Every section is written afresh (a removed exclusion
/// goes); the first refused write ends the save, with an error whose cause names what could not
/// be written ("the settings file /home/me/.config/Tidewick/Tidewick.conf").
Result<void> savePreferences(SettingsStore& store, const Preferences& preferences);

}  // namespace tidewick
