// skyholdctl: queries and controls the monitor from the command line. Whatever goes wrong ends with
// exit status 2, so that nothing but a verdict that has reached its reader reads as safe.
#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/verdict.h"

#include <QCoreApplication>

#include <csignal>

using namespace skyhold;

namespace {

int run(const QStringList& arguments) {
    QString fault;
    const std::optional<Command> command = parseCommandLine(arguments, fault);
    if (command)
        return runCommand(*command);
    printFault(fault);
    return kStatusFailed;
}

} // namespace

int main(int argc, char** argv) {
    secureStandardStreams();
    std::signal(SIGPIPE, SIG_IGN); // a reader that has gone is a failed write
    const QCoreApplication application(argc, argv);
    const int status = run(QCoreApplication::arguments().mid(1));
    if (closeOutput())
        return status;
    printFault(QStringLiteral("cannot write to standard output"));
    return kStatusFailed;
}
