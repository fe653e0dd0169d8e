// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/sources_and_delay.h"

#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/alarm_box.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/readout.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

enum Column { kTitle, kAlarm, kSound, kColumns };

constexpr int kAlarmWidth = 34; // as in the table of limits
constexpr int kSoundWidth = 92;

// The sources that may fail, each with its alarm, and below it what its failure means.
class SourceRows {
  public:
    SourceRows(QGridLayout* grid, const AlarmUse& use)
        : grid_(grid)
        , use_(use)
        , parent_(grid->parentWidget()) {}

    void add(const QString& title, std::size_t indicator, const QString& alarmName,
             CheckBox& alarm) {
        auto* mark =
            new PlayMark(use_.alarms.PlayAlarm[indicator], use_.alarms.SoundFault, parent_);
        mark->setObjectName(indexed("PlayAlarm", indicator));
        auto* label = new QLabel(title, parent_);
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        auto* head = new QHBoxLayout;
        head->setSpacing(0);
        head->addWidget(label, 1);
        head->addWidget(mark);
        const AlarmCells cells = makeAlarmCells(use_, alarm, alarmName, title, parent_);
        cells.box->setFixedWidth(kAlarmWidth);
        cells.sound->setFixedWidth(kSoundWidth);
        grid_->addLayout(head, row_, kTitle);
        grid_->addWidget(cells.box, row_, kAlarm);
        grid_->addWidget(cells.sound, row_, kSound);
        ++row_;
    }
    void addBelow(QWidget* widget) {
        grid_->addWidget(widget, row_, kTitle, 1, kColumns);
        ++row_;
    }

  private:
    QGridLayout* grid_;
    AlarmUse use_;
    QWidget* parent_;
    int row_ = 0;
};

Readout* makeNote(const QString& name, QWidget* parent) {
    auto* note = new Readout(parent);
    note->setObjectName(name);
    note->setPixelSize(12);
    note->setTone(Tone::Dim);
    return note;
}

// A sensor program that is the master hides its alarm and its box; the box holds all the same.
QWidget* makeMasterNote(CheckBox& unsafe, QWidget* parent) {
    Readout* note = makeNote(u"LblMaster"_s, parent);
    follow(note, unsafe.Value, [note](int failureIsUnsafe) {
        note->setText(failureIsUnsafe == 1 ? u"Master: its failure is unsafe"_s
                                           : u"Master: its failure is not unsafe"_s);
    });
    follow(note, unsafe.Visible, [note](bool boxShown) { note->setHidden(boxShown); });
    return note;
}

// One line, whichever of its texts are shown.
QWidget* makeSensorFailure(CheckBox& unsafe, AlarmControls& alarms, QWidget* parent) {
    auto* holder = new QWidget(parent);
    auto* line = new QHBoxLayout(holder);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(look::kGap);
    line->addWidget(makeCheck(holder, u"NBDataOldUnsafe"_s, {}, unsafe));
    line->addWidget(makeMasterNote(unsafe, holder), 1);
    Readout* timeout = makeNote(u"Label120"_s, holder);
    timeout->reserve(u"Timeout Alarm"_s);
    bind(timeout, alarms.TimeoutAlarmCaption);
    line->addWidget(timeout);
    return holder;
}

} // namespace

QWidget* makeSourcesAndDelay(ConditionControls& conditions, const AlarmUse& use, QWidget* parent) {
    QVBoxLayout* column = addGroup(parent, u"Sources and delay"_s);
    QWidget* group = column->parentWidget();
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kGap);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(kTitle, 1);
    column->addLayout(grid);
    AlarmControls& alarms = use.alarms;

    SourceRows rows(grid, use);
    rows.add(u"Weather station"_s, 8, u"AlarmWS"_s, alarms.AlarmWS);
    rows.addBelow(makeCheck(group, u"WSDataOldUnsafe"_s, {}, conditions.WSDataOldUnsafe));

    rows.add(u"Cloud sensor"_s, 9, u"AlarmNB"_s, alarms.AlarmNB);
    rows.addBelow(makeSensorFailure(conditions.NBDataOldUnsafe, alarms, group));

    rows.add(u"Roof has not moved"_s, 10, u"AlarmRoof"_s, alarms.AlarmRoof);

    QCheckBox* beyond = makeCheck(group, u"BeyondLimitUnsafe"_s, {}, conditions.BeyondLimitUnsafe);
    beyond->setToolTip(u"A value above the third limit has no level. Unless this is ticked, it is "
                       u"reported but not judged"_s);
    rows.addBelow(beyond);
    rows.addBelow(makeCheck(group, u"SuspendSoundAlarm"_s, {}, alarms.SuspendSoundAlarm));
    addNumberRow(column, u"Safe Condition &Delay Period"_s, u"SafeDelayVal"_s,
                 conditions.SafeDelayVal, u"(secs)"_s);
    column->addStretch();
    return group;
}

} // namespace skyhold
