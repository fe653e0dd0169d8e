// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/sources_page.h"

#include "ui/dialogs/choose_path.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/dialogs/kiv_cardinal_points.h"
#include "ui/dialogs/kiv_unit_symbols.h"
#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/open_editor.h"
#include "ui/widgets/readout.h"
#include "ui/widgets/station_check_view.h"
#include "ui/window/simulators.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

void chooseFile(StationFileControls& file, SettingsStore& settings, QWidget* parent) {
    if (!file.ButtHTMPath.Enabled)
        return;
    const QString chosen = chooseStationFile(parent, file.HTMFile.Caption);
    if (chosen.isEmpty() || !file.ButtHTMPath.Enabled) // locked meanwhile
        return;
    file.HTMFile.Caption = chosen;
    settings.saveNow(u"Setup"_s, u"HTMFile"_s, chosen);
}

void addFileRow(QVBoxLayout* column, StationFileControls& file, SettingsStore& settings) {
    QWidget* group = column->parentWidget();
    auto* button = new QPushButton(u"Data fil&e…"_s, group);
    button->setObjectName(u"ButtHTMPath"_s);
    button->setToolTip(u"Choose the file that the weather station's program writes"_s);
    bind(button, file.ButtHTMPath);
    QLineEdit* path = makePath(group, u"HTMFile"_s, file.HTMFile);
    const auto choose = [&file, &settings, group] {
        chooseFile(file, settings, group);
    };
    openEditorFrom(button, choose);
    openEditorOn(path, choose);
    path->setFocusPolicy(Qt::StrongFocus); // its text can be selected

    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    row->addWidget(button);
    row->addWidget(path, 1);
    column->addLayout(row);
}

// Checked when the user chooses a file, its date order or its age limit, and on the button; never
// by itself, for a file of a network that hangs would hold the window.
void addCheck(QVBoxLayout* column, MonitoringCore& core) {
    QWidget* group = column->parentWidget();
    auto* view = new StationCheckView(group);
    view->showNone(u"Not checked yet"_s);
    auto* again = new QPushButton(u"Check this file"_s, group);
    again->setObjectName(u"ButtCheckStation"_s);
    again->setToolTip(u"Read the file now and show what the monitor makes of it"_s);
    const auto check = [&core, view] {
        const StationFileControls& file = core.records.stationFile;
        const QString path = file.HTMFile.Caption;
        if (path.isEmpty())
            view->showNone(u"No file is chosen"_s);
        else
            view->showCheck(checkStationFile(path, core.records.units, file.TimeoutREAD.Value,
                                             core.forms, core.clock.now()));
    };
    QObject::connect(again, &QPushButton::clicked, view, check);
    const auto checkOnChange = [view, check](auto& property) {
        holdNotifier(view, property.addNotifier(check));
    };
    checkOnChange(core.records.stationFile.HTMFile.Caption);
    checkOnChange(core.records.stationFile.TimeoutREAD.Value);
    checkOnChange(core.records.units.DateFormat.Index);
    column->addWidget(view);
    column->addWidget(again, 0, Qt::AlignLeft);
}

void addIntervalRow(QVBoxLayout* column, ComboBox& interval) {
    QWidget* group = column->parentWidget();
    auto* caption = new QLabel(u"&Read every"_s, group);
    auto* box = new QComboBox(group);
    box->setObjectName(u"RefreshRead"_s);
    caption->setBuddy(box);
    bind(box, interval);
    auto* row = new QHBoxLayout;
    row->addWidget(caption);
    row->addStretch();
    row->addWidget(box);
    column->addLayout(row);
}

// Only while the station's file is the simulators'.
void addSimulatorsRow(QVBoxLayout* column, Label& stationFile) {
    auto* holder = new QWidget(column->parentWidget());
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(look::kMargin);
    auto* start = new QPushButton(u"Start sim&ulators"_s, holder);
    start->setObjectName(u"ButtSimulators"_s);
    auto* note = new QLabel(holder);
    note->setObjectName(u"LblSimulators"_s);
    note->setWordWrap(true);
    row->addWidget(start);
    row->addWidget(note, 1);
    column->addWidget(holder);

    Simulators& simulators = Simulators::of(qApp);
    const auto show = [&simulators, start, note](const QString& fault = {}) {
        start->setEnabled(!simulators.running());
        note->setText(fault.isEmpty() ? u"This weather is made up: simulators write the file."_s
                                      : fault);
    };
    show();
    QObject::connect(&simulators, &Simulators::changed, holder, [show] { show(); });
    QObject::connect(start, &QPushButton::clicked, holder,
                     [&simulators, show] { show(simulators.start()); });
    follow(holder, stationFile.Caption, [holder](const QString& path) {
        holder->setVisible(path == Simulators::stationFile());
    });
}

