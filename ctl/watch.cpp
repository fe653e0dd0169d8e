// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/watch.h"

#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/state_document.h"
#include "ctl/status.h"
#include "ctl/values.h"
#include "ctl/verdict.h"

#include <QDateTime>

#include <memory>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// One thing that is watched, as it is now.
struct Sight {
    QString text;
    QJsonObject json;
};

// A new document comes with every cycle, and whenever session or verdict change between two.
Sight documentSight() {
    QString fault;
    const QJsonObject document = readStateDocument(fault);
    const QJsonObject seen = document.isEmpty() ? unreachableDocument(fault) : document;
    return {statusLine(seen), seen};
}

Sight valueSight(const QString& name, const QVariant& value) {
    return {name + u' ' + valueText(value), {{u"name"_s, name}, {u"value"_s, valueJson(value)}}};
}

Sight faultSight(const QString& name, const QString& fault) {
    return {name + u" ? "_s + fault, {{u"name"_s, name}, {u"fault"_s, fault}}};
}

class Watch {
  public:
    explicit Watch(const QStringList& names)
        : names_(names) {}

    // The present state of everything. Nothing when a name cannot be watched; `fault` says why.
    std::optional<std::vector<Sight>> look(QString& fault) {
        if (names_.isEmpty())
            return std::vector{documentSight()};
        if (!monitor_) {
            monitor_ = std::make_unique<MonitorConnection>();
            if (!settleNames(fault))
                return std::nullopt;
        }
        monitor_->allow(kPatienceMs);
        std::vector<Sight> sights = lookAtValues();
        if (!monitor_->lost().isEmpty())
            monitor_.reset();
        return sights;
    }

  private:
    // The names as the monitor spells them; false when one of them cannot be watched.
    bool settleNames(QString& fault) {
        const std::vector<Member> members = describedMembers(*monitor_, fault);
        if (!monitor_->lost().isEmpty()) {
            fault.clear(); // it is seen as such, and the names are settled when it is back
            return true;
        }
        if (members.empty())
            return false;
        for (QString& name : names_) {
            const Member* member = findMember(members, name);
            fault = member ? notReadable(*member) : noSuchMember(members, name);
            if (!fault.isEmpty())
                return false;
            name = member->name;
        }
        return true;
    }

    std::vector<Sight> lookAtValues() {
        std::vector<Sight> sights;
        for (const QString& name : std::as_const(names_)) {
            QVariantList none;
            const AutomationReply reply = monitor_->invoke(name, kRead, none);
            sights.push_back(reply.ok() ? valueSight(name, reply.result)
                                        : faultSight(name, plainLine(reply.text)));
        }
        return sights;
    }

    QStringList names_;
    std::unique_ptr<MonitorConnection> monitor_; // nothing while there is no monitor
};

bool show(const Sight& sight, bool json) {
    const QDateTime now = QDateTime::currentDateTime();
    if (!json)
        return writeLine(now.toString(u"yyyy-MM-dd hh:mm:ss "_s) + sight.text);
    QJsonObject timed = sight.json;
    if (!timed.contains(u"schema"_s)) // a state document has a time of its own
        timed.insert(u"time"_s, now.toString(Qt::ISODate));
    return writeLine(timed);
}

} // namespace

int runWatch(const Command& command) {
    const auto intervalMs = static_cast<int>(command.everySeconds * 1000);
    Watch watch(command.arguments);
    std::vector<Sight> shown;
    do {
        QString fault;
        const std::optional<std::vector<Sight>> seen = watch.look(fault);
        if (!seen) {
            printFault(fault);
            return kStatusFailed;
        }
        for (std::size_t i = 0; i < seen->size(); ++i) {
            const Sight& sight = (*seen)[i];
            const bool changed = i >= shown.size() || (command.json ? sight.json != shown[i].json
                                                                    : sight.text != shown[i].text);
            if (changed && !show(sight, command.json))
                return kStatusFailed;
        }
        shown = *seen;
    } while (waitWhileRead(intervalMs));
    return kStatusFailed;
}

} // namespace skyhold
