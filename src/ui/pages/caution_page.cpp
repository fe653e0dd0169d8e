// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/caution_page.h"

#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/kiv_get_number.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

QWidget* makeSooner(ConditionControls& conditions, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Unsafe sooner"_s);
    column->addWidget(
        makeCheck(column->parentWidget(), u"QuickReaction"_s, {}, conditions.QuickReaction));
    addHint(column, u"Each second the rain and cloud levels are looked at, and the station's file "
                    u"whenever it changes. What is seen there can only close the roof; records and "
                    u"graphs keep their cycles."_s);
    column->addStretch();
    return column->parentWidget();
}

// Boxes below each other, whatever stands before and behind them.
void addNumber(QGridLayout* grid, const QString& caption, const QString& name, NumberBox& record,
               const QString& unit) {
    QWidget* parent = grid->parentWidget();
    auto* label = new QLabel(caption, parent);
    KivGetNumber* box = makeNumber(parent, name, record);
    label->setBuddy(box);
    const int row = grid->rowCount();
    grid->addWidget(label, row, 0);
    grid->addWidget(box, row, 1);
    grid->addWidget(new QLabel(unit, parent), row, 2);
}

QWidget* makeLater(ConditionControls& conditions, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Safe later"_s);
    column->addWidget(
        makeCheck(column->parentWidget(), u"EarnFirstSafe"_s, {}, conditions.EarnFirstSafe));
    addHint(column, u"The first safe of a session waits for the delay like any other, and a wind "
                    u"that already blows from its sector counts at once."_s);
    auto* numbers = new QGridLayout;
    numbers->setHorizontalSpacing(look::kGap);
    numbers->setVerticalSpacing(6);
    numbers->setColumnStretch(2, 1);
    column->addLayout(numbers);
    addNumber(numbers, u"&Double the delay after"_s, u"FlapClosures"_s, conditions.FlapClosures,
              u"closures in an hour"_s);
    addNumber(numbers, u"up &to"_s, u"FlapLongest"_s, conditions.FlapLongest, u"seconds"_s);
    addHint(column, u"0 closures: never. An hour without a closure undoes it."_s);
    column->addStretch();
    return column->parentWidget();
}

QWidget* makeRoof(ConditionControls& conditions, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"The roof, where this monitor drives it"_s);
    addNumberRow(column, u"&Report if not moved after"_s, u"RoofCheck"_s, conditions.RoofCheck,
                 u"seconds"_s);
    addHint(column, u"0: it is not checked. The command is sent again in every cycle."_s);
    addHint(column, u"When monitoring ends and the roof is open:"_s);
    addOptions(column, "RoofAtStop", {u"Leave &it"_s, u"&Ask"_s, u"Clos&e it first"_s},
               conditions.RoofAtStop);
    column->addStretch();
    return column->parentWidget();
}

QWidget* makeNotices(NoticeControls& notices, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Desktop notifications"_s);
    QWidget* group = column->parentWidget();
    addHint(column, u"While no window of the monitor has the focus, the desktop reports, in one "
                    u"notification:"_s);
    auto* row = new QHBoxLayout;
    row->setSpacing(2 * look::kMargin);
    row->addWidget(
        makeCheck(group, u"NoticeVerdict"_s, u"a change of the verdict"_s, notices.OnVerdict));
    row->addWidget(makeCheck(group, u"NoticeSource"_s, u"a source that fails"_s, notices.OnSource));
    row->addWidget(
        makeCheck(group, u"NoticeAlarm"_s, u"an alarm, which it can silence"_s, notices.OnAlarm));
    row->addStretch();
    column->addLayout(row);
    return group;
}

} // namespace

QWidget* makeCautionPage(ConditionControls& conditions, NoticeControls& notices, QWidget* parent) {
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    for (QWidget* group :
         {makeSooner(conditions, page), makeLater(conditions, page), makeRoof(conditions, page)})
        row->addWidget(group, 1);
    column->addLayout(row);
    column->addWidget(makeNotices(notices, page));
    column->addStretch(1); // the page is as high as the table of limits beside it
    return page;
}

} // namespace skyhold
