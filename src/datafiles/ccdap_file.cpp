// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/ccdap_file.h"

#include "platform/files.h"
#include "platform/text_encoding.h"

namespace skyhold {

namespace {

// The code of a unit and a blank.
template <class Code>
void addUnit(TextBuffer& record, Code code) {
    record.append(QChar(static_cast<char16_t>(code)));
    record.append(u' ');
}

void addField(TextBuffer& record, double value, QStringView format, int width,
              const NumberForms& forms) {
    const qsizetype begin = record.size();
    const qsizetype digits = width - 1;
    appendNumber(record, value, format, forms);
    const qsizetype missing = digits - (record.size() - begin);
    if (missing > 0)
        record.insert(begin, missing, u' ');
    else
        record.remove(begin, -missing);
    record.append(u' ');
}

} // namespace

QString FormatFixedField(double value, QStringView format, int width, const NumberForms& forms) {
    TextBuffer text;
    addField(text, value, format, width, forms);
    return QString(text.constData(), text.size());
}

QByteArray ccdapRecord(const CurrentReadings& readings, const Clock& clock,
                       const NumberForms& forms) {
    TextBuffer record;
    const auto field = [&record, &forms](double value, QStringView format, int width) {
        addField(record, value, format, width, forms);
    };
    // The record has room for numbers alone: a missing value is 0. Its age field says that the data
    // is not good.
    // The rain flag and the wet flag say the same: anything but dry counts as wet.
    const double wet = readings.Condition[Quantity::Rain] == RainDry ? 0 : 2;

    appendDate(record, clock.now(), u"yyyy-mm-dd ");
    appendDate(record, clock.now(), u"hh:mm:ss.ss "); // no fraction: the seconds, twice
    addUnit(record, readings.TemperatureUnit);
    addUnit(record, readings.SpeedUnit);
    field(readings.SensorValues[kSkyTemperature], u"#0.0", 7);
    field(readings.AmbientTemperature, u"#0.0", 7);
    field(readings.SkySensorTemperature, u"#0.0", 7);
    field(readings.WindSpeed.value_or(0), u"#0.0", 7);
    field(readings.HumidityValue.value_or(0), u"0", 4);
    field(readings.DewPointValue.value_or(0), u"#0.0", 7);
    field(readings.SensorValues[kRainHeaterPercent], u"0", 4);
    field(wet, u"0", 2);
    field(wet, u"0", 2);
    field(SecondsSinceGoodData(readings), u"00000", 6);
    field(daySerial(clock.now()), u"000000.00000", 13);
    field(readings.Condition[Quantity::Cloud], u"0", 2);
    field(readings.Condition[Quantity::Wind], u"0", 2);
    field(readings.Condition[Quantity::Rain], u"0", 2);
    record.append(formatNumber(readings.Condition[Quantity::Brightness], u"0", forms).at(0));
    return encodeAnsi(record);
}

bool WriteCcdapFile(const CcdapControls& controls, const CurrentReadings& readings,
                    const Clock& clock, const NumberForms& forms) {
    const QString name = controls.FileNameCCDAP4.Text.value().trimmed();
    if (name.isEmpty())
        return true;
    const QString folder = controls.LblPathNameCCDAP4.Caption;
    return !folder.trimmed().isEmpty() &&
           writeAtStart(joinPath(folder, name), ccdapRecord(readings, clock, forms));
}

} // namespace skyhold
