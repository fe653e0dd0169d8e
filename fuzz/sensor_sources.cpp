// SPDX-License-Identifier: GPL-3.0-or-later
// What real sensors say, and the settings that name them.
#include "target.h"

#include "sensors/indi_reader.h"
#include "sensors/measurements.h"
#include "sensors/payload.h"

#include <cmath>

namespace skyhold::fuzz {

namespace {

const QString kBad = QStringLiteral("bad");

QString lineOf(const IndiMessage& message) {
    QStringList parts{QString::number(static_cast<int>(message.kind)), message.type, message.device,
                      message.property, message.state};
    for (const IndiElement& element : message.elements)
        parts << element.name << element.label << element.text;
    return parts.join(QChar(0x1F));
}

// The messages in the stream, which comes in pieces; kBad behind the last one where the stream is
// given up.
QStringList messagesIn(QByteArrayView stream, qsizetype piece) {
    QStringList lines;
    IndiReader reader([&lines](const IndiMessage& message) {
        require(message.elements.size() <= IndiReader::kElementLimit, "a message has an end");
        lines.append(lineOf(message));
    });
    for (qsizetype at = 0; at < stream.size(); at += piece) {
        const qsizetype size = std::min(piece, stream.size() - at);
        if (!reader.read(stream.sliced(at, size).toByteArray()))
            return lines << kBad;
    }
    return lines;
}

void indiStream(QByteArrayView bytes) {
    Input input(bytes);
    const qsizetype piece = 1 + input.byte() % 64;
    const QByteArrayView stream = input.rest();
    if (stream.isEmpty())
        return;
    QStringList inPieces = messagesIn(stream, piece);
    QStringList whole = messagesIn(stream, stream.size());
    const bool bad = (inPieces + whole).removeAll(kBad) > 0;
    inPieces.removeAll(kBad);
    whole.removeAll(kBad);
    // Bytes that are no text are noticed before or behind the messages of their piece.
    const qsizetype read = bad ? std::min(inPieces.size(), whole.size()) : whole.size();
    require((bad || inPieces.size() == read) && inPieces.first(read) == whole.first(read),
            "a stream says the same however it is cut");
}

void sensorValues(QByteArrayView bytes) {
    Input input(bytes);
    const QByteArrayView text = input.upToZero();
    QStringList faults;
    const SensorSettings settings = sensorSettings(text, faults);
    QString fault;
    const std::optional<QMap<QString, QString>> values = payloadValues(input.rest(), fault);
    require(values.has_value() == fault.isEmpty(), "what is not understood has a reason");
    if (!faults.isEmpty() || !values)
        return;
    std::int64_t now = 0;
    Measurements measurements(settings, [&now] { return now; });
    for (auto value = values->begin(); value != values->end(); ++value) {
        for (const SourceSettings& source : settings.sources)
            measurements.of(source.name).take(value.key(), value.value(), ++now);
    }
    for (const ItemRow& row : kItems) {
        const std::optional<double> value = measurements.value(row.item);
        require(!value || std::isfinite(*value), "a value is finite");
        const std::optional<std::int32_t> level = measurements.level(row.item);
        require(!level || (*level >= 1 && *level <= 3), "a level is one of three");
    }
    now += 1'000'000'000'000;
    for (const ItemRow& row : kItems)
        require(!measurements.value(row.item) && !measurements.level(row.item),
                "nothing outlives its age");
}

} // namespace

const Target kIndiStream{"indi_stream", indiStream};
const Target kSensorValues{"sensor_values", sensorValues};

} // namespace skyhold::fuzz
