// SPDX-License-Identifier: GPL-3.0-or-later
// What a source of readings says just now: its state in a word, its values, what is wrong with it.
#pragma once

#include <QStringList>
#include <QWidget>

#include <vector>

class QGridLayout;
class QLabel;

namespace skyhold {

class LampWidget;
struct StationCheck;

struct SourceNow {
    enum class State { Good, Doubtful, None };
    struct Value {
        QString name;
        QString value; // "–" for one that is missing
        QString note;  // its level, its age, why it is missing
    };
    State state = State::None;
    QString outcome; // one sentence
    QString age;     // of all values; empty when each has its own
    std::vector<Value> values;
    QStringList remarks;
};

SourceNow stationNow(const StationCheck& check);

class SourceNowView : public QWidget {
    Q_OBJECT

  public:
    // The labels that show the values are named after `name`: "ValuesSensor".
    SourceNowView(const QString& title, const QString& name, QWidget* parent);

    void show(const SourceNow& now);

  private:
    LampWidget* lamp_;
    QLabel* outcome_;
    QLabel* age_;
    QWidget* table_;
    QGridLayout* grid_;
    QLabel* remarks_;
};

} // namespace skyhold
