#include "settings/settings.h"

#include <algorithm>
#include <cmath>

#include "readers/session_kinds.h"

namespace tidewick {

namespace {

const QString kWindow = QStringLiteral("WINDOW");
const QString kSettings = QStringLiteral("SETTINGS");
const QString kPaths = QStringLiteral("PATHS");
const QString kExcluded = QStringLiteral("EXCLUDED");

// The tab keys in the order of their "ActiveFileTab" numbers (which is not the tab order).
const QStringList& tabKeysByNumber() {
    static const QStringList keys = {QStringLiteral("SESFiles"), QStringLiteral("XMLFiles"),
                                     QStringLiteral("SESXFiles"), QStringLiteral("RPPFiles"),
                                     QStringLiteral("VEGFiles")};
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

void StoredSettings::LoadSettings(MainForm& form) {
    form.ExcludedFiles.clear();

    const QRect window = form.Main.geometry();
    const int top = readPosition(store_, QStringLiteral("Top"));
    form.Main.setGeometry(QRect(window.left(), top, window.width(), window.height()));
    const int left = readPosition(store_, QStringLiteral("Left"));
    form.Main.setGeometry(QRect(left, top, window.width(), window.height()));

    form.TrimFoldersFlag = readFlag(store_, QStringLiteral("TrimFolders"));
    form.KeepPKCheck.setChecked(readCheckState(store_, QStringLiteral("KeepPKFiles")));

    // All three are read before any is checked, as the store lists them.
    form.LastFolder =
        store_.GetSetting(kPaths, QStringLiteral("LastFolder"), form.FSO.currentDirectory());
    form.MoveFolder =
        store_.GetSetting(kPaths, QStringLiteral("MoveFolder"), form.FSO.currentDirectory());
    form.CopyFolder =
        store_.GetSetting(kPaths, QStringLiteral("CopyFolder"), form.FSO.currentDirectory());
    for (QString* folder : {&form.LastFolder, &form.MoveFolder, &form.CopyFolder}) {
        if (!form.FSO.FolderExists(*folder)) {
            *folder = form.FSO.currentDirectory();
        }
    }
    form.pointBrowserAt(form.LastFolder);

    form.CheckAllFiles = readFlag(store_, QStringLiteral("CheckAllFiles"));

    for (int position = 1;; ++position) {
        const QString entry = store_.GetSetting(kExcluded, exclusionKey(position), QString());
        if (entry.isEmpty()) {
            break;
        }
        form.ExcludedFiles.append(entry);
    }

    form.StoreInSubFolderCheck.setChecked(
        readCheckState(store_, QStringLiteral("StoreInSubFolder")));

    bool ok = false;
    const int tab =
        store_.GetSetting(kSettings, QStringLiteral("ActiveFileTab"), QStringLiteral("1"))
            .toInt(&ok);
    form.ActiveFileTab = static_cast<qint16>(ok && !activeFileTabKey(tab).isEmpty() ? tab : 1);
    form.selectTabByKey(activeFileTabKey(form.ActiveFileTab));
}

bool StoredSettings::holds(const QList<Value>& values, qsizetype exclusions) {
    // U+FFFF is no character, so no stored text is ever equal to it.
    const QString missing(QChar(0xFFFF));
    return store_.GetSetting(kExcluded, exclusionKey(int(exclusions) + 1), missing) == missing &&
           std::all_of(values.cbegin(), values.cend(), [&](const Value& value) {
               return store_.GetSetting(value.section, value.key, missing) == value.text;
           });
}

void StoredSettings::SaveSettings(MainForm& form) {
    const QRect window = form.Main.geometry();
    QList<Value> values = {
        {kWindow, QStringLiteral("Top"), QString::number(window.top())},
        {kWindow, QStringLiteral("Left"), QString::number(window.left())},
        {kSettings, QStringLiteral("TrimFolders"), flagText(form.TrimFoldersFlag)},
        {kSettings, QStringLiteral("KeepPKFiles"), flagText(form.KeepPKCheck.checked())},
        {kPaths, QStringLiteral("LastFolder"), form.LastFolder},
        {kPaths, QStringLiteral("MoveFolder"), form.MoveFolder},
        {kPaths, QStringLiteral("CopyFolder"), form.CopyFolder},
        {kSettings, QStringLiteral("CheckAllFiles"), flagText(form.CheckAllFiles)},
    };
    for (int position = 1; position <= form.ExcludedFiles.size(); ++position) {
        values.append({kExcluded, exclusionKey(position), form.ExcludedFiles.at(position - 1)});
    }
    values.append({kSettings, QStringLiteral("StoreInSubFolder"),
                   flagText(form.StoreInSubFolderCheck.checked())});

    const int selected = activeFileTabNumber(form.selectedTabKey());
    if (selected > 0) {
        form.ActiveFileTab = static_cast<qint16>(selected);
    }
    values.append(
        {kSettings, QStringLiteral("ActiveFileTab"), QString::number(form.ActiveFileTab)});

    if (holds(values, form.ExcludedFiles.size())) {
        return;  // nothing changed: the file is left as it is
    }
    // Sections go first, so keys that this run no longer writes (a removed exclusion) vanish;
    // a section that is not there yet is no failure.
    for (const QString& section : {kWindow, kSettings, kPaths, kExcluded}) {
        store_.DeleteSetting(section);
    }
    bool saved = true;
    for (const Value& value : values) {
        if (!store_.SaveSetting(value.section, value.key, value.text)) {
            saved = false;
            break;
        }
    }
    // What was written before a refusal stays; a store that takes its writes in one go can
    // refuse them only here.
    if (!store_.flush() || !saved) {
        // The store is the registry only on Windows; elsewhere it is a file, named as it is.
#ifdef Q_OS_WIN
        const QString store = QStringLiteral("the Windows Registry");
#else
        const QString store = QStringLiteral("the settings file ") + store_.location();
#endif
        showOk(form.ui(),
               QStringLiteral("Access to ") + store + QStringLiteral(" failed and the current ") +
                   programName() + QStringLiteral(" settings could not be saved."),
               QStringLiteral("For Information..."), MessageIcon::Information);
    }
}

}  // namespace tidewick
