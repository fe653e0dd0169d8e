#include "core/monitoring_core.h"

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
                               CreateObject createObject, const ProgramVersion& theVersion)
    : clock(theClock)
    , settings(theSettings)
    , version(theVersion)
    , sensor(std::move(createObject), theClock)
    , TimerRead(theClock)
    , TimerUpload(theClock)
    , Timer6(theClock)
    , forms(localeNumberForms()) {
    for (const Quantity quantity : kAllQuantities) {
        for (CheckBox& box : records.alarms.alarms(quantity))
            requireSound(box);
    }
    requireSound(records.alarms.AlarmWS);
    requireSound(records.alarms.AlarmNB);

    records.units.UnitsSpeed.Click = [this](int index) {
        UnitsSpeed_Click(index, records.units, records.conditions, records.readings, nullptr);
    };
    records.units.UnitsTemp.Click = [this](int index) {
        UnitsTemp_Click(index, records.units, records.conditions, records.readings, nullptr);
    };
    records.session.EmulatorFlag.Click = [this] {
        if (!records.units.Loading)
            settings.saveNow(QStringLiteral("Setup"), QStringLiteral("Emulator"),
                             QString::number(records.session.EmulatorFlag.Value));
    };
}

} // namespace skyhold
