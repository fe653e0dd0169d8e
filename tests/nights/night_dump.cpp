#include "night_dump.h"

#include <QFile>
#include <QSequentialIterable>

#include <span>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

void append(const std::string& name, const QString& text) {
    QFile file(qEnvironmentVariable("SKYHOLD_NIGHT_DUMP") + u'/' + QString::fromStdString(name));
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        file.write(text.toUtf8());
}

bool wanted() {
    return qEnvironmentVariableIsSet("SKYHOLD_NIGHT_DUMP");
}

QString textOf(const QVariant& value) {
    const QMetaType type = value.metaType();
    if (type == QMetaType::fromType<AutomationDate>())
        return QString::number(value.value<AutomationDate>().days, 'g', 17);
    if (type == QMetaType::fromType<double>())
        return QString::number(value.toDouble(), 'g', 17);
    if (type != QMetaType::fromType<QVariantList>() &&
        type != QMetaType::fromType<QList<QVariantList>>())
        return value.toString();
    QStringList parts;
    for (const QVariant& part : value.value<QSequentialIterable>())
        parts += textOf(part);
    return u'[' + parts.join(u", "_s) + u']';
}

// What a client may ask without changing anything.
bool onlyReads(const AutomationMember& member) {
    const bool acts = member.name.startsWith(u"Device_") || member.name == u"MForm";
    return (member.use == kPropertyGet || member.use == kMethod) && member.parameters.empty() &&
           member.result != AutomationType::Empty && !acts;
}

QString labelText(const Label& label) {
    return u"\"%1\" %2 %3 %4\n"_s.arg(label.Caption)
        .arg(label.ForeColor, 6, 16, QChar(u'0'))
        .arg(label.BackColor, 6, 16, QChar(u'0'))
        .arg(label.Visible ? u"shown"_s : u"hidden"_s);
}

} // namespace

void dumpCalls(const std::string& night, const QString& time, const QStringList& calls) {
    if (wanted())
        append(night + ".calls", time + u"\n  "_s + calls.join(u"\n  "_s) + u'\n');
}

void dumpMonitor(const std::string& night, int cycle, const MemberTable& members,
                 const Records& records, const QString& folder) {
    if (!wanted())
        return;
    // Before the members, whose calls show as activity.
    const ReadingDisplay& display = records.display;
    const ConditionControls& conditions = records.conditions;
    const SessionControls& session = records.session;
    QString text = u"cycle %1\n"_s.arg(cycle);
    for (const Quantity quantity :
         {Quantity::Cloud, Quantity::Rain, Quantity::Brightness, Quantity::Wind, Quantity::Gust})
        text += labelText(display.Label0[quantity]);
    text += labelText(display.Label0Direction);
    for (const Quantity quantity : {Quantity::Dew, Quantity::Humidity, Quantity::Temperature})
        text += labelText(display.Label0[quantity]);
    for (const auto& labels : {std::span<const Label>(display.LblWSDesc),
                               {display.LblWSValue},
                               {conditions.Direction[Quantity::Wind]},
                               {conditions.Direction[Quantity::Gust]}}) {
        for (const Label& label : labels)
            text += labelText(label);
    }
    for (const Label* label : {&display.LVal[Quantity::Cloud],
                               &display.LVal[Quantity::Rain],
                               &display.LVal[Quantity::Brightness],
                               &display.LVal[Quantity::Temperature],
                               &display.LVal[Quantity::Wind],
                               &display.LVal[Quantity::Gust],
                               &display.LValWindDir,
                               &display.LVal[Quantity::Dew],
                               &display.LVal[Quantity::Humidity],
                               &display.LValSwitch,
                               &display.LCond[Quantity::Cloud],
                               &display.LCond[Quantity::Rain],
                               &display.LCond[Quantity::Brightness],
                               &display.LCond[Quantity::Temperature],
                               &display.LCond[Quantity::Wind],
                               &display.LCond[Quantity::Gust],
                               &display.LCond[Quantity::Dew],
                               &display.LCond[Quantity::Humidity],
                               &display.Label3Sensor,
                               &display.Label3Station,
                               &display.LblSwitch,
                               &display.SensorStatus,
                               &display.LblCause,
                               &display.NBAlarmMsg,
                               &display.WSAlarmMsg,
                               &conditions.SafeDelayMsg,
                               &conditions.LblStatus,
                               &session.Statusbar1,
                               &session.Statusbar2,
                               &session.LblControl,
                               &session.COMCalls,
                               &session.COMPeriod,
                               &records.units.TemperatureUnitText,
                               &records.units.SpeedUnitText})
        text += labelText(*label);
    for (const AutomationMember& member : members.members()) {
        if (!onlyReads(member))
            continue;
        QVariantList none;
        const AutomationReply reply = members.invokeByName(member.name, member.use, none);
        text += u"%1 %2\n"_s.arg(member.name, reply.ok() ? textOf(reply.result) : reply.text);
    }
    append(night + ".members", text.replace(folder, u"@"_s));
}

} // namespace skyhold
