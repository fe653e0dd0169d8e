#include "automation/nubilo_members.h"

#include "core/clients.h"
#include "core/session.h"

namespace skyhold {

namespace {

enum class Activity { None, Signal };

struct Row {
    const char* name;
    std::int32_t id;
    MemberUse use;
    AutomationType result;
    std::vector<AutomationParameter> parameters;
    Activity activity;
    QVariant (*act)(MonitoringCore& core, QVariantList& arguments);
};

using Type = AutomationType;

std::vector<Row> rows() {
    return {
        {"Kiv_LocalControl",
         0x600300A0,
         kMethod,
         Type::Empty,
         {{QStringLiteral("vData"), Type::Bool, false},
          {QStringLiteral("sLabel"), Type::Text, false}},
         Activity::Signal,
         [](MonitoringCore& core, QVariantList& arguments) {
             HasControl(core, arguments[0].toBool(), arguments[1].toString());
             return QVariant();
         }},
        {"Device_Start",
         0x600300AA,
         kMethod,
         Type::Variant,
         {},
         Activity::None,
         [](MonitoringCore& core, QVariantList&) {
             Device_Start(core);
             return QVariant();
         }},
        {"Device_Stop",
         0x600300AB,
         kMethod,
         Type::Variant,
         {},
         Activity::None,
         [](MonitoringCore& core, QVariantList&) {
             Device_Stop(core);
             return QVariant();
         }},
        {"Name",
         0x68030089,
         kPropertyGet,
         Type::Text,
         {},
         Activity::None,
         [](MonitoringCore&, QVariantList&) {
             return QVariant(QStringLiteral("Kiv_Skyhold"));
         }},
        {"Version",
         0x68030088,
         kPropertyGet,
         Type::Text,
         {},
         Activity::None,
         [](MonitoringCore& core, QVariantList&) {
             return QVariant(core.version.text());
         }},
        {"DataReady",
         0x600300BA,
         kMethod,
         Type::Bool,
         {},
         Activity::Signal,
         [](MonitoringCore& core, QVariantList&) {
             return QVariant(core.records.readings.SensorDataReady);
         }},
        {"Safe",
         0x600300C5,
         kMethod,
         Type::Bool,
         {},
         Activity::Signal,
         [](MonitoringCore& core, QVariantList&) {
             return QVariant(!core.records.readings.UnsafeFlag);
         }},
    };
}

} // namespace

std::shared_ptr<const MemberTable> nubiloMembers(MonitoringCore& core) {
    auto table = std::make_shared<MemberTable>();
    for (const Row& row : rows()) {
        table->add({QString::fromLatin1(row.name), row.id, row.use, row.result, row.parameters,
                    [&core, act = row.act, activity = row.activity](QVariantList& arguments) {
                        if (activity == Activity::Signal)
                            BlinkLEDCOM(core.records.session, core.clock, kCallColour, false);
                        return AutomationReply{act(core, arguments), AutomationError::None, {}};
                    }});
    }
    return table;
}

} // namespace skyhold
