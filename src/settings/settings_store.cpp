#include "settings/settings_store.h"

namespace tidewick {

namespace {

QString keyPath(const QString& section, const QString& key) {
    return section + QLatin1Char('/') + key;
}

}  // namespace

QSettingsStore::QSettingsStore()
    : settings_(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                            QStringLiteral("Tidewick"),
                                            QStringLiteral("Tidewick"))) {}

QSettingsStore::QSettingsStore(const QString& fileName)
    : settings_(std::make_unique<QSettings>(fileName, QSettings::IniFormat)) {}

QSettingsStore::~QSettingsStore() = default;

QString QSettingsStore::GetSetting(const QString& section, const QString& key,
                                   const QString& defaultText) {
    const QVariant value = settings_->value(keyPath(section, key));
    return value.isValid() ? value.toString() : defaultText;
}

bool QSettingsStore::SaveSetting(const QString& section, const QString& key, const QString& text) {
    // QSettings writes lazily, at flush(); a store that cannot be written at all says so here.
    if (!writableKnown_) {
        writable_ = settings_->isWritable();
        writableKnown_ = true;
    }
    if (!writable_) {
        return false;
    }
    settings_->setValue(keyPath(section, key), text);
    return settings_->status() == QSettings::NoError;
}

bool QSettingsStore::DeleteSetting(const QString& section) {
    if (!settings_->childGroups().contains(section)) {
        return false;
    }
    settings_->remove(section);
    return settings_->status() == QSettings::NoError;
}

bool QSettingsStore::flush() {
    writableKnown_ = false;
    settings_->sync();
    return settings_->status() == QSettings::NoError;
}

}  // namespace tidewick