QWidget* makeStationGroup(MonitoringCore& core, QWidget* page) {
    Records& records = core.records;
    QVBoxLayout* column = addGroup(page, u"Weather station"_s);
    QWidget* group = column->parentWidget();
    column->addWidget(makeCheck(group, u"flgReadStation"_s,
                                u"Read the &weather station and the cloud sensor"_s,
                                records.session.flgReadStation));
    addFileRow(column, records.stationFile, core.settings);
    addSimulatorsRow(column, records.stationFile.HTMFile);
    addCheck(column, core);
    addIntervalRow(column, records.session.RefreshRead);
    addNumberRow(column, u"Data too old &after"_s, u"TimeoutREAD"_s,
                 records.stationFile.TimeoutREAD, u"min"_s);
    addHint(column, u"Date format used by the program controlling the weather station"_s);
    addOptions(column, "DateFormat", {u"&dd/mm/yy"_s, u"&mm/dd/yy"_s}, records.units.DateFormat);
    column->addStretch();
    return group;
}

QWidget* makeUnitsGroup(UnitControls& units, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Units"_s);
    QWidget* group = column->parentWidget();
    addHint(column, u"They follow the station's file while it is read."_s);
    addOptions(column, "UnitsTemp", {u"°C"_s, u"°F"_s}, units.UnitsTemp);
    addOptions(column, "UnitsSpeed", {u"km/hr"_s, u"mph"_s, u"m/s"_s, u"knot"_s}, units.UnitsSpeed);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    const auto addButton = [&](const QString& name, const QString& text, Button& record,
                               const QString& what, auto open) {
        auto* button = new QPushButton(text, group);
        button->setObjectName(name);
        button->setToolTip(what);
        bind(button, record);
        openEditorFrom(button, open);
        row->addWidget(button);
    };
    addButton(u"ButtUnits"_s, u"U&nit symbols…"_s, units.ButtUnits,
              u"Change the texts by which units are recognised in the station's file"_s,
              [&units, group] {
                  KivUnitSymbols editor(units, group);
                  execOver(editor);
              });
    addButton(u"ButtCardinal"_s, u"Cardinal &points…"_s, units.ButtCardinal,
              u"Change the compass labels that the station's file uses"_s, [&units, group] {
                  KivCardinalPoints editor(units.Cardinal, group);
                  execOver(editor);
              });
    row->addStretch();
    column->addLayout(row);
    column->addStretch();
    return group;
}

QWidget* makeSensorGroup(SessionControls& session, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Cloud sensor (Kiv_Nubilo)"_s);
    QWidget* group = column->parentWidget();
    addNumberRow(column, u"Wa&it for its first data"_s, u"NBTimeout"_s, session.NBTimeout,
                 u"secs"_s);
    QCheckBox* emulator = makeCheck(group, u"EmulatorFlag"_s, {}, session.EmulatorFlag);
    emulator->setToolTip(u"Kept with the settings: it marks that the monitor has been set up. With "
                         u"or without it the monitor works the same."_s);
    column->addWidget(emulator);
    addHint(column, u"Roof switch driven by the verdict"_s);
    addOptions(column, "SWRole", {u"Enabled"_s, u"Disable"_s}, session.SWRole);
    column->addStretch();
    return group;
}

// The table as the station's file filled it.
QWidget* makeStationValues(ReadingDisplay& display, QWidget* page) {
    auto* group = new QGroupBox(u"Station values"_s, page);
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(14, 8, 14, 10);
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(3);
    for (std::size_t i = 0; i < display.LblWSValue.size(); ++i) {
        auto* description = new Readout(group);
        description->setObjectName(indexed("LblWSDesc", i));
        description->setTone(Tone::Dim);
        auto* value = new Readout(group);
        value->setObjectName(indexed("LblWSValue", i));
        for (Readout* cell : {description, value})
            cell->setPixelSize(12);
        bind(description, display.LblWSDesc[i]);
        bind(value, display.LblWSValue[i]);
        grid->addWidget(description, static_cast<int>(i), 0);
        grid->addWidget(value, static_cast<int>(i), 1);
    }
    grid->setRowStretch(static_cast<int>(display.LblWSValue.size()), 1);
    return group;
}

} // namespace

QWidget* makeSourcesPage(MonitoringCore& core, QWidget* parent) {
    auto* page = new QWidget(parent);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(look::kMargin);
    columns->addWidget(makeStationGroup(core, page), 4);
    auto* middle = new QVBoxLayout;
    middle->setSpacing(look::kGap);
    middle->addWidget(makeUnitsGroup(core.records.units, page));
    middle->addWidget(makeSensorGroup(core.records.session, page), 1);
    columns->addLayout(middle, 4);
    columns->addWidget(makeStationValues(core.records.display, page), 3);
    pageColumn(page)->addLayout(columns);
    return page;
}

} // namespace skyhold
