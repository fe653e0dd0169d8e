// SPDX-License-Identifier: GPL-3.0-or-later
// The chooser of an alarm's sound.
#pragma once

#include "conditions/sound_chooser.h"
#include "ui/dialogs/dialog_parts.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace skyhold {

class Readout;

class KivSoundForm : public EditorDialog {
    Q_OBJECT

  public:
    // Opens over `window` with the box's sound, else in `lastMusicDir`, else where the program's
    // own sounds are. OK writes both, Cancel nothing; either ends the preview.
    KivSoundForm(CheckBox& box, QString& lastMusicDir, MediaControl& media, QWidget* window);

    void accept() override;
    void done(int result) override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // Where the chooser may jump to.
    struct Place {
        QString name;
        QString folder;
    };
    static std::vector<Place> places();

    QWidget* makeLists();
    QWidget* makeSoundRow();
    void showFolder();
    void goTo(const QString& folder);
    void enterFolder(const QListWidgetItem* item);
    void chooseFile(const QListWidgetItem* item);
    void clear();

    CheckBox& box_;
    QString& lastMusicDir_;
    MediaControl& media_;
    SoundChooser chooser_;
    const std::vector<Place> places_;
    QComboBox* drives_;
    Readout* path_;
    QListWidget* folders_;
    QListWidget* files_;
    QLineEdit* fileName_;
    QCheckBox* repeat_;
};

} // namespace skyhold
