// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/why.h"

#include "ctl/history.h"
#include "ctl/output.h"
#include "ctl/state_document.h"
#include "ctl/times.h"
#include "ctl/values.h"
#include "ctl/verdict.h"
#include "history/reader.h"
#include "history/why_text.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

int runWhy(const Command& command) {
    QString fault;
    QJsonObject document;
    if (command.arguments.isEmpty()) {
        document = readStateDocument(fault);
    } else if (const auto atMs = parseTime(command.arguments[0], QDateTime::currentDateTime())) {
        HistoryReader reader(historyPathOf(command));
        // A time that was shown is of the whole second.
        document = reader.stateAt(*atMs + 999);
        fault = reader.fault().isEmpty() ? u"nothing is known of that time"_s : reader.fault();
    } else {
        fault = u"\"%1\" is no time; try 2026-11-23T05:12, 23:41, 12h or 7d"_s.arg(
            plainLine(command.arguments[0]));
    }
    if (document.isEmpty()) {
        printFault(fault);
        return kStatusFailed;
    }
    if (command.json)
        writeLine(document);
    else
        write(whyText(document));
    return 0;
}

} // namespace skyhold
