// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/description.h"

#include "automation/all_members.h"
#include "automation/object_safety.h"
#include "bus/typed_interface.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// Values count from 0.
struct Enumeration {
    QString name;
    QStringList values;
};

const std::array<Enumeration, 8>& enumerations() {
    static const std::array<Enumeration, 8> all{{
        {u"CloudCond"_s,
         {u"CloudUnknown"_s, u"CloudClear"_s, u"CloudCloudy"_s, u"CloudVeryCloudy"_s}},
        {u"BrightnessCond"_s,
         {u"BrightnessUnknown"_s, u"BrightnessDark"_s, u"BrightnessLight"_s,
          u"BrightnessVerylight"_s}},
        {u"RainCond"_s, {u"RainUnknown"_s, u"RainDry"_s, u"RainWet"_s, u"RainRain"_s}},
        {u"WindCond"_s, {u"WindUnknown"_s, u"WindCalm"_s, u"WindWindy"_s, u"WindVeryWindy"_s}},
        {u"SkyCond"_s,
         {u"SkyUnknown"_s, u"SkyClear"_s, u"SkyCloudy"_s, u"SkyVeryCloudy"_s, u"SkyWet"_s}},
        {u"TemperatureCond"_s,
         {u"TemperatureUnknown"_s, u"TemperatureLow"_s, u"TemperatureMedium"_s,
          u"TemperatureHigh"_s}},
        {u"DewCond"_s, {u"DewUnknown"_s, u"DewLow"_s, u"DewMedium"_s, u"DewHigh"_s}},
        {u"HumidityCond"_s,
         {u"HumidityUnknown"_s, u"HumidityLow"_s, u"HumidityMedium"_s, u"HumidityHigh"_s}},
    }};
    return all;
}

QString numbered(const Enumeration& enumeration) {
    QStringList texts;
    for (qsizetype i = 0; i < enumeration.values.size(); ++i)
        texts.append(u"%1=%2"_s.arg(enumeration.values[i]).arg(i));
    return texts.join(u' ');
}

// The table without a core behind it: what it says of the members, not what they do.
MemberTable declarations() {
    MemberTable table;
    for (const PublicMember& row : allMembers())
        table.add({row.name, row.id, row.use, row.result, row.parameters, {}, row.enumeration});
    return table;
}

QString typeName(AutomationType type) {
    switch (type) {
    case AutomationType::I4:
        return u"I4"_s;
    case AutomationType::R8:
        return u"R8"_s;
    case AutomationType::Bool:
        return u"BOOL"_s;
    case AutomationType::Text:
        return u"BSTR"_s;
    case AutomationType::Date:
        return u"DATE"_s;
    case AutomationType::Object:
        return u"OBJECT"_s;
    case AutomationType::Variant:
        return u"VARIANT"_s;
    case AutomationType::Empty:
        break;
    }
    return {};
}

QString kindCell(const PublicMember& member) {
    QStringList parameters;
    for (const AutomationParameter& parameter : member.parameters)
        parameters.append(parameter.name + u' ' + typeName(parameter.type) +
                          (parameter.byReference ? u" by reference"_s : QString()));
    const QString result =
        member.enumeration.isEmpty() ? typeName(member.result) : member.enumeration;
    return u"method ("_s + parameters.join(u", "_s) + u')' +
           (result.isEmpty() ? QString() : u" → "_s + result);
}

QString propertyCell(const PublicMember& get, const PublicMember* let) {
    if (!let)
        return u"get, "_s + typeName(get.result);
    return u"get/let, "_s + typeName(get.result) +
           (let->parameters[0].byReference ? u", let by reference"_s : QString());
}

QString sourceCell(Source source) {
    switch (source) {
    case Source::Sensor:
        return u"Kiv_Nubilo"_s;
    case Source::SensorUnchecked:
        return u"Kiv_Nubilo, unchecked"_s;
    case Source::Local:
        break;
    }
    return {};
}

QString activityCell(Activity activity) {
    switch (activity) {
    case Activity::Signal:
        return u"call"_s;
    case Activity::SignalWithPeriod:
        return u"call, period"_s;
    case Activity::None:
        break;
    }
    return {};
}

QString memberRows() {
    const std::vector<PublicMember> rows = allMembers();
    QString page;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const PublicMember& row = rows[i];
        if (row.use == kPropertyPut)
            continue;
        const bool settable = i + 1 < rows.size() && rows[i + 1].use == kPropertyPut;
        const QString kind = row.use == kMethod
                                 ? kindCell(row)
                                 : propertyCell(row, settable ? &rows[i + 1] : nullptr);
        page += u"| `%1` | 0x%2 | %3 | %4 | %5 | %6 |\n"_s.arg(
            row.name, QString::number(row.id, 16).toUpper(), kind, sourceCell(row.source),
            activityCell(row.activity), QString(row.help).replace(u'|', u"\\|"_s));
    }
    return page;
}

