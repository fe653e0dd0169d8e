// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/monitor_object.h"

#include "core/state_document.h"
#include "core/verdict.h"

namespace skyhold {

namespace {

const QString kPath = QStringLiteral("/Kiv_Skyhold/Monitor");

} // namespace

MonitorObject::MonitorObject(const QDBusConnection& bus, MonitoringCore& core)
    : bus_(bus)
    , core_(core) {
    bus_.registerObject(kPath, this,
                        QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSignals);
    cycles_ = core.records.session.CyclesDone.addNotifier(
        [this] { Q_EMIT CycleDone(stateDocumentText(core_)); });
    core.stateChanged = [this] {
        Q_EMIT StateChanged(stateDocumentText(core_));
    };
}

MonitorObject::~MonitorObject() {
    core_.stateChanged = [] {
    };
    bus_.unregisterObject(kPath);
}

// The first reader after the machine slept must not get the verdict from before.
QString MonitorObject::state() const {
    if (core_.TimerRead.overdue())
        distrustAfterGap(core_);
    return stateDocumentText(core_);
}

} // namespace skyhold
