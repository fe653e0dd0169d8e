// Everything that a night can show of the program from outside, for a comparison of two versions
// with `diff -r`: written to the folder of the environment variable SKYHOLD_NIGHT_DUMP, nothing
// without it.
#pragma once

#include "bus/automation_server.h"
#include "records/records.h"

namespace skyhold {

// The calls to the sensor program since the last time, to NIGHT.calls.
void dumpCalls(const std::string& night, const QString& time, const QStringList& calls);

// Answers of all public members that only read, captions and colours of all display labels, to
// NIGHT.members, the night's own folder as "@".
void dumpMonitor(const std::string& night, int cycle, const MemberTable& members,
                 const Records& records, const QString& folder);

} // namespace skyhold
