#include "settings/preferences.h"

#include <algorithm>
#include <cmath>

namespace tidewick {

namespace {

const QString kWindow = QStringLiteral("WINDOW");
const QString kSettings = QStringLiteral("SETTINGS");
const QString kPaths = QStringLiteral("PATHS");
const QString kExcluded = QStringLiteral("EXCLUDED");

// The tab keys in the order of their "ActiveFileTab" numbers (which is not the tab order).
const QStringList& tabKeysByNumber() {
    static const QStringList keys = {QStringLiteral("SESFiles"),  QStringLiteral("XMLFiles"),
                                     QStringLiteral("SESXFiles"), QStringLiteral("RPPFiles"),
                                     QStringLiteral("VEGFiles"),  QStringLiteral("MoreFiles")};
    return keys;
}

// A hand-edited store may hold anything; a text that is not what a save writes gives the default.

int readPosition(SettingsStore& store, const QString& key) {
    // Only a whole number of twips within reach of any screen is a position; anything else
    // (1e30, inf, nan, the smallest int) would throw the window off every screen, or overflow
    // the sums that place it.
    constexpr double kReach = 1e6;
    bool ok = false;
    const double twips = store.GetSetting(kWindow, key, QStringLiteral("0")).toDouble(&ok);
    return ok && std::isfinite(twips) && std::abs(twips) <= kReach && twips == std::floor(twips)
               ? int(twips)
               : 0;
}

bool readFlag(SettingsStore& store, const QString& key) {
    bool ok = false;
    const double number = store.GetSetting(kSettings, key, QStringLiteral("0")).toDouble(&ok);
    return ok && number != 0;
}

bool readCheckState(SettingsStore& store, const QString& key) {
    bool ok = false;
    const int state = store.GetSetting(kSettings, key, QStringLiteral("0")).toInt(&ok);
    return ok && state == 1;
}

QString flagText(bool flag) {
    return flag ? QStringLiteral("1") : QStringLiteral("0");
}

struct StoredValue {
    QString section;
    QString key;
    QString text;
};

// Every value the store keeps, in the order it lists them.
QList<StoredValue> storedValues(const Preferences& preferences) {
    QList<StoredValue> values = {
        {kWindow, QStringLiteral("Top"), QString::number(preferences.windowPlace.y())},
        {kWindow, QStringLiteral("Left"), QString::number(preferences.windowPlace.x())},
        {kSettings, QStringLiteral("TrimFolders"), flagText(preferences.trimFolders)},
        {kSettings, QStringLiteral("KeepPKFiles"), flagText(preferences.keepPeaks)},
        {kPaths, QStringLiteral("LastFolder"), preferences.lastFolder},
        {kPaths, QStringLiteral("MoveFolder"), preferences.moveFolder},
        {kPaths, QStringLiteral("CopyFolder"), preferences.copyFolder},
        {kSettings, QStringLiteral("CheckAllFiles"), flagText(preferences.checkAllFiles)},
    };
    for (int position = 1; position <= preferences.excludedFiles.size(); ++position) {
        values.append(
            {kExcluded, exclusionKey(position), preferences.excludedFiles.at(position - 1)});
    }
    values.append(
        {kSettings, QStringLiteral("StoreInSubFolder"), flagText(preferences.storeInSubFolder)});
    values.append(
        {kSettings, QStringLiteral("ActiveFileTab"), QString::number(preferences.activeFileTab)});
    return values;
}

// True when the store holds exactly `values`, with no exclusion past the first `exclusions`.
bool holds(SettingsStore& store, const QList<StoredValue>& values, qsizetype exclusions) {
    // U+FFFF is no character, so no stored text is ever equal to it.
    const QString missing(QChar(0xFFFF));
    return store.GetSetting(kExcluded, exclusionKey(int(exclusions) + 1), missing) == missing &&
           std::all_of(values.cbegin(), values.cend(), [&](const StoredValue& value) {
               return store.GetSetting(value.section, value.key, missing) == value.text;
           });
}

}  // namespace

int activeFileTabNumber(const QString& tabKey) {
    return static_cast<int>(tabKeysByNumber().indexOf(tabKey)) + 1;
}

QString activeFileTabKey(int number) {
    return number >= 1 && number <= tabKeysByNumber().size() ? tabKeysByNumber().at(number - 1)
                                                             : QString();
}

QString exclusionKey(int position) {
    return QStringLiteral("File%1").arg(position, 5, 10, QLatin1Char('0'));
}

Preferences loadPreferences(SettingsStore& store, const FileSystem& fs) {
    Preferences preferences;
    preferences.windowPlace.setY(readPosition(store, QStringLiteral("Top")));
    preferences.windowPlace.setX(readPosition(store, QStringLiteral("Left")));
    preferences.trimFolders = readFlag(store, QStringLiteral("TrimFolders"));
    preferences.keepPeaks = readCheckState(store, QStringLiteral("KeepPKFiles"));

    // All three are read before any is checked, as the store lists them.
    const QString current = fs.currentDirectory();
    preferences.lastFolder = store.GetSetting(kPaths, QStringLiteral("LastFolder"), current);
    preferences.moveFolder = store.GetSetting(kPaths, QStringLiteral("MoveFolder"), current);
    preferences.copyFolder = store.GetSetting(kPaths, QStringLiteral("CopyFolder"), current);
    for (QString* folder :
         {&preferences.lastFolder, &preferences.moveFolder, &preferences.copyFolder}) {
        if (!fs.FolderExists(*folder)) {
            *folder = current;
        }
    }

    preferences.checkAllFiles = readFlag(store, QStringLiteral("CheckAllFiles"));
    for (int position = 1;; ++position) {
        const QString entry = store.GetSetting(kExcluded, exclusionKey(position), QString());
        if (entry.isEmpty()) {
            break;
        }
        preferences.excludedFiles.append(entry);
    }
    preferences.storeInSubFolder = readCheckState(store, QStringLiteral("StoreInSubFolder"));

    bool ok = false;
    const int tab =
        store.GetSetting(kSettings, QStringLiteral("ActiveFileTab"), QStringLiteral("1"))
            .toInt(&ok);
    preferences.activeFileTab = ok && !activeFileTabKey(tab).isEmpty() ? tab : 1;
    return preferences;
}

Result<void> savePreferences(SettingsStore& store, const Preferences& preferences) {
    const QList<StoredValue> values = storedValues(preferences);
    if (holds(store, values, preferences.excludedFiles.size())) {
        return {};  // nothing changed: the file is left as it is
    }
    // Sections go first, so keys that this run no longer writes (a removed exclusion) vanish;
    // a section that is not there yet is no failure.
    for (const QString& section : {kWindow, kSettings, kPaths, kExcluded}) {
        store.DeleteSetting(section);
    }
    bool saved = true;
    for (const StoredValue& value : values) {
        if (!store.SaveSetting(value.section, value.key, value.text)) {
            saved = false;
            break;
        }
    }
    // What was written before a refusal stays; a store that takes its writes in one go can
    // refuse them only here.
    if (store.flush() && saved) {
        return {};
    }
    // The store is the registry only on Windows; elsewhere it is a file, named as it is.
#ifdef Q_OS_WIN
    return Error{0, QStringLiteral("the Windows Registry")};
#else
    return Error{0, QStringLiteral("the settings file ") + store.location()};
#endif
}

}  // namespace tidewick
