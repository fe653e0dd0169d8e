// SPDX-License-Identifier: GPL-3.0-or-later
// The platform's dialogs for a file and for a folder. An empty answer means cancelled.
#pragma once

#include <QStringList>

class QWidget;

namespace skyhold {

QString chooseStationFile(QWidget* parent, const QString& current);
// Several at once.
QStringList chooseUploadFiles(QWidget* parent);
// A file of settings, to be written or to be read.
QString chooseSettingsFile(QWidget* parent, bool write);
// A CSV file to write.
QString chooseLogFile(QWidget* parent, const QString& suggested);
QString chooseFolder(QWidget* parent, const QString& title, const QString& current);

} // namespace skyhold
