// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/monitoring_core.h"

#include "core/alarms.h"
#include "core/recording.h"
#include "graphs/history.h"
#include "records/status_lines.h"
#include "units/unit_change.h"

namespace skyhold {

namespace {

QString padded(int number, int width) {
    return QString::number(number).rightJustified(width, u'0');
}

// An alarm without a sound cannot be switched on.
void requireSound(CheckBox& box) {
    box.Click = [&box] {
        if (box.Tag.value().isEmpty())
            box.Value = 0;
    };
}

void unitRules(Records& records) {
    records.units.UnitsSpeed.Click = [&records](int index) {
        UnitsSpeed_Click(index, records.units, records.conditions, records.readings,
                         [&records](SpeedCode fromCode, SpeedCode toCode) {
                             convertSpeedHistory(records.history, fromCode, toCode);
                         });
    };
    records.units.UnitsTemp.Click = [&records](int index) {
        UnitsTemp_Click(index, records.units, records.conditions, records.readings,
                        [&records](TemperatureCode fromCode, TemperatureCode toCode) {
                            convertTemperatureHistory(records.history, fromCode, toCode);
                        });
    };
}

void graphRules(GraphHistory& history, GraphControls& graphs, ComboBox& refreshRead) {
    graphs.GraphNoPoints.Change = [&] {
        SetCapacity(history, graphs, refreshRead);
    };
    graphs.GraphFreq.Change = [&] {
        SetSampleEvery(history, graphs, refreshRead);
    };
    refreshRead.Click = [&] {
        UpdateSpanText(history, graphs, refreshRead);
    };
}

// The quality matters to JPEG alone.
void imageRules(GraphControls& graphs) {
    graphs.ImageType.Click = [&graphs] {
        const bool png = graphs.ImageType.checked();
        graphs.ImageType.Caption = png ? QStringLiteral("Image PNG") : QStringLiteral("Image JPEG");
        graphs.ImageQuality.Visible = !png;
    };
    graphs.ImageType.Click();
}

} // namespace

QString ProgramVersion::text() const {
    return QStringLiteral("%1.%2.%3")
        .arg(QString::number(major), padded(minor, 2), padded(revision, 3));
}

QString ProgramVersion::title() const {
    return QStringLiteral("Kiv_Skyhold (v%1)").arg(text());
}

QString ProgramVersion::trayTip() const {
    return QStringLiteral("Kiv Skyhold (v%1)").arg(text()).left(63);
}

MonitoringCore::MonitoringCore(Clock& theClock, SettingsStore& theSettings,
                               CreateObject createObject, MediaControl& theMedia,
                               const ProgramVersion& theVersion)
    : clock(theClock)
    , settings(theSettings)
    , media(theMedia)
    , version(theVersion)
    , sensor(std::move(createObject), theClock)
    , TimerRead(theClock)
    , TimerUpload(theClock)
    , TimerPlayer(theClock)
    , TimerLook(theClock)
    , Timer6(theClock)
    , forms(localeNumberForms()) {
    for (const Quantity quantity : kAllQuantities) {
        for (CheckBox& box : records.alarms.Alarm[quantity])
            requireSound(box);
    }
    requireSound(records.alarms.AlarmWS);
    requireSound(records.alarms.AlarmNB);
    requireSound(records.alarms.AlarmRoof);

    showNews = [this](const QString& text) {
        showMessage({text, MessageStyle::Ok, QStringLiteral("News")});
    };
    showNotice = [this](const Message& message) {
        showMessage(message);
    };
    closeNotices = [] {
    };
    alarmRules(*this);
    unitRules(records);
    prepareUpload(*this);
    graphRules(records.history, records.graphs, records.session.RefreshRead);
    imageRules(records.graphs);
    // At once, not only with the next cycle.
    imageWriter.failedChanged = [this] {
        if (imageWriter.failed())
            SetErrorCodes(records.session.Statusbar2, QStringLiteral("i23"), kRed);
    };
    records.dataFile.RecOption.Click = [this](int index) {
        chooseRecording(*this, index);
    };
    records.dataFile.SaveFreq.Change = [this] {
        SetSaveFreq(records.dataFile.SaveFreq);
    };
    historyRules(records.historyKeep);
    records.session.EmulatorFlag.Click = [this] {
        if (!records.units.Loading)
            settings.saveNow(QStringLiteral("Setup"), QStringLiteral("Emulator"),
                             QString::number(records.session.EmulatorFlag.Value));
    };
}

} // namespace skyhold
