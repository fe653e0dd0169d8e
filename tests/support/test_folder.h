// SPDX-License-Identifier: GPL-3.0-or-later
// A folder of the test's own, gone with it. Files in it are named by their path below it.
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace skyhold {

class TestFolder : public QTemporaryDir {
  public:
    // Writes the file, makes its folder when there is none, and answers its path.
    QString write(const QString& name, const QByteArray& bytes = {}) const {
        QFile file(filePath(name));
        EXPECT_TRUE(QDir().mkpath(filePath(name).section(u'/', 0, -2)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return file.fileName();
    }
    // The same for a program that may be started.
    QString writeProgram(const QString& name, const QByteArray& script) const {
        const QString program = write(name, "#!/bin/sh\n" + script);
        EXPECT_TRUE(
            QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        return program;
    }
    QByteArray read(const QString& name) const {
        QFile file(filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    // Of files and folders, hidden ones too.
    QStringList names() const {
        return QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                      QDir::NoDotAndDotDot);
    }
};

// Where the settings of a user lie from now on.
class SettingsFolder : public TestFolder {
  public:
    SettingsFolder() { qputenv("XDG_CONFIG_HOME", path().toLocal8Bit()); }
};

} // namespace skyhold
