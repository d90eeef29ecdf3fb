#pragma once

#include <QSettings>
#include <QString>
#include <memory>

// The per-user store of the program's settings: texts addressed by section and key.
namespace tidewick {

class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    /// The stored text, or `defaultText` when the key is missing.
    virtual QString GetSetting(const QString& section, const QString& key,
                               const QString& defaultText) = 0;
    /// Creates or replaces one value; false when the store could not be written.
    virtual bool SaveSetting(const QString& section, const QString& key, const QString& text) = 0;
    /// Removes a section with all its keys; false when there is no such section or it could not
    /// be removed.
    virtual bool DeleteSetting(const QString& section) = 0;
    /// Makes every change so far permanent; false when the store refused them.
    virtual bool flush() { return true; }
    /// Where the store lives, as the user would look for it.
    virtual QString location() const { return {}; }
};

/// The store over QSettings, a section being a group.
class QSettingsStore : public SettingsStore {
public:
    /// The user's own store of the program: native format, organisation and application
    /// "Tidewick".
    QSettingsStore();
    /// A store in the INI file `fileName`, for tests and tools.
    explicit QSettingsStore(const QString& fileName);
    ~QSettingsStore() override;

    QString GetSetting(const QString& section, const QString& key,
                       const QString& defaultText) override;
    bool SaveSetting(const QString& section, const QString& key, const QString& text) override;
    bool DeleteSetting(const QString& section) override;
    bool flush() override;

    /// Where the store lives.
    QString fileName() const { return settings_->fileName(); }
    QString location() const override { return fileName(); }

private:
    std::unique_ptr<QSettings> settings_;
    bool writableKnown_ = false;  // whether the store is writable is asked once per flush
    bool writable_ = false;
};

}  // namespace tidewick
