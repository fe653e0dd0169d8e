// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_setup_form.h"

#include "datafiles/station_check.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "records/records.h"
#include "settings/load_save.h"
#include "ui/dialogs/choose_path.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/sensor_step.h"
#include "ui/dialogs/sensor_watch.h"
#include "ui/dialogs/setup_rows.h"
#include "ui/look/look.h"
#include "ui/widgets/source_now.h"
#include "ui/widgets/station_check_view.h"
#include "ui/window/simulators.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kWidth = 720;
constexpr int kIndent = 24; // of what belongs to a radio button

constexpr int kSensorStep = 1;
constexpr int kFilesStep = 3;

constexpr int kTypingMs = 300;
constexpr int kLookMs = 2000;

// Where a spreadsheet finds it; never the folder of the program, which an update replaces.
QString offeredDataFolder() {
    return joinPath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                    u"Kiv_Skyhold"_s);
}

} // namespace

KivSetupForm::KivSetupForm(SettingsStore& settings, Simulators& simulators,
                           const CreateObject& createObject, const Clock& clock,
                           const QString& title)
    : settings_(settings)
    , simulators_(simulators)
    , clock_(clock)
    , progress_(new QLabel(this))
    , steps_(new QStackedWidget(this))
    , watch_(std::make_unique<SensorWatch>(createObject, clock, nullptr))
    , records_(std::make_unique<Records>()) {
    LoadSettings(*records_, settings);
    setObjectName(u"KivSetupForm"_s);
    setWindowTitle(title);
    QVBoxLayout* column = dialogColumn(this);
    progress_->setObjectName(u"LblProgress"_s);
    column->addWidget(progress_);
    steps_->setFixedWidth(kWidth);
    column->addWidget(steps_);
    addStationStep();
    addSensorStep();
    addUnitsStep();
    addFilesStep();
    addEndStep();
    addButtons(column);
    chooseStation();
    showStep(0);
}

KivSetupForm::~KivSetupForm() = default;

QVBoxLayout* KivSetupForm::addStep(const QString& heading, const QString& introduction) {
    auto* step = new QWidget(steps_);
    auto* column = new QVBoxLayout(step);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(look::kGap);
    auto* title = new QLabel(heading, step);
    QFont large = title->font();
    large.setPixelSize(20);
    large.setBold(true);
    title->setFont(large);
    column->addWidget(title);
    addExplanation(column, introduction);
    steps_->addWidget(step);
    return column;
}

void KivSetupForm::addStationStep() {
    QVBoxLayout* step = addStep(
        u"Where does the weather come from?"_s,
        u"Two sources are judged: a weather station, through the file that its own program "
        u"writes, and a cloud and rain sensor, through its program, which the monitor finds by "
        u"itself when a session starts."_s);
    auto* own =
        new QRadioButton(u"&My weather station's program writes a file"_s, step->parentWidget());
    own->setObjectName(u"OptStation0"_s);
    own->setChecked(true);
    step->addWidget(own);
    QVBoxLayout* block = addBlock(step, kIndent);
    ownStation_ = block->parentWidget();
    stationFile_ =
        addPath(block, u"&Weather station data file"_s, u"HTMFile"_s,
                [this](const QString& current) { return chooseStationFile(this, current); });
    addExplanation(
        block, u"An HTML page with one table, or a CSV file, rewritten every few "
               u"seconds. The monitor only reads it. If it is the wrong one or goes missing, the "
               u"monitor says so and calls the sky unsafe. It can be changed later, on "
               u"the page Sources."_s);
    dateFormat_ =
        addChoice(block, u"Dates in that file"_s, "DateFormat", {u"&dd/mm/yy"_s, u"mm/dd/&yy"_s});
    addExplanation(block, u"Does the day or the month come first in the file? With the wrong "
                          u"answer new data can look old, and old data is unsafe."_s);
    chosenCheck_ = new StationCheckView(block->parentWidget());
    block->addWidget(chosenCheck_);
    checkSoon_.setSingleShot(true);
    checkSoon_.setInterval(kTypingMs);
    connect(&checkSoon_, &QTimer::timeout, this, &KivSetupForm::checkStation);
    connect(stationFile_, &QLineEdit::textChanged, &checkSoon_, qOverload<>(&QTimer::start));
    connect(dateFormat_, &QButtonGroup::idClicked, this, &KivSetupForm::checkStation);
    checkStation();
    addTryOut(step);
    step->addStretch();
    connect(own, &QRadioButton::toggled, this, &KivSetupForm::chooseStation);
}

