#pragma once

#include <QList>
#include <QString>

#include "settings/settings_store.h"
#include "sweep/main_form.h"

// The main window's settings: read once while the window loads, written once while it unloads.
namespace tidewick {

/// The number under which "ActiveFileTab" stores a tab key: 1 "SESFiles", 2 "XMLFiles",
/// 3 "SESXFiles", 4 "RPPFiles", 5 "VEGFiles"; 0 for any other key.
int activeFileTabNumber(const QString& tabKey);
/// The tab key that "ActiveFileTab" number `number` stands for; empty outside 1 to 5.
QString activeFileTabKey(int number);
/// The key of exclusion entry `position`: "File00001" for the first.
QString exclusionKey(int position);

/// Loads and saves the main window's settings through a store.
class StoredSettings : public FormSettings {
public:
    explicit StoredSettings(SettingsStore& store) : store_(store) {}

    /// Window position, options, folders, exclusions and the active tab, in the documented
    /// order; points the session browser at the last folder.
    void LoadSettings(MainForm& form) override;
    /// Rewrites every setting, unless the store holds them all already; the first refused write
    /// ends the save with one message.
    void SaveSettings(MainForm& form) override;

private:
    struct Value {
        QString section;
        QString key;
        QString text;
    };

    SettingsStore& store_;

    /// True when the store holds exactly `values`, with no exclusion past the first `exclusions`.
    bool holds(const QList<Value>& values, qsizetype exclusions);
};

}  // namespace tidewick
