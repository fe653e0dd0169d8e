// SPDX-License-Identifier: GPL-3.0-or-later
// Faults that a simulator can show, written "NAME" or "NAME=VALUE".
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace skyhold {

class Faults {
  public:
    // `names` are the faults that this simulator knows.
    explicit Faults(const QStringList& names);

    // Adds a fault; "none" ends them all. False, with nothing changed, for an unknown name.
    bool set(const QString& text);
    void clear() { inForce_.clear(); }

    bool has(const QString& name) const { return inForce_.contains(name); }
    // The value of a fault in force; empty when it has none.
    QString value(const QString& name) const { return inForce_.value(name); }
    // The same as a whole number not below 0, or `otherwise`.
    int number(const QString& name, int otherwise) const;

  private:
    QStringList names_;
    QHash<QString, QString> inForce_;
};

} // namespace skyhold
