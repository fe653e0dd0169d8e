// SPDX-License-Identifier: GPL-3.0-or-later
// Builds rows of the key table: one operation per kind of value, over any field that holds it.
#pragma once

#include "settings/key_table.h"
#include "settings/stored_text.h"

namespace skyhold {

inline QString latin(const char* text) {
    return QString::fromLatin1(text);
}

// What a field of a record holds, and how a loaded value gets into it: through the operation that
// runs the control's own rule, where it has one.
inline QString valueOf(const QString& field) {
    return field;
}
inline QString valueOf(const QProperty<QString>& field) {
    return field.value();
}
inline bool valueOf(const bool& field) {
    return field;
}
inline int valueOf(const int& field) {
    return field;
}
inline int valueOf(const QProperty<int>& field) {
    return field.value();
}
inline int valueOf(const ComboBox& field) {
    return field.ListIndex.value();
}
inline double valueOf(const NumberBox& field) {
    return field.Value.value();
}

template <class Field, class Value>
void putInto(Field& field, const Value& value) {
    field = value;
}
template <class Value>
void putInto(NumberBox& field, const Value& value) {
    field.set(value);
}
template <class Value>
void putInto(ComboBox& field, const Value& value) {
    field.choose(value);
}

struct IntegerRange {
    int lowest;
    int highest;
    bool clamp = false; // a value outside moves to the nearer end and is not refused
};

class KeyRows {
  public:
    void section(const QString& name) { section_ = name; }

    KeyRow& add(KeyType type, const QString& key, const QString& defaultText,
                const QString& holds) {
        rows_.push_back({.section = section_,
                         .key = key,
                         .type = type,
                         .defaultText = defaultText,
                         .defaultName = {},
                         .holds = holds,
                         .text = {},
                         .load = {}});
        return rows_.back();
    }

    template <class Field>
    KeyRow& text(const QString& key, const QString& defaultText, Field& field,
                 const QString& holds) {
        KeyRow& row = add(KeyType::Text, key, defaultText, holds);
        row.text = [&field](const NumberForms&) {
            return valueOf(field);
        };
        row.load = [&field](const QString& stored, const NumberForms&) {
            putInto(field, stored);
            return true;
        };
        return row;
    }

    // A folder; by default the one beside the program (the user's data folder where the user may
    // not write there).
    template <class Field>
    void folder(const QString& key, const QString& programFolder, Field& field,
                const QString& holds) {
        text(key, programFolder, field, holds).defaultName = QStringLiteral("program folder");
    }

    template <class Field>
    KeyRow& integer(const QString& key, int defaultValue, IntegerRange range, Field& field,
                    const QString& holds) {
        KeyRow& row = add(KeyType::Integer, key, QString::number(defaultValue), holds);
        row.lowest = range.lowest;
        row.highest = range.highest;
        row.clamped = range.clamp;
        row.text = [&field](const NumberForms&) {
            return QString::number(roundHalfEven(valueOf(field)) + 0.0, 'f', 0);
        };
        row.load = [&field, range](const QString& stored, const NumberForms& forms) {
            const auto value = range.clamp
                                   ? nearestInteger(stored, forms, range.lowest, range.highest)
                                   : storedInteger(stored, forms, range.lowest, range.highest);
            if (value)
                putInto(field, *value);
            return value.has_value();
        };
        return row;
    }

    template <class Box>
    void number(const QString& key, const QString& defaultText, Box& box, const QString& holds) {
        KeyRow& row = add(KeyType::Number, key, defaultText, holds);
        row.text = [&box](const NumberForms& forms) {
            return numberText(valueOf(box), forms);
        };
        row.load = [&box](const QString& stored, const NumberForms& forms) {
            const auto value = storedNumber(stored, forms);
            if (value)
                putInto(box, *value);
            return value.has_value();
        };
    }

    template <class Field>
    void boolean(const QString& key, bool defaultValue, Field& field, const QString& holds) {
        KeyRow& row = add(KeyType::Boolean, key, booleanText(defaultValue), holds);
        row.text = [&field](const NumberForms&) {
            return booleanText(field);
        };
        row.load = [&field](const QString& stored, const NumberForms&) {
            const auto value = storedBoolean(stored);
            if (value)
                field = *value;
            return value.has_value();
        };
    }

    template <class Box>
    void check(const QString& key, bool defaultValue, Box& box, const QString& holds) {
        KeyRow& row = add(KeyType::CheckBox, key, QString::number(defaultValue ? 1 : 0), holds);
        row.text = [&box](const NumberForms&) {
            return QString::number(box.checked() ? 1 : 0);
        };
        row.load = [&box](const QString& stored, const NumberForms& forms) {
            const auto value = storedInteger(stored, forms, 0, 1);
            if (value)
                box.set(*value);
            return value.has_value();
        };
    }

    template <class Swatch>
    void colour(const QString& key, Colour defaultValue, Swatch& swatch, const QString& holds) {
        KeyRow& row = add(KeyType::Colour, key, QString::number(defaultValue), holds);
        row.highest = 0xFFFFFF;
        row.text = [&swatch](const NumberForms&) {
            return QString::number(swatch.BackColor.value());
        };
        row.load = [&swatch](const QString& stored, const NumberForms& forms) {
            const auto value = storedInteger(stored, forms, 0, 0xFFFFFF);
            if (value)
                swatch.BackColor = *value;
            return value.has_value();
        };
    }

    // One boolean per option. Of several "True" the last one counts; when all are "False" the
    // default option is chosen, so that some unit, date order or role is always in force.
    template <class Group>
    void options(const QStringList& keys, int defaultIndex, Group& group,
                 const QStringList& holds) {
        const int last = static_cast<int>(keys.size()) - 1;
        for (int i = 0; i <= last; ++i) {
            KeyRow& row = add(KeyType::Boolean, keys[i], booleanText(i == defaultIndex), holds[i]);
            row.text = [&group, i](const NumberForms&) {
                return booleanText(group.Index.value() == i);
            };
            row.load = [&group, i, last, defaultIndex](const QString& stored, const NumberForms&) {
                const auto chosen = storedBoolean(stored);
                if (!chosen)
                    return false;
                if (i == 0)
                    group.Index = -1;
                if (*chosen)
                    group.choose(i);
                else if (i == last && group.Index.value() < 0)
                    group.choose(defaultIndex);
                return true;
            };
        }
    }

    std::vector<KeyRow> take() { return std::move(rows_); }

  private:
    QString section_;
    std::vector<KeyRow> rows_;
};

// The rows of each level of each quantity: limits, descriptions, colours, unsafe levels and alarms.
void limitRows(KeyRows& rows, ConditionControls& conditions);
void descriptionRows(KeyRows& rows, ConditionControls& conditions);
void colourRows(KeyRows& rows, ConditionControls& conditions);
void unsafeRows(KeyRows& rows, ConditionControls& conditions);
void alarmRows(KeyRows& rows, AlarmControls& alarms);
void staleDataRows(KeyRows& rows, AlarmControls& alarms, ConditionControls& conditions);

} // namespace skyhold
