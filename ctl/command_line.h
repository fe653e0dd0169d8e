// The command line: which command, with what.
#pragma once

#include <QStringList>

#include <optional>

namespace skyhold {

struct Command {
    QString name; // "get"
    QStringList arguments;
    bool json = false;
    double everySeconds = 1; // of watch
};

// The arguments without the program's name. Options may stand anywhere; after "--" every argument
// is taken as it stands. Nothing for a line that is not understood; `fault` says why.
std::optional<Command> parseCommandLine(const QStringList& arguments, QString& fault);

QString usageText();

} // namespace skyhold
