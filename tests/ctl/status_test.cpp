#include "ctl/status.h"

#include <QHash>
#include <QJsonArray>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(Verdict, onlyOneStateOfAllIsSafe) {
    const std::optional<bool> flags[] = {std::nullopt, false, true};
    const std::optional<std::int32_t> ages[] = {std::nullopt, -1, 0, 2, 3, 4, 1000};
    QList<int> states{0, 0, 0}; // how many have that exit status
    for (const auto running : flags) {
        for (const auto ready : flags) {
            for (const auto age : ages) {
                for (const auto verdict : flags) {
                    const VerdictFacts facts{running, ready, age, verdict};
                    const int status = exitStatus(verdictOf(facts));
                    ++states[status];
                    EXPECT_EQ(unknownCause(facts).isEmpty(), status != 2);
                }
            }
        }
    }
    EXPECT_EQ(states, (QList<int>{1, 1, 3 * 3 * 7 * 3 - 2}));
    EXPECT_EQ(exitStatus(verdictOf({true, true, 3, true})), 0);
    EXPECT_EQ(exitStatus(verdictOf({true, true, 3, false})), 1);
}

TEST(Verdict, theWorseOneTrustsLess) {
    const Verdict all[] = {Verdict::Safe, Verdict::Unsafe, Verdict::Unknown};
    for (const Verdict first : all) {
        for (const Verdict second : all)
            EXPECT_EQ(exitStatus(worse(first, second)),
                      std::max(exitStatus(first), exitStatus(second)));
    }
}

// A monitor that answers what the test says: by member, Kiv_DataDisplayed by its arguments.
class ScriptedMonitor {
  public:
    QHash<QString, QVariant> answers{
        {u"DeviceIsRunning"_s, true},
        {u"DataReady"_s, true},
        {u"SecondsSinceGoodData"_s, 3},
        {u"Safe"_s, true},
        {u"Kiv_SafeDelayMsg"_s, u""_s},
        {u"LastReading"_s, QVariant::fromValue(AutomationDate{46342.75})},
    };
    QString failing;                        // the member that refuses
    std::function<void(int asked)> between; // before every question

    Status status() {
        int asked = 0;
        return readStatus([&](const QString& name, const QVariantList& arguments) {
            if (between)
                between(asked);
            ++asked;
            QString key = name;
            for (const QVariant& argument : arguments)
                key += u' ' + argument.toString();
            names.append(key);
            if (key == failing)
                return AutomationReply{{}, AutomationError::Fail, u"refused"_s};
            return AutomationReply{answers.value(key, standard(key)), AutomationError::None, {}};
        });
    }

    QStringList names; // asked for

  private:
    static QVariant standard(const QString& key) {
        if (key.startsWith(u"Kiv_DataDisplayed desc"_s))
            return u"Fine"_s;
        if (key.startsWith(u"Kiv_DataDisplayed value"_s))
            return u"7 x"_s;
        return key.startsWith(u"Condition_"_s) ? 1 : 0;
    }
};

TEST(StatusReading, everyFailureAndOddAnswerIsUnknown) {
    ScriptedMonitor monitor;
    ASSERT_EQ(monitor.status().verdict, Verdict::Safe);
    const QStringList asked = std::exchange(monitor.names, {});
    EXPECT_GE(asked.size(), 8 * 4 + 4 + 2); // conditions, facts, message and time
    for (const QString& name : asked) {
        ScriptedMonitor refusing;
        refusing.failing = name;
        const Status refused = refusing.status();
        EXPECT_EQ(refused.verdict, Verdict::Unknown) << qPrintable(name);
        EXPECT_EQ(refused.causes, QStringList{u"refused"_s});
        if (name == u"LastReading"_s) // shown, whatever it is
            continue;
        for (const QVariant& odd : {QVariant(), QVariant(0.5), QVariant(QVariantList{true})}) {
            ScriptedMonitor strange;
            strange.answers.insert(name, odd);
            EXPECT_EQ(strange.status().verdict, Verdict::Unknown) << qPrintable(name);
        }
    }
    // A number is no verdict, and there is no fourth level.
    for (const auto& [name, value] : {std::pair{u"Safe"_s, 1},
                                      {u"Safe"_s, -1},
                                      {u"Condition_Rain"_s, 4},
                                      {u"Condition_Rain"_s, -1}}) {
        ScriptedMonitor strange;
        strange.answers.insert(name, value);
        EXPECT_EQ(strange.status().verdict, Verdict::Unknown) << qPrintable(name) << value;
    }
}

