// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/members.h"

#include "ctl/values.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr char kInterface[] = "Kiv_Skyhold._Nubilo";
constexpr char kEnumerationAnnotation[] = "Kiv.Automation.Enumeration";

AutomationType typeOf(QStringView signature) {
    const struct {
        const char16_t* signature;
        AutomationType type;
    } types[] = {{u"i", AutomationType::I4},     {u"d", AutomationType::R8},
                 {u"b", AutomationType::Bool},   {u"s", AutomationType::Text},
                 {u"(d)", AutomationType::Date}, {u"o", AutomationType::Object}};
    for (const auto& row : types) {
        if (signature == row.signature)
            return row.type;
    }
    return AutomationType::Variant;
}

QString enumerationOf(QXmlStreamReader& reader) {
    QString enumeration;
    while (reader.readNextStartElement()) {
        if (reader.attributes().value(u"name"_s) == QLatin1String(kEnumerationAnnotation))
            enumeration = reader.attributes().value(u"value"_s).toString();
        reader.skipCurrentElement();
    }
    return enumeration;
}

// An output is the result, or a by-reference argument under its own name.
bool isParameter(const Member& method, QStringView name) {
    return std::any_of(method.parameters.begin(), method.parameters.end(),
                       [&](const MemberParameter& parameter) { return parameter.name == name; });
}

Member readMethod(QXmlStreamReader& reader) {
    Member method;
    method.name = reader.attributes().value(u"name"_s).toString();
    while (reader.readNextStartElement()) {
        if (reader.name() != u"arg"_s) {
            reader.skipCurrentElement();
            continue;
        }
        const QXmlStreamAttributes attributes = reader.attributes();
        const QString name = attributes.value(u"name"_s).toString();
        const AutomationType type = typeOf(attributes.value(u"type"_s));
        const QString enumeration = enumerationOf(reader);
        if (attributes.value(u"direction"_s) != u"out"_s) {
            method.parameters.push_back({name, type});
        } else if (!isParameter(method, name)) {
            method.type = type;
            method.enumeration = enumeration;
        }
    }
    return method;
}

Member readProperty(QXmlStreamReader& reader) {
    const QXmlStreamAttributes attributes = reader.attributes();
    Member property;
    property.name = attributes.value(u"name"_s).toString();
    property.property = true;
    property.settable = attributes.value(u"access"_s) == u"readwrite"_s;
    property.type = typeOf(attributes.value(u"type"_s));
    reader.skipCurrentElement();
    return property;
}

std::vector<Member> readInterface(QXmlStreamReader& reader) {
    std::vector<Member> members;
    while (reader.readNextStartElement()) {
        if (reader.name() == u"method"_s)
            members.push_back(readMethod(reader));
        else if (reader.name() == u"property"_s)
            members.push_back(readProperty(reader));
        else
            reader.skipCurrentElement();
    }
    return members;
}

