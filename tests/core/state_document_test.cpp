#include "core/state_document.h"

#include "core/clients.h"
#include "support/core_fixture.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace skyhold {
namespace {

class StateDocument : public CoreFixture {
  protected:
    QJsonObject document() { return stateDocument(*core_); }
    // "session verdict safe wait" and the causes as "kind:name text".
    QStringList said() {
        const QJsonObject state = document();
        QStringList words{u"%1 %2 %3 %4"_s.arg(state[u"session"_s].toString(),
                                               state[u"verdict"_s].toString(),
                                               state[u"safe"_s].toBool() ? u"SAFE"_s : u"-"_s,
                                               QString::number(state[u"wait_s"_s].toInt()))};
        for (const QJsonValue& cause : state[u"causes"_s].toArray())
            words += u"%1:%2 %3"_s.arg(cause[u"kind"_s].toString(), cause[u"name"_s].toString(),
                                       cause[u"text"_s].toString());
        return words;
    }
};

TEST_F(StateDocument, saysWhetherItIsSafeAndWhy) {
    records().conditions.SafeDelayVal.Value = 30;
    EXPECT_EQ(said(),
              (QStringList{u"idle none - 0"_s, u"session: No monitoring session is running"_s}));
    StartSession(*core_);
    EXPECT_EQ(said(), QStringList{u"running safe SAFE 0"_s});
    EXPECT_EQ(document()[u"nearest"_s][u"text"_s].toString(),
              u"nearest: dew-point spread 8.0 °C, unsafe at 3"_s);

    // The wind has to have blown for a minute.
    cycle({.wind = u"23.4"_s}, 60);
    const QString windy = u"level:wind Wind 23.4 km/h, above 20, since 22:01:00"_s;
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s, windy}));
    const QJsonObject cause{{u"kind"_s, u"level"_s},
                            {u"name"_s, u"wind"_s},
                            {u"level"_s, 3},
                            {u"label"_s, u"Very Windy"_s},
                            {u"value"_s, 23.4},
                            {u"unit"_s, u"km/h"_s},
                            {u"limit"_s, 20},
                            {u"relation"_s, u">"_s},
                            {u"since"_s, clock_.now().toUTC().toString(Qt::ISODate)},
                            {u"text"_s, windy.section(u' ', 1)}};
    EXPECT_EQ(QJsonDocument(document()[u"causes"_s][0].toObject()).toJson().toStdString(),
              QJsonDocument(cause).toJson().toStdString());
    sensor_.values[u"Condition_Rain"_s] = 2;
    cycle({.wind = u"23.4"_s});
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s,
                                   u"level:rain Rain: Wet at 2850, since 22:01:10"_s, windy}));
    sensor_.values[u"Condition_Rain"_s] = 1;
    cycle({.temperature = u"-5"_s, .dewPoint = u"-7.5"_s});
    EXPECT_EQ(
        said(),
        (QStringList{u"running unsafe - 0"_s,
                     u"level:dew_spread Dew-point spread 2.5 °C, not above 3, since 22:01:20"_s,
                     u"level:temperature Temperature -5.0 °C, not above -5, since 22:01:20"_s}));
    cycle();
    EXPECT_EQ(said(), (QStringList{u"running waiting - 30"_s,
                                   u"delay: Safe in 30 s; last reset by Dew point at 22:01:20"_s}));
    cycle({}, 30);
    EXPECT_EQ(said(), QStringList{u"running safe SAFE 0"_s});

    cycleWithoutStation(300);
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s,
                                   u"source:station Station data 300 s old, more than 180, since "
                                   u"22:07:00"_s}));
    EXPECT_EQ(document()[u"sources"_s][u"station"_s][u"state"_s], u"old"_s);
    EXPECT_EQ(document()[u"codes"_s].toArray(), QJsonArray{u"a41"_s});
    sensor_.answering = false;
    cycle();
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s,
                                   u"source:sensor Kiv_Nubilo has failed, since 22:07:10"_s}));
    EXPECT_TRUE(document()[u"readings"_s][u"cloud"_s][u"value"_s].isNull());
    EXPECT_EQ(document()[u"roof"_s][u"state"_s], u"unknown"_s);
    StopSession(*core_);
    EXPECT_EQ(said()[0], u"idle none - 0"_s);
}

TEST_F(StateDocument, isNotSafeWhenAClientOrAGapSaysSo) {
    int changes = 0;
    core_->stateChanged = [&changes] {
        ++changes;
    };
    StartSession(*core_);
    EXPECT_EQ(changes, 2); // starting, running
    core_->caller = u":1.7"_s;
    HasControl(*core_, true, u"Dome"_s);
    setVerdict(*core_, true);
    const QStringList byClient{u"running unsafe - 0"_s, u"control: Unsafe by Dome"_s};
    EXPECT_EQ(said(), byClient) << "before the next cycle as after it";
    EXPECT_EQ(document()[u"decided_by"_s], u"client"_s);
    cycle();
    EXPECT_EQ(said(), byClient);
    EXPECT_EQ(document()[u"controller"_s], u"Dome"_s);
    setVerdict(*core_, false);
    EXPECT_EQ(said(), QStringList{u"running safe SAFE 0"_s});
    HasControl(*core_, false, {});
    EXPECT_EQ(changes, 4);

    distrustAfterGap(*core_);
    EXPECT_EQ(said(), (QStringList{u"running unsafe - 0"_s,
                                   u"session: There have been no readings for a while"_s}));
    EXPECT_EQ(changes, 5);
}

TEST_F(StateDocument, whatEndsAWaitIsNoWait) {
    records().conditions.SafeDelayVal.Value = 30;
    StartSession(*core_);
    const auto wait = [this] {
        cycle({.temperature = u"-5"_s});
        cycle();
        ASSERT_EQ(said()[0], u"running waiting - 30"_s);
        EXPECT_EQ(records().session.verdict.value(), Verdict::Waiting);
    };
    wait();
    distrustAfterGap(*core_);
    EXPECT_EQ(said()[0], u"running unsafe - 0"_s);
    EXPECT_EQ(records().session.verdict.value(), Verdict::Unsafe);

    wait();
    core_->caller = u":1.7"_s;
    HasControl(*core_, true, u"Dome"_s);
    setVerdict(*core_, true);
    EXPECT_EQ(said()[0], u"running unsafe - 0"_s);
    EXPECT_EQ(records().session.verdict.value(), Verdict::Unsafe);
}

} // namespace
} // namespace skyhold
