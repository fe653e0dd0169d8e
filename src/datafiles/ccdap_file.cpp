#include "datafiles/ccdap_file.h"

#include "platform/files.h"
#include "platform/text_encoding.h"

namespace skyhold {

namespace {

// The code of a unit, a blank when there is none, and a blank.
QString unitField(const QString& code) {
    return code.left(1).leftJustified(2);
}

} // namespace

QString FormatFixedField(double value, QStringView format, int width, const NumberForms& forms) {
    const int digits = width - 1;
    return formatNumber(value, format, forms).right(digits).rightJustified(digits) + u' ';
}

QByteArray ccdapRecord(const CurrentReadings& readings, const Clock& clock,
                       const NumberForms& forms) {
    const auto field = [&forms](double value, QStringView format, int width) {
        return FormatFixedField(value, format, width, forms);
    };
    // The rain flag and the wet flag say the same: anything but dry counts as wet.
    const double wet = readings.RainCondition == RainDry ? 0 : 2;

    QString record = formatDate(clock.now(), u"yyyy-mm-dd ");
    record += formatDate(clock.now(), u"hh:mm:ss.ss "); // no fraction: the seconds, twice
    record += unitField(readings.TemperatureUnit);
    record += unitField(readings.SpeedUnit);
    record += field(readings.SensorValues[0], u"#0.0", 7);
    record += field(readings.AmbientTemperature, u"#0.0", 7);
    record += field(readings.SkySensorTemperature, u"#0.0", 7);
    record += field(readings.WindSpeed, u"#0.0", 7);
    record += field(readings.HumidityValue, u"0", 4);
    record += field(readings.DewPointValue, u"#0.0", 7);
    record += field(readings.SensorValues[4], u"0", 4);
    record += field(wet, u"0", 2);
    record += field(wet, u"0", 2);
    record += field(SecondsSinceGoodData(readings), u"00000", 6);
    record += field(daySerial(clock.now()), u"000000.00000", 13);
    record += field(readings.CloudCondition, u"0", 2);
    record += field(readings.WindCondition, u"0", 2);
    record += field(readings.RainCondition, u"0", 2);
    record += formatNumber(readings.BrightnessCondition, u"0", forms).left(1);
    return encodeAnsi(record);
}

bool WriteCcdapFile(const CcdapControls& controls, const CurrentReadings& readings,
                    const Clock& clock, const NumberForms& forms) {
    const QString name = controls.FileNameCCDAP4.Text.value().trimmed();
    if (name.isEmpty())
        return true;
    const QString folder = controls.LblPathNameCCDAP4.Caption;
    return folderExists(folder) &&
           writeAtStart(joinPath(folder, name), ccdapRecord(readings, clock, forms));
}

} // namespace skyhold