// The edit distance, where exchanging two neighbours is one edit. Without regard to case.
qsizetype slips(const QString& left, const QString& right) {
    const QString from = left.toLower();
    const QString to = right.toLower();
    const auto width = static_cast<std::size_t>(to.size()) + 1;
    std::vector<qsizetype> before(width);
    std::vector<qsizetype> above(width);
    std::vector<qsizetype> row(width);
    for (std::size_t j = 0; j < width; ++j)
        row[j] = static_cast<qsizetype>(j);
    for (qsizetype i = 1; i <= from.size(); ++i) {
        before.swap(above);
        above.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j < width; ++j) {
            const auto column = static_cast<qsizetype>(j);
            const bool same = from[i - 1] == to[column - 1];
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
            if (i > 1 && column > 1 && from[i - 1] == to[column - 2] &&
                from[i - 2] == to[column - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
    }
    return row.back();
}

QString kindText(const Member& member) {
    if (!member.property)
        return u"method"_s;
    return member.settable ? u"property"_s : u"read-only"_s;
}

QString resultName(const Member& member) {
    return member.enumeration.isEmpty() ? typeName(member.type) : member.enumeration;
}

} // namespace

std::vector<Member> parseMembers(const QString& xml) {
    QXmlStreamReader reader(xml);
    if (!reader.readNextStartElement()) // the node
        return {};
    std::vector<Member> members;
    while (reader.readNextStartElement()) {
        if (reader.attributes().value(u"name"_s) == QLatin1String(kInterface))
            members = readInterface(reader);
        else
            reader.skipCurrentElement();
    }
    return reader.hasError() ? std::vector<Member>{} : members;
}

const Member* findMember(const std::vector<Member>& members, const QString& name) {
    for (const Member& member : members) {
        if (member.name.compare(name, Qt::CaseInsensitive) == 0)
            return &member;
    }
    return nullptr;
}

QString noSuchMember(const std::vector<Member>& members, const QString& name) {
    QStringList names;
    for (const Member& member : members)
        names.append(member.name);
    const QString text = u"there is no member "_s + plainLine(name);
    const std::optional<QString> nearest = nearestName(name, names);
    return nearest ? text + u"; did you mean %1?"_s.arg(*nearest)
                   : text + u"; skyholdctl list prints them"_s;
}

std::optional<QString> nearestName(const QString& name, const QStringList& names) {
    std::optional<QString> nearest;
    // A third of the letters may be wrong, and two of a short name, but never all.
    qsizetype fewest = std::min(std::max<qsizetype>(2, name.size() / 3), name.size() - 1) + 1;
    for (const QString& candidate : names) {
        const qsizetype needed = slips(name, candidate);
        if (needed < fewest) {
            fewest = needed;
            nearest = candidate;
        }
    }
    return nearest;
}

bool isReading(const Member& member) {
    if (member.property)
        return true;
    // These two are declared as if they answered a value.
    if (member.name == u"Device_Start"_s || member.name == u"Device_Stop"_s)
        return false;
    return member.parameters.empty() && member.type != AutomationType::Empty;
}

std::vector<Member> matchingMembers(const std::vector<Member>& members, const QString& pattern) {
    const bool whole = pattern.contains(QRegularExpression(u"[*?[]"_s));
    const QRegularExpression expression(
        whole ? QRegularExpression::wildcardToRegularExpression(pattern)
              : QRegularExpression::escape(pattern),
        QRegularExpression::CaseInsensitiveOption);
    std::vector<Member> matching;
    std::copy_if(members.begin(), members.end(), std::back_inserter(matching),
                 [&](const Member& member) { return expression.match(member.name).hasMatch(); });
    return matching;
}

QString signatureText(const Member& member) {
    if (member.property)
        return typeName(member.type);
    QStringList parameters;
    for (const MemberParameter& parameter : member.parameters)
        parameters.append(parameter.name + u' ' + typeName(parameter.type));
    const QString text = u'(' + parameters.join(u", "_s) + u')';
    return member.type == AutomationType::Empty ? text : text + u" -> "_s + resultName(member);
}

QString memberLine(const Member& member, int nameWidth) {
    return member.name.leftJustified(nameWidth) + u"  "_s + kindText(member).leftJustified(9) +
           u"  "_s + signatureText(member);
}

QJsonObject memberJson(const Member& member) {
    QJsonObject json{{u"name"_s, member.name},
                     {u"kind"_s, member.property ? u"property"_s : u"method"_s}};
    if (member.type != AutomationType::Empty)
        json.insert(u"type"_s, typeName(member.type));
    if (!member.enumeration.isEmpty())
        json.insert(u"enumeration"_s, member.enumeration);
    if (member.property) {
        json.insert(u"settable"_s, member.settable);
        return json;
    }
    QJsonArray parameters;
    for (const MemberParameter& parameter : member.parameters)
        parameters.append(
            QJsonObject{{u"name"_s, parameter.name}, {u"type"_s, typeName(parameter.type)}});
    json.insert(u"parameters"_s, parameters);
    return json;
}

std::optional<QVariantList> parseArguments(const Member& member, const QStringList& texts,
                                           QString& fault) {
    const auto count = static_cast<qsizetype>(member.parameters.size());
    if (texts.size() != count) {
        fault = u"%1 takes %2 argument%3: %1%4"_s.arg(member.name, QString::number(count),
                                                      count == 1 ? QString() : u"s"_s,
                                                      signatureText(member));
        return std::nullopt;
    }
    QVariantList values;
    for (qsizetype i = 0; i < count; ++i) {
        const MemberParameter& parameter = member.parameters[static_cast<std::size_t>(i)];
        const std::optional<QVariant> value = parseValue(texts[i], parameter.type);
        if (!value) {
            fault = u"%1: \"%2\" is not the %3 that %4 takes"_s.arg(
                member.name, plainLine(texts[i]), typeName(parameter.type), parameter.name);
            return std::nullopt;
        }
        values.append(*value);
    }
    return values;
}

} // namespace skyhold
