// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/payload.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

void flatten(const QString& path, const QJsonValue& value, QMap<QString, QString>& values) {
    const auto below = [&path](const QString& name) {
        return path.isEmpty() ? name : path + u'.' + name;
    };
    switch (value.type()) {
    case QJsonValue::Object: {
        const QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member)
            flatten(below(member.key()), member.value(), values);
        break;
    }
    case QJsonValue::Array: {
        const QJsonArray array = value.toArray();
        for (qsizetype i = 0; i < array.size(); ++i)
            flatten(below(QString::number(i)), array[i], values);
        break;
    }
    case QJsonValue::Double:
        values.insert(path, QString::number(value.toDouble(), 'g', 15));
        break;
    case QJsonValue::Bool:
        values.insert(path, value.toBool() ? u"true"_s : u"false"_s);
        break;
    case QJsonValue::String:
        values.insert(path, value.toString());
        break;
    default: // null: there is no value
        values.insert(path, {});
        break;
    }
}

} // namespace

std::optional<QMap<QString, QString>> payloadValues(QByteArrayView bytes, QString& fault) {
    QMap<QString, QString> values;
    if (bytes.size() > kPayloadLimit) {
        fault = u"more than 64 KiB"_s;
        return std::nullopt;
    }
    const QByteArrayView text = bytes.trimmed();
    if (text.isEmpty() || text.contains('\0')) {
        fault = text.isEmpty() ? u"empty"_s : u"not a text"_s;
        return std::nullopt;
    }
    if (text.startsWith('{') || text.startsWith('[')) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(text.toByteArray(), &error);
        if (document.isNull()) {
            fault = u"not JSON: "_s + error.errorString();
            return std::nullopt;
        }
        flatten({}, document.isObject() ? QJsonValue(document.object()) : document.array(), values);
        return values;
    }
    const QString all = QString::fromUtf8(text);
    if (!all.contains(u'=') && !all.contains(u'\n'))
        return QMap<QString, QString>{{u"value"_s, all}};
    for (const QStringView raw : QStringView(all).split(u'\n')) {
        const QStringView line = raw.trimmed();
        const qsizetype equals = line.indexOf(u'=');
        if (equals > 0 && !line.startsWith(u'#'))
            values.insert(line.first(equals).trimmed().toString(),
                          line.sliced(equals + 1).trimmed().toString());
    }
    if (values.isEmpty()) {
        fault = u"no line \"key=value\""_s;
        return std::nullopt;
    }
    return values;
}

} // namespace skyhold