void KivSetupForm::addTryOut(QVBoxLayout* step) {
    tryOut_ = new QRadioButton(u"I have &no hardware yet: try it with made-up weather"_s,
                               step->parentWidget());
    tryOut_->setObjectName(u"OptStation1"_s);
    step->addWidget(tryOut_);
    QVBoxLayout* block = addBlock(step, kIndent);
    addExplanation(
        block,
        u"Two simulators that come with the program play both sources: "
        u"Kiv_NubiloSim stands in for the sensor's program, "
        u"Kiv_StationSim writes the file %1. They start at the last step, end with "
        u"the monitor, and start again from the page Sources."_s.arg(Simulators::stationFile()));
    auto* warning = new QLabel(u"Their weather is made up. It must never move a real roof."_s,
                               block->parentWidget());
    QFont bold = warning->font();
    bold.setBold(true);
    warning->setFont(bold);
    block->addWidget(warning);
    if (!Simulators::installed()) {
        tryOut_->setEnabled(false);
        tryOut_->setText(u"Try it with made-up weather: the simulators are not installed"_s);
        block->parentWidget()->hide();
    }
}

void KivSetupForm::addSensorStep() {
    QVBoxLayout* step =
        addStep(u"Which sensor do you have?"_s,
                u"A cloud and rain sensor says what a weather station does not: whether the sky is "
                u"clear, and whether it rains just now."_s);
    sensor_ = std::make_unique<SensorStep>(addBlock(step, 0));
    step->addStretch();
}

void KivSetupForm::addUnitsStep() {
    QVBoxLayout* step = addStep(
        u"Which units and limits do you use?"_s,
        u"Values are shown and limits are set in these units. While the station's file is "
        u"read the units follow the file, and limits are converted: a wrong choice here corrects "
        u"itself."_s);
    unitsTemp_ = addChoice(step, u"Temperature"_s, "UnitsTemp", {u"°&C"_s, u"°&F"_s});
    unitsSpeed_ = addChoice(step, u"Wind speed"_s, "UnitsSpeed",
                            {u"&km/hr"_s, u"&mph"_s, u"m/&s"_s, u"kno&t"_s});
    addExplanation(step, u"Choose what your station's program shows."_s);
    beyondLimit_ =
        new QCheckBox(u"&Values beyond the last limit are unsafe"_s, step->parentWidget());
    beyondLimit_->setObjectName(u"BeyondLimitUnsafe"_s);
    beyondLimit_->setChecked(true);
    step->addSpacing(look::kGap);
    step->addWidget(beyondLimit_);
    addExplanation(
        step,
        u"Each quantity has three levels, each up to its limit; you say which are "
        u"unsafe. A storm above the third limit has no level: unless you tick this, it is "
        u"reported but not judged. It can be changed later, on the page Limits and alarms."_s);
    caution_ =
        new QCheckBox(u"&React quickly to bad weather, and slowly to good"_s, step->parentWidget());
    caution_->setObjectName(u"Caution"_s);
    caution_->setChecked(true);
    step->addSpacing(look::kGap);
    step->addWidget(caution_);
    addExplanation(step, u"Rain, cloud and the station's file are also looked at between two read "
                         u"cycles, the first safe of a session waits for the delay, and three "
                         u"closures within an hour double that delay. The page Caution has each of "
                         u"these."_s);
    step->addStretch();
}

void KivSetupForm::addFilesStep() {
    QVBoxLayout* step = addStep(u"Where do files go?"_s,
                                u"Choose folders that you may write to. If one cannot be written, "
                                u"the monitor says so and goes on watching."_s);
    const auto folder = [this](const QString& what) {
        return [this, what](const QString& current) {
            return chooseFolder(this, what, current);
        };
    };
    dataFolder_ = addPath(step, u"User &data folder"_s, u"PathName"_s,
                          folder(u"Select a folder to store the user data file."_s));
    dataFolder_->setText(offeredDataFolder());
    addExplanation(step, u"For the record of all readings, a CSV file that a spreadsheet opens. "
                         u"Recording is off until you switch it on. The folder shown will do."_s);
    ccdapFolder_ = addPath(step, u"CCDAuto&pilot folder"_s, u"PathNameCCDAP4"_s,
                           folder(u"Select a folder to store the CCDAP4 file."_s));
    addExplanation(step, u"Only for CCDAutopilot, which reads the weather from a file there. "
                         u"Without CCDAutopilot leave it empty; with a wrong folder CCDAutopilot "
                         u"finds no weather."_s);
    imageFolder_ = addPath(step, u"&Image folder"_s, u"GraphImagePath"_s,
                           folder(u"Select a folder to store the image files."_s));
    addExplanation(step, u"For pictures of the six graphs, for a web page. Leave it empty to save "
                         u"none."_s);
    for (QLineEdit* optional : {ccdapFolder_, imageFolder_})
        optional->setPlaceholderText(u"None: nothing is written"_s);
    step->addStretch();
}

