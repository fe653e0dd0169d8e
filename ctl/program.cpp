// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/program.h"

#include "ctl/output.h"
#include "ctl/verdict.h"

#include <QCoreApplication>

#include <csignal>

namespace skyhold {

namespace {

int runLine(const QStringList& arguments, int (*run)(const Command&)) {
    QString fault;
    const std::optional<Command> command = parseCommandLine(arguments, fault);
    if (command)
        return run(*command);
    printFault(fault);
    return kStatusFailed;
}

} // namespace

int runProgram(int argc, char** argv, int (*run)(const Command&)) {
    secureStandardStreams();
    std::signal(SIGPIPE, SIG_IGN); // a reader that has gone is a failed write
    const QCoreApplication application(argc, argv);
    const int status = runLine(QCoreApplication::arguments().mid(1), run);
    if (closeOutput())
        return status;
    printFault(QStringLiteral("cannot write to standard output"));
    return kStatusFailed;
}

} // namespace skyhold