TEST(StatusReading, factsOfTwoCyclesNeverMakeASafeOne) {
    using Answers = QHash<QString, QVariant>;
    const std::pair<Answers, Answers> cycles[] = {
        // Before the cycle the data is old and the last verdict safe; after it, the data is good
        // and the verdict unsafe. Neither is safe, wherever the cycle falls.
        {{{u"SecondsSinceGoodData"_s, 1000}}, {{u"SecondsSinceGoodData"_s, 3}, {u"Safe"_s, false}}},
        {{{u"Safe"_s, false}}, {{u"DataReady"_s, false}, {u"Safe"_s, true}}},
    };
    ScriptedMonitor counting;
    counting.status();
    for (const auto& [before, after] : cycles) {
        for (int cycle = 0; cycle <= counting.names.size(); ++cycle) {
            ScriptedMonitor monitor;
            monitor.answers.insert(before);
            monitor.between = [&, &then = after](int asked) {
                if (asked == cycle)
                    monitor.answers.insert(then);
            };
            EXPECT_NE(monitor.status().verdict, Verdict::Safe) << cycle;
        }
    }
}

TEST(StatusReading, theCauseIsToldAsFarAsItIsKnown) {
    const struct {
        QHash<QString, QVariant> answers;
        Verdict verdict;
        QStringList causes;
    } cases[] = {
        // A flagged level need not count: the wind may come from a sector that was left out.
        {{{u"SafeWindCalm"_s, 1}}, Verdict::Safe, {}},
        {{{u"Safe"_s, false},
          {u"Condition_Rain"_s, 3},
          {u"Kiv_DataDisplayed desc rain"_s, u"Rain\x1b!"_s},
          {u"SafeRain"_s, 1},
          {u"Condition_DewCond"_s, 2},
          {u"Kiv_DataDisplayed desc dew"_s, u""_s},
          {u"SafeDewHumid"_s, 1}},
         Verdict::Unsafe,
         {u"Rain: Rain !"_s, u"Dew point: level 2"_s}},
        {{{u"Safe"_s, false}, {u"Kiv_SafeDelayMsg"_s, u"SAFE condition delayed by 12 s"_s}},
         Verdict::Unsafe,
         {u"SAFE condition delayed by 12 s"_s}},
        {{{u"Safe"_s, false}}, Verdict::Unsafe, {u"the conditions do not tell why"_s}},
        {{{u"SecondsSinceGoodData"_s, 1000}, {u"Kiv_SafeDelayMsg"_s, u" / Station old"_s}},
         Verdict::Unknown,
         {u"data of the station or the sensor program is old or missing"_s, u"Station old"_s}},
        {{{u"DataReady"_s, false}}, Verdict::Unknown, {u"the sensor program has no data yet"_s}},
        {{{u"DeviceIsRunning"_s, false}},
         Verdict::Unknown,
         {u"monitoring is not running; start it with: skyholdctl start"_s}},
    };
    for (const auto& [answers, verdict, causes] : cases) {
        ScriptedMonitor monitor;
        monitor.answers.insert(answers);
        const Status status = monitor.status();
        EXPECT_EQ(status.verdict, verdict);
        EXPECT_EQ(status.causes, causes) << qPrintable(status.causes.join(u", "_s));
    }
}

TEST(StatusReading, isShownAsTextAndLine) {
    ScriptedMonitor monitor;
    monitor.answers.insert(u"Safe"_s, false);
    monitor.answers.insert(u"SafeDry"_s, 1);
    monitor.answers.insert(u"Kiv_DataDisplayed desc rain"_s, u"Dry"_s);
    monitor.answers.insert(u"Kiv_DataDisplayed value rain"_s, u"2600 cycles"_s);
    const Status status = monitor.status();
    const QStringList lines = statusText(status).split(u'\n');
    ASSERT_EQ(lines.size(), 11);
    EXPECT_EQ(lines[0], u"UNSAFE  Rain: Dry"_s);
    EXPECT_EQ(lines[1], u"Cloud                7 x  Fine"_s);
    EXPECT_EQ(lines[2], u"Rain         2600 cycles  Dry (flagged unsafe)"_s);
    EXPECT_EQ(lines[9], u"Last reading 2026-11-16 18:00:00"_s);
    EXPECT_TRUE(statusLine(status).startsWith(
        u"UNSAFE | Rain: Dry | Cloud 7 x Fine | Rain 2600 cycles Dry | "_s));
    EXPECT_FALSE(statusLine(status).contains(u'\n'));

    const Status unknown = unknownStatus(u"no bus"_s);
    EXPECT_EQ(statusText(unknown), u"UNKNOWN  no bus\n"_s);
}

} // namespace
} // namespace skyhold
