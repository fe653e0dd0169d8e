// SPDX-License-Identifier: GPL-3.0-or-later
// The command line: which command, with what.
#pragma once

#include <QMap>
#include <QStringList>

#include <optional>

namespace skyhold {

struct Command {
    QString name; // "get"
    QStringList arguments = {};
    bool json = false;
    double everySeconds = 1; // of watch
    // The other options by their names, "since"; of one that may stand often all values, of one
    // that takes none an empty text.
    QMap<QString, QStringList> options = {};

    bool has(const QString& option) const { return options.contains(option); }
    QString option(const QString& name) const { return options.value(name).value(0); }
};

// The arguments without the program's name. Options may stand anywhere; after "--" every argument
// is taken as it stands. Nothing for a line that is not understood; `fault` says why.
std::optional<Command> parseCommandLine(const QStringList& arguments, QString& fault);

QString usageText();

} // namespace skyhold
