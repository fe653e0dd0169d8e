// The per-user settings store: one INI file per application under the user's configuration
// folder, every value a text. Other programs (the uploader) read and write it too.
#pragma once

#include <QSettings>
#include <QString>

#include <memory>

namespace skyhold {

class SettingsStore {
  public:
    // The store of `application` ("Kiv_Skyhold", "Kiv_Uploader"). The file is readable and
    // writable by its owner alone; one found wider is narrowed.
    explicit SettingsStore(const QString& application);

    // The stored text, or `fallback` when the key is absent.
    QString GetSetting(const QString& section, const QString& key, const QString& fallback) const;
    // Kept until `flush`; a key that must be on disk at once is saved with `saveNow`.
    void SaveSetting(const QString& section, const QString& key, const QString& text);
    void saveNow(const QString& section, const QString& key, const QString& text);
    // Writes to disk; false when that failed (folder not writable, disk full).
    bool flush();

    QString filePath() const { return path_; }

  private:
    void narrowAccess() const;

    QString path_;
    std::unique_ptr<QSettings> file_;
};

} // namespace skyhold
