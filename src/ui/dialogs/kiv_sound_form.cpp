// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_sound_form.h"

#include "conditions/alarms.h"
#include "platform/files.h"
#include "ui/look/look.h"
#include "ui/widgets/readout.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QGridLayout>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

const QString kParent = u".."_s;

bool isWithin(const QString& folder, const QString& place) {
    return folder == place || folder.startsWith(place.endsWith(u'/') ? place : place + u'/');
}

} // namespace

KivSoundForm::KivSoundForm(CheckBox& box, QString& lastMusicDir, MediaControl& media,
                           QWidget* window)
    : EditorDialog(window)
    , box_(box)
    , lastMusicDir_(lastMusicDir)
    , media_(media)
    , chooser_(Def_Label(box, lastMusicDir, soundsFolder()))
    , places_(places())
    , drives_(new QComboBox(this))
    , path_(new Readout(this))
    , folders_(new QListWidget(this))
    , files_(new QListWidget(this))
    , fileName_(new QLineEdit(chooser_.FileName, this))
    , repeat_(new QCheckBox(u"&Repeat until it is stopped"_s, this)) {
    setObjectName(u"KivSoundForm"_s);
    setWindowTitle(u"Sound Alarm Selection"_s);
    QVBoxLayout* column = dialogColumn(this);
    column->addWidget(makeLists());
    column->addWidget(makeSoundRow());
    addOkAndCancel(this, column);
    showFolder();
    files_->setFocus();
    centreOver(this, window);
}

// The program's sounds, the user's folder, the whole disk and what is plugged in. Mounted network
// disks are reached through the whole disk: asking after one that is gone would hold the window.
std::vector<KivSoundForm::Place> KivSoundForm::places() {
    std::vector<Place> result;
    if (folderExists(soundsFolder()))
        result.push_back({u"Sounds of this program"_s, soundsFolder()});
    result.push_back({u"Home"_s, QDir::homePath()});
    result.push_back({u"File system"_s, QDir::rootPath()});
    const QString user = QDir::home().dirName();
    for (const QString& media : {u"/media/"_s + user, u"/run/media/"_s + user}) {
        for (const QFileInfo& disk :
             QDir(media).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
            result.push_back({disk.fileName(), disk.filePath()});
    }
    return result;
}

QWidget* KivSoundForm::makeLists() {
    auto* holder = new QWidget(this);
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(6);

    drives_->setObjectName(u"DriveList"_s);
    for (const Place& place : places_)
        drives_->addItem(place.name);
    connect(drives_, &QComboBox::activated, this,
            [this](int index) { goTo(places_[static_cast<std::size_t>(index)].folder); });
    path_->setObjectName(u"LblFolder"_s);
    path_->setPixelSize(13);
    path_->setTone(Tone::Dim);
    path_->cutInMiddle();

    folders_->setObjectName(u"FolderList"_s);
    files_->setObjectName(u"FileList"_s);
    folders_->setFixedSize(210, 200);
    files_->setFixedSize(270, 200);
    folders_->installEventFilter(this);
    connect(folders_, &QListWidget::itemDoubleClicked, this, &KivSoundForm::enterFolder);
    connect(files_, &QListWidget::itemSelectionChanged, this, [this] {
        for (const QListWidgetItem* item : files_->selectedItems())
            chooseFile(item);
    });
    // The selected one again, after another name has been typed.
    connect(files_, &QListWidget::itemClicked, this, &KivSoundForm::chooseFile);

    const auto caption = [&](const QString& text, QWidget* buddy) {
        auto* label = new QLabel(text, holder);
        label->setBuddy(buddy);
        return label;
    };
    grid->addWidget(drives_, 0, 0);
    grid->addWidget(path_, 0, 1);
    grid->addWidget(caption(u"Fol&ders"_s, folders_), 1, 0);
    grid->addWidget(caption(u"Sound &files"_s, files_), 1, 1);
    grid->addWidget(folders_, 2, 0);
    grid->addWidget(files_, 2, 1);
    return holder;
}

QWidget* KivSoundForm::makeSoundRow() {
    auto* holder = new QWidget(this);
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(look::kGap);
    grid->setVerticalSpacing(look::kGap);
    auto* caption = new QLabel(u"S&ound"_s, holder);
    caption->setBuddy(fileName_);
    fileName_->setObjectName(u"FileName"_s);
    fileName_->setPlaceholderText(u"No sound"_s);
    connect(fileName_, &QLineEdit::textEdited, this,
            [this](const QString& text) { chooser_.FileName = text; });
    repeat_->setObjectName(u"CheckPlay1"_s);
    repeat_->setChecked(chooser_.CheckPlay1);
    connect(repeat_, &QCheckBox::toggled, this, [this](bool on) { chooser_.CheckPlay1 = on; });

    const auto makeButton = [&](const QString& name, const QString& text, auto act) {
        auto* button = new QPushButton(text, holder);
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, act);
        return button;
    };
    grid->addWidget(caption, 0, 0);
    grid->addWidget(fileName_, 0, 1, 1, 2);
    grid->addWidget(makeButton(u"ButtClear"_s, u"C&lear"_s, [this] { clear(); }), 0, 3);
    grid->addWidget(repeat_, 1, 1);
    grid->addWidget(
        makeButton(u"ButtPlay"_s, u"&Play"_s, [this] { previewSound(media_, chooser_); }), 1, 2);
    grid->addWidget(makeButton(u"ButtStop"_s, u"&Stop"_s, [this] { stopSound(media_); }), 1, 3);
    grid->setColumnStretch(1, 1);
    const auto buttons = holder->findChildren<QPushButton*>(); // Clear, Play, Stop
    setTabOrder(fileName_, buttons[0]);
    setTabOrder(buttons[0], repeat_);
    setTabOrder(repeat_, buttons[1]);
    return holder;
}

