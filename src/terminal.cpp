// SPDX-License-Identifier: GPL-3.0-or-later
#include "terminal.h"

#include "platform/text_forms.h"

#include <cstdio>

namespace skyhold {

namespace {

MessageAnswer safestAnswer(MessageStyle style) {
    switch (style) {
    case MessageStyle::YesNo:
        return MessageAnswer::No;
    case MessageStyle::YesNoCancel:
        return MessageAnswer::Cancel;
    case MessageStyle::Ok:
        break;
    }
    return MessageAnswer::Ok;
}

QString reading(const char* name, const Label& value, const Label& condition) {
    const QString text =
        QStringLiteral("%1 %2 %3")
            .arg(QLatin1String(name), value.Caption.value(), condition.Caption.value());
    return text.simplified();
}

QString colourName(Colour colour) {
    switch (colour) {
    case kRed:
        return QStringLiteral("red");
    case kGreen:
        return QStringLiteral("green");
    case kYellow:
        return QStringLiteral("yellow");
    default:
        return QStringLiteral("grey");
    }
}

// Of the verdict, and of the reading.
QString lamps(const Records& records) {
    const LampPair& read = records.display.LEDRead;
    const Colour lit = read.first.FillColor == kGrey ? read.second.FillColor : read.first.FillColor;
    return QStringLiteral("lamps %1 %2")
        .arg(colourName(records.conditions.LEDUnsafe.FillColor), colourName(lit));
}

} // namespace

ShowMessage terminalMessages() {
    return [](const Message& message) {
        const QString title =
            message.title.isEmpty() ? QStringLiteral("Kiv_Skyhold") : message.title;
        const QString text = message.about.isEmpty()
                                 ? message.text
                                 : message.about + QStringLiteral(": ") + message.text;
        std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(text));
        return safestAnswer(message.style);
    };
}

QString cycleLine(const Records& records, const QDateTime& now) {
    const ReadingDisplay& show = records.display;
    QString cause = show.LblCause.Caption;
    const QString delay = records.conditions.SafeDelayMsg.Caption;
    if (!delay.isEmpty())
        cause += QStringLiteral(", ") + delay;
    const QStringList parts{
        formatDate(now, u"yyyy-mm-dd hh:mm:ss"),
        records.conditions.LblStatus.Caption.value().toUpper().leftJustified(6),
        cause,
        reading("cloud", show.LVal[Quantity::Cloud], show.LCond[Quantity::Cloud]),
        reading("rain", show.LVal[Quantity::Rain], show.LCond[Quantity::Rain]),
        reading("light", show.LVal[Quantity::Brightness], show.LCond[Quantity::Brightness]),
        reading("temperature", show.LVal[Quantity::Temperature], show.LCond[Quantity::Temperature]),
        reading("wind", show.LVal[Quantity::Wind], show.LCond[Quantity::Wind]),
        reading("gust", show.LVal[Quantity::Gust], show.LCond[Quantity::Gust]),
        reading("direction", show.LValWindDir, Label()),
        reading("dew point", show.LVal[Quantity::Dew], show.LCond[Quantity::Dew]),
        reading("humidity", show.LVal[Quantity::Humidity], show.LCond[Quantity::Humidity]),
        lamps(records),
        records.session.Statusbar1.Caption,
        records.session.Statusbar2.Caption};
    return parts.join(QStringLiteral(" | "));
}

} // namespace skyhold
