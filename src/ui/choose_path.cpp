#include "ui/choose_path.h"

#include <QFileDialog>

namespace skyhold {

QString chooseStationFile(QWidget* parent, const QString& current) {
    const QString filter =
        QStringLiteral("HTM files(*.htm) (*.htm*);;CSV files(*.csv) (*.csv*);;All files(*.*) (*)");
    return QFileDialog::getOpenFileName(parent, QStringLiteral("Select data file"), current, filter,
                                        nullptr, QFileDialog::HideNameFilterDetails);
}

QStringList chooseUploadFiles(QWidget* parent) {
    const QString filter = QStringLiteral(
        "PNG images(*.png) (*.png);;JPG Images(*.jpg) (*.jpg);;GIF Images(*.gif) (*.gif);;"
        "BMP Images(*.bmp) (*.bmp);;HTML Files(*.htm*) (*.htm*);;"
        "SCRIPT Files (*.vbs;*.js) (*.vbs *.js);;"
        "ALL Images (*.bmp;*.jpg;*.gif;*.png) (*.bmp *.jpg *.gif *.png);;ALL Files(*.*) (*)");
    return QFileDialog::getOpenFileNames(parent, QStringLiteral("Select Files to UPLOAD"),
                                         QString(), filter, nullptr,
                                         QFileDialog::HideNameFilterDetails);
}

QString chooseFolder(QWidget* parent, const QString& title, const QString& current) {
    return QFileDialog::getExistingDirectory(parent, title, current);
}

} // namespace skyhold
