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

enum Column { kMark, kTitle, kAlarm, kSound };

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
        const AlarmCells cells = makeAlarmCells(use_, alarm, alarmName, title, parent_);
        grid_->addWidget(mark, row_, kMark);
        grid_->addWidget(label, row_, kTitle);
        grid_->addWidget(cells.box, row_, kAlarm);
        grid_->addWidget(cells.sound, row_, kSound);
        ++row_;
    }
    void addBelow(QWidget* first, QWidget* second = nullptr) {
        grid_->addWidget(first, row_, kTitle, 1, second ? 1 : 3);
        if (second)
            grid_->addWidget(second, row_, kAlarm, 1, 2);
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

} // namespace

QWidget* makeSourcesAndDelay(ConditionControls& conditions, const AlarmUse& use, QWidget* parent) {
    QVBoxLayout* column = addGroup(parent, u"Sources and delay"_s);
    QWidget* group = column->parentWidget();
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kGap);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(kTitle, 1);
    column->addLayout(grid);
    AlarmControls& alarms = use.alarms;

    SourceRows rows(grid, use);
    rows.add(u"Weather station"_s, 8, u"AlarmWS"_s, alarms.AlarmWS);
    rows.addBelow(makeCheck(group, u"WSDataOldUnsafe"_s, {}, conditions.WSDataOldUnsafe));

    rows.add(u"Cloud sensor"_s, 9, u"AlarmNB"_s, alarms.AlarmNB);
    Readout* timeout = makeNote(u"Label120"_s, group);
    bind(timeout, alarms.TimeoutAlarmCaption);
    rows.addBelow(makeCheck(group, u"NBDataOldUnsafe"_s, {}, conditions.NBDataOldUnsafe), timeout);
    rows.addBelow(makeMasterNote(conditions.NBDataOldUnsafe, group));

    rows.add(u"Roof has not moved"_s, 10, u"AlarmRoof"_s, alarms.AlarmRoof);

    QCheckBox* beyond = makeCheck(group, u"BeyondLimitUnsafe"_s, {}, conditions.BeyondLimitUnsafe);
    beyond->setToolTip(u"A value above the third limit has no level. Unless this is ticked, it is "
                       u"reported but not judged"_s);
    column->addWidget(beyond);
    column->addWidget(makeCheck(group, u"SuspendSoundAlarm"_s, {}, alarms.SuspendSoundAlarm));
    addNumberRow(column, u"Safe Condition &Delay Period"_s, u"SafeDelayVal"_s,
                 conditions.SafeDelayVal, u"(secs)"_s);
    column->addStretch();
    return group;
}

} // namespace skyhold