void KivSoundForm::showFolder() {
    path_->setText(chooser_.folder);
    path_->setToolTip(chooser_.folder);
    const QDir folder(chooser_.folder);
    folders_->clear();
    if (!folder.isRoot())
        folders_->addItem(kParent);
    folders_->addItems(
        folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase));
    folders_->setCurrentRow(0, QItemSelectionModel::NoUpdate); // keys begin there

    const QSignalBlocker quiet(files_);
    files_->clear();
    files_->addItems(soundFiles(chooser_.folder));
    for (QListWidgetItem* item : files_->findItems(chooser_.selected, Qt::MatchExactly))
        files_->setCurrentItem(item);

    // The place that the folder lies in most closely.
    int closest = -1;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const QString& place = places_[i].folder;
        if (isWithin(chooser_.folder, place) &&
            (closest < 0 ||
             place.size() > places_[static_cast<std::size_t>(closest)].folder.size()))
            closest = static_cast<int>(i);
    }
    drives_->setCurrentIndex(closest);
}

void KivSoundForm::goTo(const QString& folder) {
    chooser_.folder = QDir::cleanPath(folder);
    chooser_.selected.clear();
    showFolder();
}

void KivSoundForm::enterFolder(const QListWidgetItem* item) {
    goTo(joinPath(chooser_.folder, item->text()));
}

void KivSoundForm::chooseFile(const QListWidgetItem* item) {
    selectSoundFile(chooser_, item->text());
    fileName_->setText(chooser_.FileName);
}

void KivSoundForm::clear() {
    chooser_.FileName.clear();
    chooser_.selected.clear();
    fileName_->clear();
    files_->clearSelection();
}

// Return enters the folder instead of closing the dialog.
bool KivSoundForm::eventFilter(QObject* watched, QEvent* event) {
    if (watched != folders_ || event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return false;
    if (const QListWidgetItem* item = folders_->currentItem())
        enterFolder(item);
    return true;
}

void KivSoundForm::accept() {
    acceptSound(chooser_, box_, lastMusicDir_);
    QDialog::accept();
}

void KivSoundForm::done(int result) {
    stopSound(media_);
    QDialog::done(result);
}

} // namespace skyhold