void KivSetupForm::addEndStep() {
    QVBoxLayout* step = addStep(u"This is what the monitor reads"_s,
                                u"Both sources as they are now. OK ends the setup; Start then "
                                u"begins the first session."_s);
    stationNow_ = new SourceNowView(u"Weather station"_s, u"Station"_s, step->parentWidget());
    sensorNow_ = new SourceNowView(u"Cloud and rain sensor"_s, u"Sensor"_s, step->parentWidget());
    auto* both = new QHBoxLayout;
    both->setContentsMargins(0, look::kMargin, 0, 0);
    both->setSpacing(2 * look::kMargin);
    both->addWidget(stationNow_, 1);
    both->addWidget(sensorNow_, 1);
    step->addLayout(both);
    step->addStretch();
    watch_->onSeen = [this](const SourceNow& now) {
        sensorNow_->show(now);
    };
    checkAgain_.setInterval(kLookMs);
    connect(&checkAgain_, &QTimer::timeout, this, &KivSetupForm::checkStation);
}

// Into both views: one of them is shown.
void KivSetupForm::checkStation() {
    const QString path = tryOut_ && tryOut_->isChecked() ? Simulators::stationFile()
                                                         : stationFile_->text().trimmed();
    if (path.isEmpty()) {
        chosenCheck_->showNone(u"No file is chosen yet"_s);
        return;
    }
    records_->units.DateFormat.Index = dateFormat_->checkedId();
    const StationCheck check =
        checkStationFile(path, records_->units, records_->stationFile.TimeoutREAD.Value,
                         localeNumberForms(), clock_.now());
    chosenCheck_->showCheck(check);
    if (stationNow_)
        stationNow_->show(stationNow(check));
}

void KivSetupForm::watchSources() {
    checkStation();
    checkAgain_.start();
    if (sensor_->prepared().isEmpty() || tryOut_->isChecked())
        watch_->askProgram(tryOut_->isChecked());
    else
        watch_->measure(SensorStep::program(), sensor_->prepared());
}

void KivSetupForm::addButtons(QVBoxLayout* column) {
    const OkAndCancel buttons = addOkAndCancel(this, column);
    ok_ = buttons.ok;
    buttons.cancel->setObjectName(u"Command1"_s);
    buttons.cancel->setToolTip(u"Quit without setting up"_s);
    auto* row = static_cast<QHBoxLayout*>(column->itemAt(column->count() - 1)->layout());
    const auto makeButton = [this, row](const QString& name, const QString& text, int by, int at) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(name);
        button->setMinimumSize(96, 32);
        connect(button, &QPushButton::clicked, this, [this, by] { goOn(by); });
        row->insertWidget(at, button);
        return button;
    };
    back_ = makeButton(u"ButtBack"_s, u"&Back"_s, -1, 0);
    next_ = makeButton(u"ButtNext"_s, u"Ne&xt"_s, 1, 1);
    setTabOrder(back_, next_);
    setTabOrder(next_, ok_);
    setTabOrder(ok_, buttons.cancel);
}

// A simulator is the sensor where one plays the station: there is nothing to ask.
// The end comes with a source that can be read, or nothing would be shown there.
void KivSetupForm::goOn(int by) {
    const bool fromStation = steps_->currentIndex() == 0 && by > 0;
    const bool toEnd = steps_->currentIndex() + by == steps_->count() - 1;
    if ((fromStation && !tryOut_->isChecked()) || toEnd) {
        if (!prepareStation())
            return;
    }
    if (toEnd && (!prepareFolders() || !prepareSensor()))
        return;
    const int next = steps_->currentIndex() + by;
    const bool simulated = next == kSensorStep && tryOut_->isChecked();
    showStep(simulated ? next + by : next);
}