const QString kPreface =
    u"# Automation\n"
    "\n"
    "Other programs reach the monitor on the session bus. They create an object of its class\n"
    "`Nubilo`, read values and conditions through it, change settings, and start and stop\n"
    "monitoring. The bus starts the program when it is not running.\n"
    "\n"
    "| what | value |\n"
    "|---|---|\n"
    "| program identifier, bus name | `Kiv_Skyhold.Nubilo` |\n"
    "| class factory | `/Kiv_Skyhold/Nubilo`, `Kiv.Automation.ClassFactory.CreateInstance() -> o`"
    " |\n"
    "| interface identifier | `%1` |\n"
    "| class identifier | `%2` |\n"
    "\n"
    "An instance counts as one attached user until `Release` is called on it or the connection\n"
    "that created it ends. Each has these interfaces:\n"
    "\n"
    "- `Kiv.Automation.Dispatch`: members by name or number, with values of any type. Names "
    "compare\n"
    "  without regard to case. Numbers, numeric text and booleans convert as a parameter needs\n"
    "  (true is -1). A number in a text has \".\" as its decimal sign and no thousands "
    "separators.\n"
    "- `Kiv_Skyhold._Nubilo`: the same members as D-Bus properties and typed methods. "
    "By-reference\n"
    "  arguments are returned as outputs after the result.\n"
    "- `Kiv.Automation.IObjectSafety`.\n"
    "\n"
    "    busctl --user call Kiv_Skyhold.Nubilo /Kiv_Skyhold/Nubilo Kiv.Automation.ClassFactory \\\n"
    "        CreateInstance\n"
    "    busctl --user introspect Kiv_Skyhold.Nubilo /Kiv_Skyhold/Nubilo/1\n"
    "\n"
    "`Kiv_Skyhold.Nubilo.xml` describes all of this in machine-readable form.\n"
    "\n"
    "## Errors\n"
    "\n"
    "`Kiv.Automation.Error.` and `UnknownName`, `MemberNotFound`, `BadParamCount`, "
    "`TypeMismatch`,\n"
    "`Exception` (the member failed), `NoInterface` or `Fail`. The message begins with the code,\n"
    "such as `0x80020006`.\n"_s;

const QString kMembersPreface =
    u"\n## Members\n"
    "\n"
    "%1 members in interface order; a property's get and let count as two.\n"
    "[Types](guide/words.md#types-of-members) explains I4, R8, BSTR and the others.\n"
    "\n"
    "*From* `Kiv_Nubilo`: the call is passed on to the sensor program. While that is not "
    "connected,\n"
    "nothing is done, no activity is shown, and a get returns 0, \"\" or false; an *unchecked*\n"
    "call fails with `Exception` instead. A connected sensor program that fails also causes an\n"
    "`Exception`. What such a member returns for this program needs no sensor program.\n"
    "\n"
    "A value that is 0 or 1 accepts no other number: a client's true, which is -1, is refused "
    "with\n"
    "`Exception`.\n"
    "\n"
    "*Shows*: what the window shows of the call: that there was one, or also the seconds since "
    "the\n"
    "last such call.\n"
    "\n"
    "| member | number | kind and type | from | shows | description |\n"
    "|---|---|---|---|---|---|\n"_s;

} // namespace

QString nubiloInterfaceXml() {
    Annotations annotations{{u"Kiv.Automation.ProgramId"_s, QLatin1String(kProgramId)},
                            {u"Kiv.Automation.InterfaceId"_s, QLatin1String(kInterfaceId)},
                            {u"Kiv.Automation.ClassId"_s, QLatin1String(kClassId)}};
    for (const Enumeration& enumeration : enumerations())
        annotations.append({QLatin1String(kEnumerationAnnotation) + u'.' + enumeration.name,
                            numbered(enumeration)});
    return typedInterfaceXml(QLatin1String(kInterfaceName), declarations(), annotations);
}

QString interfaceDescription() {
    return u"<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\"\n"
           "    \"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n"
           "<!-- The class factory's interface, then those of an instance. -->\n"
           "<node>\n"_s +
           factoryInterfaceXml() + dispatchInterfaceXml() + nubiloInterfaceXml() +
           objectSafetyXml() + u"</node>\n"_s;
}

QString automationReference() {
    QString page = kPreface.arg(QLatin1String(kInterfaceId), QLatin1String(kClassId));
    page += u"\n## Conditions\n\n| enumeration | values |\n|---|---|\n"_s;
    for (const Enumeration& enumeration : enumerations())
        page += u"| `%1` | %2 |\n"_s.arg(enumeration.name,
                                         numbered(enumeration).replace(u" "_s, u", "_s));
    return page + kMembersPreface.arg(allMembers().size()) + memberRows();
}

} // namespace skyhold
