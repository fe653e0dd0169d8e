// SPDX-License-Identifier: GPL-3.0-or-later
#include "variants.h"

#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold::fuzz {

namespace {

// Texts on the bus are valid and hold no zero.
QString sentText(Input& input) {
    QString text = input.shortText();
    return text.remove(QChar(0));
}

QString text(Input& input) {
    static const QString usual[]{u"true"_s, u" False "_s, u"-1"_s,     u"2.5"_s, u"nan"_s,
                                 u"inf"_s,  u"1e300"_s,   u"1e-320"_s, {},       u"4294967296"_s};
    const std::uint8_t choice = input.byte();
    return choice % 3 == 0 ? sentText(input) : usual[choice / 3 % std::size(usual)];
}

QDBusObjectPath path(Input& input) {
    return QDBusObjectPath(u"/p/%1"_s.arg(input.byte()));
}

QDBusVariant boxed(Input& input, int depth) {
    return QDBusVariant(sentValue(input, depth));
}

QVariantList list(Input& input, int depth) {
    QVariantList values;
    for (int count = input.byte() % 5; count > 0; --count)
        values.append(sentValue(input, depth));
    return values;
}

QVariant container(Input& input, int depth) {
    switch (input.byte() % 10) {
    case 0:
        return list(input, depth);
    case 1: {
        QList<QVariantList> rows;
        for (int count = input.byte() % 4; count > 0; --count)
            rows.append(list(input, depth));
        return QVariant::fromValue(rows);
    }
    case 2:
        return QVariant::fromValue(boxed(input, depth));
    case 3: {
        QVariantMap map;
        for (int count = input.byte() % 4; count > 0; --count)
            map.insert(sentText(input), sentValue(input, depth));
        return map;
    }
    case 4: { // a date with more in it than its day
        QDBusArgument structure;
        structure.beginStructure();
        structure << input.number<double>() << boxed(input, depth);
        structure.endStructure();
        return QVariant::fromValue(structure);
    }
    case 5: { // a structure of another kind, in a list of its like
        QDBusArgument structures;
        structures.beginArray(QMetaType::fromType<AutomationDate>());
        for (int count = input.byte() % 4; count > 0; --count)
            structures << AutomationDate{input.number<double>()};
        structures.endArray();
        return QVariant::fromValue(structures);
    }
    case 6:
        return QStringList{sentText(input), sentText(input)};
    case 7:
        return input.take(input.byte()).toByteArray();
    case 8: {
        QDBusArgument numbers;
        numbers.beginArray(QMetaType::fromType<double>());
        for (int count = input.byte() % 4; count > 0; --count)
            numbers << input.number<double>();
        numbers.endArray();
        return QVariant::fromValue(numbers);
    }
    default: {
        QDBusArgument structure;
        structure.beginStructure();
        structure << sentText(input) << input.number<qlonglong>() << path(input);
        structure.endStructure();
        return QVariant::fromValue(structure);
    }
    }
}

} // namespace

QVariant sentValue(Input& input, int depth) {
    switch (input.byte() % 16) {
    case 0:
        return input.number<int>();
    case 1:
        return input.number<double>();
    case 2:
        return input.byte() % 2 == 1;
    case 3:
        return text(input);
    case 4:
        return QVariant::fromValue(input.byte());
    case 5:
        return QVariant::fromValue(input.number<short>());
    case 6:
        return QVariant::fromValue(input.number<ushort>());
    case 7:
        return input.number<uint>();
    case 8:
        return input.number<qlonglong>();
    case 9:
        return input.number<qulonglong>();
    case 10:
        return QVariant::fromValue(AutomationDate{input.number<double>()});
    case 11:
        return QVariant::fromValue(path(input));
    case 12:
        return QVariant::fromValue(QDBusSignature(u"a(iv)"_s));
    default:
        return depth > 0 ? container(input, depth - 1) : QVariant(0);
    }
}

QVariant arrivedValue(Input& input, int depth) {
    switch (input.byte() % 10) {
    case 0:
    case 1:
        return input.number<int>();
    case 2:
    case 3:
        return input.number<double>();
    case 4:
        return input.byte() % 2 == 1;
    case 5:
    case 6:
        return text(input);
    case 7:
        return QVariant::fromValue(AutomationDate{input.number<double>()});
    case 8:
        return QVariant::fromValue(path(input));
    default:
        break;
    }
    QVariantList values;
    for (int count = depth > 0 ? input.byte() % 4 : 0; count > 0; --count)
        values.append(arrivedValue(input, depth - 1));
    return values.isEmpty() ? QVariant() : QVariant(values);
}

bool hasType(const QVariant& value, AutomationType type) {
    switch (type) {
    case AutomationType::I4:
        return value.typeId() == QMetaType::Int;
    case AutomationType::R8:
        return value.typeId() == QMetaType::Double && std::isfinite(value.toDouble());
    case AutomationType::Bool:
        return value.typeId() == QMetaType::Bool;
    case AutomationType::Text:
        return value.typeId() == QMetaType::QString;
    case AutomationType::Date:
        return value.metaType() == QMetaType::fromType<AutomationDate>() &&
               std::isfinite(value.value<AutomationDate>().days);
    case AutomationType::Object:
        return value.metaType() == QMetaType::fromType<QDBusObjectPath>();
    case AutomationType::Empty:
        return !value.isValid();
    default:
        return true;
    }
}

} // namespace skyhold::fuzz
