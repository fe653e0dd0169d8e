// The platform's dialogs for a file and for a folder. An empty answer means cancelled.
#pragma once

#include <QString>

class QWidget;

namespace skyhold {

QString chooseStationFile(QWidget* parent, const QString& current);
QString chooseFolder(QWidget* parent, const QString& title, const QString& current);

} // namespace skyhold
