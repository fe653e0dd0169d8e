// SPDX-License-Identifier: GPL-3.0-or-later
// The list of the files to upload, with its popup menu. Files can be dropped on it; the Del key
// removes the selected one.
#pragma once

#include "records/file_controls.h"

#include <QListWidget>

class QMenu;

namespace skyhold {

class KivFileList : public QListWidget {
    Q_OBJECT

  public:
    KivFileList(UploadControls& upload, QWidget* parent);

    // Lets the user choose files and appends them.
    void addFiles();

  protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void makeMenu();
    void openMenu(QPoint at);
    void showLines(const QStringList& lines);
    void showSelection(int index);

    UploadControls& upload_;
    QMenu* menu_;
    QAction* uploadOnce_ = nullptr;
    QAction* remove_ = nullptr;
};

} // namespace skyhold
