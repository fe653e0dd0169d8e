// SPDX-License-Identifier: GPL-3.0-or-later
#include "bus/automation_server.h"
#include "bus/automation_value.h"

#include <gtest/gtest.h>

#include <limits>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(AutomationValue, convertsAsTheParameterNeeds) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        QVariant value;
        std::optional<std::int32_t> integer;
        std::optional<double> real;
        std::optional<bool> boolean;
        std::optional<QString> text;
    } cases[] = {
        {7, 7, 7.0, true, u"7"_s},
        {2.5, 2, 2.5, true, u"2.5"_s},
        {true, -1, -1.0, true, u"True"_s},
        {false, 0, 0.0, false, u"False"_s},
        {u" 12.5 "_s, 12, 12.5, true, u" 12.5 "_s},
        {u"1e-05"_s, 0, 1e-5, true, u"1e-05"_s},
        {u"12,5"_s, {}, {}, {}, u"12,5"_s},
        {u"true"_s, -1, {}, true, u"true"_s},
        {u"rain"_s, {}, {}, {}, u"rain"_s},
        {3e9, {}, 3e9, true, u"3000000000"_s},
        {kNan, {}, {}, {}, {}},
        {QVariant(), {}, {}, {}, {}},
    };
    for (const auto& [value, integer, real, boolean, text] : cases) {
        SCOPED_TRACE(qPrintable(value.toString()));
        EXPECT_EQ(toInt32(value), integer);
        EXPECT_EQ(toReal(value), real);
        EXPECT_EQ(toBoolean(value), boolean);
        EXPECT_EQ(toText(value), text);
    }
    EXPECT_EQ(fromBus(QVariant(QVariantList())), QVariant());
    EXPECT_EQ(fromBus(QVariant(quint64(5))), QVariant(5));
    EXPECT_EQ(toBus(QVariant()), QVariant(QVariantList()));
    EXPECT_EQ(toBus(QVariant(QVariantList{QVariant(), 1})),
              QVariant(QVariantList{QVariantList(), 1}));
    const QList<QVariantList> table{{QVariant(), 2.5}};
    EXPECT_EQ(toBus(QVariant::fromValue(table)).value<QList<QVariantList>>(),
              (QList<QVariantList>{{QVariantList(), 2.5}}));
    EXPECT_EQ(errorMessage(AutomationError::TypeMismatch, u"x"_s), u"0x80020005: x"_s);
    EXPECT_EQ(factoryPath(u"Kiv_Skyhold.Nubilo"_s), u"/Kiv_Skyhold/Nubilo"_s);
}

TEST(MemberTable, findsChecksAndConverts) {
    double limit = 10;
    MemberTable table;
    table.add({u"Limit"_s, 5, kPropertyGet, AutomationType::R8, {}, [&](QVariantList&) {
                   return AutomationReply{limit, {}, {}};
               }});
    const std::vector<AutomationParameter> value{{u"value"_s, AutomationType::R8, true}};
    table.add({u"Limit"_s, 5, kPropertyPut, AutomationType::Empty, value, [&](QVariantList& sent) {
                   limit = sent[0].toDouble();
                   sent[0] = 99.0;
                   return AutomationReply{};
               }});
    const struct {
        QString name;
        unsigned use;
        QVariantList arguments;
        AutomationError error;
    } cases[] = {
        {u"LIMIT"_s, kRead, {}, AutomationError::None},
        {u"limit"_s, kPropertyPut, {u"12.5"_s}, AutomationError::None},
        {u"limit"_s, kMethod, {}, AutomationError::MemberNotFound},
        {u"limit"_s, kPropertyGet, {1}, AutomationError::BadParamCount},
        {u"limit"_s, kPropertyPut, {}, AutomationError::BadParamCount},
        {u"limit"_s, kPropertyPut, {u"wet"_s}, AutomationError::TypeMismatch},
        {u"limits"_s, kRead, {}, AutomationError::UnknownName},
    };
    for (const auto& [name, use, arguments, error] : cases) {
        QVariantList passed = arguments;
        EXPECT_EQ(table.invokeByName(name, use, passed).error, error) << qPrintable(name) << use;
    }
    EXPECT_EQ(limit, 12.5);
    QVariantList changed{3};
    EXPECT_TRUE(table.invoke(5, kPropertyPut, changed).ok());
    EXPECT_EQ(changed, QVariantList{99.0});
    EXPECT_EQ(table.invoke(6, kRead, changed).error, AutomationError::MemberNotFound);
}

} // namespace
} // namespace skyhold
