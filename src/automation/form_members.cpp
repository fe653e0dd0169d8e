// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/form_members.h"

#include "automation/all_members.h"
#include "core/alarms.h"
#include "core/clients.h"
#include "core/present.h"
#include "core/recording.h"
#include "core/session.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum AutomationType;
using Parameters = std::vector<AutomationParameter>;

// Adds members one after another, each with the next free id.
class FormList {
  public:
    FormList(MemberTable& table, MonitoringCore& core)
        : table_(table)
        , core_(core) {}

    void method(const QString& name, AutomationType result, Parameters parameters, MemberAct act) {
        table_.add({name, ++id_, kMethod, result, std::move(parameters), bound(std::move(act))});
    }
    void call(const QString& name, void (*operation)(MonitoringCore&)) {
        method(name, Empty, {}, [operation](MonitoringCore& core, QVariantList&) {
            operation(core);
            return answered();
        });
    }
    void get(const QString& name, AutomationType type, MemberAct get) {
        table_.add({name, ++id_, kPropertyGet, type, {}, bound(std::move(get))});
    }
    void property(const QString& name, AutomationType type, MemberAct getValue, MemberAct let) {
        get(name, type, std::move(getValue));
        table_.add(
            {name, id_, kPropertyPut, Empty, {{u"value"_s, type, false}}, bound(std::move(let))});
    }

  private:
    std::function<AutomationReply(QVariantList&)> bound(MemberAct act) {
        return [&core = core_, act = std::move(act)](QVariantList& arguments) {
            return act(core, arguments);
        };
    }

    MemberTable& table_;
    MonitoringCore& core_;
    std::int32_t id_ = 0;
};

void addWindow(FormList& list) {
    list.get(u"Caption"_s, Text,
             answering([](MonitoringCore& core) { return core.records.window.Caption.value(); }));
    list.property(u"WindowState"_s, I4, answering([](MonitoringCore& core) {
                      return static_cast<int>(core.records.window.State.value());
                  }),
                  [](MonitoringCore& core, QVariantList& arguments) {
                      const int state = arguments[0].toInt();
                      if (state < 0 || state > static_cast<int>(WindowState::Maximized))
                          return failed(u"WindowState is 0 normal, 1 minimised, 2 maximised"_s);
                      setWindowState(core.records, static_cast<WindowState>(state));
                      return answered();
                  });
}

void addSessionAndSound(FormList& list) {
    list.call(u"Device_Start"_s, Device_Start);
    list.call(u"Device_Stop"_s, Device_Stop);
    list.method(u"Record_Start"_s, Empty, {{u"append"_s, Bool, false}},
                [](MonitoringCore& core, QVariantList& arguments) {
                    startRecording(core, arguments[0].toBool());
                    return answered();
                });
    list.call(u"Record_Stop"_s, stopRecording);
    list.method(u"AlarmStart"_s, Empty, {{u"spec"_s, Text, false}},
                [](MonitoringCore& core, QVariantList& arguments) {
                    startAlarm(core, arguments[0].toString());
                    return answered();
                });
    list.call(u"AlarmStop"_s, stopAlarm);
}

void addSwitchAndVerdict(FormList& list) {
    list.method(u"SetSwitch"_s, Empty, {{u"value"_s, I4, false}},
                [](MonitoringCore& core, QVariantList& arguments) {
                    SetSwitch(core.sensor, core.records.session, arguments[0].toInt());
                    return answered();
                });
    list.call(u"Disp_SwitchLabels"_s, [](MonitoringCore& core) {
        Disp_SwitchLabels(core.records.session, core.records.display);
    });
    list.call(u"Disp_UnsafeFlag"_s, [](MonitoringCore& core) {
        Disp_UnsafeFlag(core.records.readings, core.records.conditions);
    });
    list.method(u"HasControl"_s, Empty, {{u"flag"_s, Bool, false}, {u"text"_s, Text, false}},
                [](MonitoringCore& core, QVariantList& arguments) {
                    HasControl(core, arguments[0].toBool(), arguments[1].toString());
                    return answered();
                });
    list.method(u"SecondsSinceGoodData"_s, I4, {}, answering([](MonitoringCore& core) {
                    return SecondsSinceGoodData(core.records.readings);
                }));
    list.method(u"BlinkLEDCOM"_s, Empty, {{u"colour"_s, I4, false}, {u"showPeriod"_s, Bool, false}},
                [](MonitoringCore& core, QVariantList& arguments) {
                    BlinkLEDCOM(core.records.session, core.clock, arguments[0].toInt(),
                                arguments[1].toBool());
                    return answered();
                });
}

} // namespace

void setWindowState(Records& records, WindowState state) {
    records.window.State = state;
    if (state != WindowState::Minimized)
        records.window.Visible = true;
    UpdateMenus(records);
}

QDBusObjectPath formPath() {
    return QDBusObjectPath(factoryPath(QLatin1String(kProgramId)) + u'/' +
                           QLatin1String(kFormName));
}

std::shared_ptr<const MemberTable> formMembers(MonitoringCore& core) {
    auto table = std::make_shared<MemberTable>();
    FormList list(*table, core);
    addWindow(list);
    addSessionAndSound(list);
    addSwitchAndVerdict(list);
    return table;
}

} // namespace skyhold
