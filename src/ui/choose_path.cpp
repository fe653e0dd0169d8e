#include "ui/choose_path.h"

#include <QFileDialog>

namespace skyhold {

QString chooseStationFile(QWidget* parent, const QString& current) {
    const QString filter =
        QStringLiteral("HTM files(*.htm) (*.htm*);;CSV files(*.csv) (*.csv*);;All files(*.*) (*)");
    return QFileDialog::getOpenFileName(parent, QStringLiteral("Select data file"), current, filter,
                                        nullptr, QFileDialog::HideNameFilterDetails);
}

QString chooseFolder(QWidget* parent, const QString& title, const QString& current) {
    return QFileDialog::getExistingDirectory(parent, title, current);
}

} // namespace skyhold
