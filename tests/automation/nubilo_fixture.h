// SPDX-License-Identifier: GPL-3.0-or-later
// The member table at work on a monitor with a scripted sensor program.
#pragma once

#include "automation/member_calls.h"
#include "core/clients.h"
#include "support/core_fixture.h"

namespace skyhold {

class NubiloFixture : public CoreFixture {
  protected:
    NubiloFixture() { RegisterUsers(records(), clock_, +1); }

    AutomationReply use(const QString& name, unsigned kind, QVariantList arguments = {}) {
        AutomationReply reply = table_->invokeByName(name, kind, arguments);
        after_ = arguments;
        return reply;
    }
    QVariant read(const QString& name, const QVariantList& arguments = {}) {
        const AutomationReply reply = use(name, kRead, arguments);
        EXPECT_TRUE(reply.ok()) << qPrintable(name + u' ' + reply.text);
        return reply.result;
    }
    void let(const QString& name, const QVariant& value) {
        const AutomationReply reply = use(name, kPropertyPut, {value});
        EXPECT_TRUE(reply.ok()) << qPrintable(name + u' ' + reply.text);
    }
    void call(const QString& name, const QVariantList& arguments = {}) {
        const AutomationReply reply = use(name, kMethod, arguments);
        EXPECT_TRUE(reply.ok()) << qPrintable(name + u' ' + reply.text);
    }

    // Attaches the sensor program without a session.
    void connectSensor() {
        const SensorLinkRecords link{records().readings, records().session, records().alarms,
                                     records().conditions, records().display};
        ASSERT_TRUE(core_->sensor.OpenSensor(link, nullptr));
        sensor_.takeCalls();
    }
    int callsShown() { return records().session.CallCounter; }

    std::shared_ptr<const MemberTable> table_ = memberCalls(*core_);
    QVariantList after_; // the arguments after the last call
};

} // namespace skyhold
