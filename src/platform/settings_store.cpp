#include "platform/settings_store.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>

namespace skyhold {

namespace {

QString storedName(const QString& section, const QString& key) {
    return section + u'/' + key;
}

} // namespace

SettingsStore::SettingsStore(const QString& application) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                           QStringLiteral("/Kiv");
    path_ = folder + u'/' + application + QStringLiteral(".ini");
    QDir().mkpath(folder);
    ::chmod(folder.toLocal8Bit().constData(), S_IRWXU);
    narrowAccess();
    file_ = std::make_unique<QSettings>(path_, QSettings::IniFormat);
}

QString SettingsStore::GetSetting(const QString& section, const QString& key,
                                  const QString& fallback) const {
    const QVariant stored = file_->value(storedName(section, key));
    // An unquoted comma in a hand-edited file makes the value a list.
    if (stored.typeId() == QMetaType::QStringList)
        return stored.toStringList().join(QStringLiteral(","));
    return stored.isValid() ? stored.toString() : fallback;
}

void SettingsStore::SaveSetting(const QString& section, const QString& key, const QString& text) {
    file_->setValue(storedName(section, key), text);
}

void SettingsStore::saveNow(const QString& section, const QString& key, const QString& text) {
    SaveSetting(section, key, text);
    flush();
}

bool SettingsStore::flush() {
    // A password lies in the file: whatever is made here is the owner's alone from its first byte.
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    file_->sync();
    ::umask(before);
    narrowAccess();
    return file_->status() == QSettings::NoError;
}

void SettingsStore::narrowAccess() const {
    const QByteArray name = path_.toLocal8Bit();
    struct stat status {};
    if (::stat(name.constData(), &status) == 0 && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        ::chmod(name.constData(), S_IRUSR | S_IWUSR);
}

} // namespace skyhold
