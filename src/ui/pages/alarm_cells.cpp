// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/alarm_cells.h"

#include "conditions/alarms.h"
#include "ui/dialogs/kiv_sound_form.h"
#include "ui/widgets/alarm_box.h"
#include "ui/widgets/open_editor.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kHeight = 18;

// A sound that was chosen for an alarm that is off would be missed when it matters.
void offerAlarm(CheckBox& alarm, const QString& what, const ShowMessage& showMessage) {
    if (alarm.Tag.value().isEmpty() || alarm.checked() || !alarm.Enabled)
        return;
    const QString text =
        u"The alarm of %1 is off: its sound will not be heard. Switch it on?"_s.arg(what);
    if (showMessage({text, MessageStyle::YesNo, {}}) == MessageAnswer::Yes)
        alarm.set(1);
}

} // namespace

AlarmCells makeAlarmCells(const AlarmUse& use, CheckBox& alarm, const QString& name,
                          const QString& what, QWidget* parent) {
    const AlarmCells cells{new AlarmBox(alarm, parent), new SoundName(alarm, parent)};
    cells.box->setObjectName(name);
    cells.box->setFixedHeight(kHeight);
    cells.box->setAccessibleName(u"Alarm: "_s + what);
    cells.box->setToolTip(u"Alarm while this lasts. Right-click, or press the menu key or "
                          u"Shift+F10, to choose its sound"_s);
    cells.sound->setObjectName(u"Sound"_s + name);
    cells.sound->setFixedHeight(kHeight);
    cells.sound->setAccessibleName(u"Sound: "_s + what);

    const auto released = [&alarm, use, box = cells.box, what](Qt::MouseButton button) {
        EditAlarmSound(static_cast<int>(button), alarm, use.readings, [&](CheckBox& target) {
            KivSoundForm form(target, use.alarms.LastMusicDir, use.media, box->window());
            if (form.exec() == QDialog::Accepted)
                offerAlarm(target, what, use.showMessage);
        });
    };
    const auto edit = [released] {
        released(Qt::RightButton);
    };
    QObject::connect(cells.box, &AlarmBox::mouseReleased, cells.box, released);
    QObject::connect(cells.box, &AlarmBox::editWanted, cells.box, edit);
    openEditorFrom(cells.sound, edit);
    return cells;
}

} // namespace skyhold
