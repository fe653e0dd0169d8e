// SPDX-License-Identifier: GPL-3.0-or-later
// The per-user settings store: one INI file per application under the user's configuration
// folder, every value a text. Other programs (the uploader) read and write it too.
#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>

#include <memory>

namespace skyhold {

// "a, b, …": at most so many of them.
QString firstNames(const QStringList& names, qsizetype most);

class SettingsStore {
  public:
    // The store of `application` ("Kiv_Skyhold", "Kiv_Uploader"). A password lies in it: folder
    // and file are their owner's alone, and what is found wider is narrowed, which is
    // logged. A link in the file's place is followed when it is the user's own work: in a
    // folder that nobody else could write to, to a file of the user's own. Any other is removed
    // and logged; what it leads to is left alone.
    explicit SettingsStore(const QString& application);

    // The stored text, or `fallback` when the key is absent.
    QString GetSetting(const QString& section, const QString& key, const QString& fallback) const;
    // Kept until `flush`; a key that must be on disk at once is saved with `saveNow`.
    void SaveSetting(const QString& section, const QString& key, const QString& text);
    void saveNow(const QString& section, const QString& key, const QString& text);
    // Writes to disk; false when that failed (folder not writable, disk full).
    bool flush();
    // Keeps a copy of the file, to be called when it holds every key. False when that failed.
    bool writeCopy();
    // The names of the keys that a file which had been cut short got back from its copy.
    const QStringList& restored() const { return restored_; }

    QString filePath() const { return path_; }

  private:
    QString path_;
    QStringList restored_;
    std::unique_ptr<QSettings> file_;
};

} // namespace skyhold