// Return goes on to the next step, and from the last one it ends the setup.
void KivSetupForm::showStep(int step) {
    const int last = steps_->count() - 1;
    const bool moved = step != steps_->currentIndex();
    steps_->setCurrentIndex(step);
    progress_->setText(u"Before the first start: step %1 of %2"_s.arg(step + 1).arg(last + 1));
    back_->setEnabled(step > 0);
    next_->setEnabled(step < last);
    QPushButton* goesOn = step < last ? next_ : ok_;
    goesOn->setDefault(true);
    if (step == last) {
        watchSources();
    } else {
        checkAgain_.stop();
        watch_->stop();
    }
    if (!moved)
        return;
    for (QWidget* widget = steps_->currentWidget()->nextInFocusChain();
         steps_->currentWidget()->isAncestorOf(widget); widget = widget->nextInFocusChain()) {
        if (widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus)) {
            widget->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

void KivSetupForm::chooseStation() {
    ownStation_->setEnabled(!tryOut_->isChecked());
    if (tryOut_->isChecked())
        dateFormat_->button(0)->setChecked(true); // as the simulated station writes them
}

void KivSetupForm::showFault(const QString& text) {
    KivError({text, MessageStyle::Ok, {}}, windowTitle(), this).ask();
}

// False, with the reason shown, when no station's file is known or the simulators do not run.
bool KivSetupForm::prepareStation() {
    if (tryOut_->isChecked()) {
        const QString fault = simulators_.start();
        if (!fault.isEmpty())
            showFault(u"The simulators could not be started. "_s + fault);
        return fault.isEmpty();
    }
    if (!stationFile_->text().trimmed().isEmpty())
        return true;
    showFault(u"Please define path for Weather Station Data File"_s);
    showStep(0);
    stationFile_->setFocus();
    return false;
}

// False, with the reason shown, when the sensor's program could not be set up.
bool KivSetupForm::prepareSensor() {
    if (tryOut_->isChecked())
        return true;
    setEnabled(false);
    const QString fault = sensor_->prepare();
    setEnabled(true);
    if (fault.isEmpty())
        return true;
    showFault(fault);
    showStep(kSensorStep);
    return false;
}

// False, with the reason shown, for a folder that an update replaces.
bool KivSetupForm::prepareFolders() {
    for (QLineEdit* folder : {dataFolder_, ccdapFolder_, imageFolder_}) {
        const QString path = folder->text().trimmed();
        if (path.isEmpty() ||
            !(QDir::cleanPath(path) + u'/').startsWith(QDir::cleanPath(programFolder()) + u'/'))
            continue;
        showFault(u"That is the program's own folder, which an update replaces. Please choose "
                  u"another one."_s);
        showStep(kFilesStep);
        folder->setFocus();
        return false;
    }
    return true;
}

void KivSetupForm::accept() {
    if (!prepareStation() || !prepareFolders() || !prepareSensor())
        return;
    if (!tryOut_->isChecked()) {
        const QString fault = sensor_->save();
        if (!fault.isEmpty()) {
            showFault(fault);
            return;
        }
    }
    watch_->stop();
    save(tryOut_->isChecked() ? Simulators::stationFile() : stationFile_->text().trimmed());
    QDialog::accept();
}

void KivSetupForm::save(const QString& station) {
    const QString ccdap = ccdapFolder_->text().trimmed();
    const QString images = imageFolder_->text().trimmed();
    settings_.SaveSetting(u"Setup"_s, u"HTMFile"_s, station);
    const QString data = dataFolder_->text().trimmed();
    settings_.SaveSetting(u"Window"_s, u"PathName"_s, data.isEmpty() ? offeredDataFolder() : data);
    if (data.isEmpty() || data == offeredDataFolder())
        createFolder(offeredDataFolder()); // recording may begin before any session
    settings_.SaveSetting(u"Window"_s, u"PathNameCCDAP4"_s, ccdap);
    settings_.SaveSetting(u"Graphs"_s, u"GraphImagePath"_s, images);
    saveOptions(u"UnitsTemp"_s, *unitsTemp_);
    saveOptions(u"UnitsSpeed"_s, *unitsSpeed_);
    saveOptions(u"DateFormat"_s, *dateFormat_);
    settings_.SaveSetting(u"Verdict"_s, u"BeyondLimitUnsafe"_s,
                          beyondLimit_->isChecked() ? u"1"_s : u"0"_s);
    if (caution_->isChecked()) {
        for (const QString& key : {u"QuickReaction"_s, u"EarnFirstSafe"_s})
            settings_.SaveSetting(u"Verdict"_s, key, u"1"_s);
        settings_.SaveSetting(u"Verdict"_s, u"FlapClosures"_s, u"3"_s);
    }
    if (ccdap.isEmpty())
        settings_.SaveSetting(u"Window"_s, u"FileNameCCDAP4"_s, QString());
    if (images.isEmpty()) {
        for (const char* graph : {"Wind", "Gust", "Dir", "Hum", "Dew", "Temp"})
            settings_.SaveSetting(u"Graphs"_s, u"Image"_s + QString::fromLatin1(graph), u"0"_s);
    }
    if (!settings_.flush())
        showFault(u"The settings could not be saved to "_s + settings_.filePath());
}

void KivSetupForm::saveOptions(const QString& key, const QButtonGroup& group) {
    for (QAbstractButton* option : group.buttons()) {
        const int index = group.id(option);
        settings_.SaveSetting(u"Limit"_s, key + QString::number(index),
                              index == group.checkedId() ? u"True"_s : u"False"_s);
    }
}

bool runSetupForm(SettingsStore& settings, Simulators& simulators, const CreateObject& createObject,
                  const Clock& clock) {
    const QString title = u"%1 (v%2)"_s.arg(QCoreApplication::applicationName(),
                                            QCoreApplication::applicationVersion());
    return KivSetupForm(settings, simulators, createObject, clock, title).exec() ==
           QDialog::Accepted;
}

} // namespace skyhold
