// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/limits_page.h"

#include "ui/pages/limits_table.h"
#include "ui/pages/page_parts.h"
#include "ui/pages/settings_changes.h"
#include "ui/pages/sources_and_delay.h"
#include "ui/widgets/side_by_side.h"
#include "ui/widgets/tonight_times.h"
#include "ui/widgets/what_if.h"

#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kSideWidth = 330;

QWidget* makeWhatIf(MonitoringCore& core, QWidget* parent) {
    QVBoxLayout* column = addGroup(parent, u"What if"_s);
    column->addWidget(new WhatIf(core, column->parentWidget()));
    column->addStretch();
    return column->parentWidget();
}

} // namespace

QWidget* makeLimitsPage(MonitoringCore& core, SettingsChanges& changes, QWidget* parent) {
    auto* table = new LimitsTable(core, parent);
    const AlarmUse use{core.records.alarms, core.records.readings, core.media, core.showMessage};
    QWidget* const whatIf = makeWhatIf(core, parent);
    QWidget* const sources = makeSourcesAndDelay(core.records.conditions, use, parent);
    QWidget* const latest = makeChangesCard(changes, parent);
    auto* page = new SideBySide(table, {whatIf, sources, latest}, kSideWidth, parent);
    new TonightTimes(core, page, [table](const LevelTimes& times) { table->showTimes(times); });
    return page;
}

} // namespace skyhold
