// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/kiv_file_list.h"

#include "datafiles/upload_list.h"
#include "ui/dialogs/choose_path.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/open_editor.h"

#include <QContextMenuEvent>
#include <QFileInfo>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QSignalBlocker>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// Of this machine; folders and web addresses cannot be uploaded.
QStringList droppedFiles(const QMimeData& dropped) {
    QStringList files;
    for (const QUrl& url : dropped.urls()) {
        const QString path = url.toLocalFile();
        if (!path.isEmpty() && QFileInfo(path).isFile())
            files += path;
    }
    return files;
}

} // namespace

KivFileList::KivFileList(UploadControls& upload, QWidget* parent)
    : QListWidget(parent)
    , upload_(upload)
    , menu_(new QMenu(u"&PopUp1"_s, this)) {
    setObjectName(u"KivFileList"_s);
    setTextElideMode(Qt::ElideMiddle);
    setMinimumSize(240, 100);
    setToolTip(u"Drop files here, or right-click, or press the menu key or Shift+F10, to add, "
               u"remove or change entries. Del removes the selected one."_s);
    setAcceptDrops(true);
    makeMenu();
    follow(this, upload.FileLines, [this](const QStringList& lines) { showLines(lines); });
    follow(this, upload.ListIndex, [this](int index) { showSelection(index); });
    connect(this, &QListWidget::itemSelectionChanged, this, [this] {
        const QModelIndexList selected = selectedIndexes();
        SelectFile(upload_, selected.isEmpty() ? -1 : selected.first().row());
    });
}

void KivFileList::makeMenu() {
    menu_->setObjectName(u"mPopup1"_s);
    const auto add = [this](const QString& name, const QString& text, auto act) {
        QAction* action = menu_->addAction(text);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, act);
        return action;
    };
    uploadOnce_ = add(u"mPopup1Up"_s, u"&Upload Once"_s, [this] { ToggleUploadOnce(upload_); });
    uploadOnce_->setCheckable(true);
    menu_->addSeparator()->setObjectName(u"pSpe0"_s);
    remove_ = add(u"mPopup1Del"_s, u"&Delete"_s, [this] { DeleteSelectedFile(upload_); });
    add(u"mPopup1Add"_s, u"&Add"_s, [this] { addFiles(); });
}

void KivFileList::addFiles() {
    if (upload_.ButtFileADD.Enabled)
        AddChosenFiles(upload_, chooseUploadFiles(this));
}

// Not while a session uploads: the list is not edited then.
void KivFileList::openMenu(QPoint at) {
    if (!upload_.ButtFileADD.Enabled)
        return;
    const bool selected = upload_.ListIndex >= 0;
    uploadOnce_->setEnabled(selected);
    uploadOnce_->setChecked(upload_.UploadOnce.checked());
    remove_->setEnabled(selected);
    menu_->popup(at);
}

void KivFileList::mouseReleaseEvent(QMouseEvent* event) {
    QListWidget::mouseReleaseEvent(event);
    if (event->button() == Qt::RightButton)
        openMenu(event->globalPosition().toPoint());
}

void KivFileList::keyPressEvent(QKeyEvent* event) {
    if (asksForMenu(*event))
        openMenu(viewport()->mapToGlobal(visualItemRect(currentItem()).bottomLeft()));
    else if (event->matches(QKeySequence::Delete))
        DeleteSelectedFile(upload_);
    else
        QListWidget::keyPressEvent(event);
}

// The release of the button or the key has opened the menu.
void KivFileList::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
}

void KivFileList::dragEnterEvent(QDragEnterEvent* event) {
    event->setAccepted(upload_.ButtFileADD.Enabled && !droppedFiles(*event->mimeData()).isEmpty());
}

void KivFileList::dragMoveEvent(QDragMoveEvent* event) {
    event->setAccepted(upload_.ButtFileADD.Enabled);
}

void KivFileList::dropEvent(QDropEvent* event) {
    const QStringList files = droppedFiles(*event->mimeData());
    if (!upload_.ButtFileADD.Enabled || files.isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    AddChosenFiles(upload_, files);
}

void KivFileList::paintEvent(QPaintEvent* event) {
    QListWidget::paintEvent(event);
    if (count() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(look::kDimText);
    painter.drawText(viewport()->rect().adjusted(look::kGap, 0, -look::kGap, 0),
                     Qt::AlignCenter | Qt::TextWordWrap, u"No files yet: drop some here, or Add"_s);
}

void KivFileList::showLines(const QStringList& lines) {
    const QSignalBlocker quiet(this);
    clear();
    addItems(lines);
    showSelection(upload_.ListIndex);
}

void KivFileList::showSelection(int index) {
    const QSignalBlocker quiet(this);
    setCurrentRow(index);
}

} // namespace skyhold
