// The state of the monitor at a glance: the verdict, why, and every condition with its value.
#pragma once

#include "ctl/verdict.h"
#include "platform/automation_value.h"

#include <functional>
#include <vector>

namespace skyhold {

struct ConditionStatus {
    QString name; // "Cloud"
    std::int32_t level = 0;
    QString description;  // of the level, as the window shows it
    QString value;        // with its unit
    bool flagged = false; // the user has called this level unsafe
};

struct Status {
    Verdict verdict = Verdict::Unknown;
    QStringList causes; // of a verdict that is not safe
    VerdictFacts facts;
    QVariant lastReading;
    std::vector<ConditionStatus> conditions;
};

// Reads a member, or calls a method with arguments.
using AskMember =
    std::function<AutomationReply(const QString& name, const QVariantList& arguments)>;

// Asks for everything. A member that fails or answers oddly makes the verdict unknown.
Status readStatus(const AskMember& ask);
Status unknownStatus(const QString& cause);

QString statusText(const Status& status);
// The same on one line, without the time of the last reading.
QString statusLine(const Status& status);

} // namespace skyhold
