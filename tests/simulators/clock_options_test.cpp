#include "platform/clock_options.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

ClockStart startFrom(const QString& options) {
    return clockStartFromArguments(QStringList{QStringLiteral("program")} +
                                   options.split(u' ', Qt::SkipEmptyParts));
}

TEST(ClockOptions, AreReadBesideTheProgramsOwn) {
    const ClockStart start = startFrom(QStringLiteral(
        "--file x.htm --time-from 2013-02-08T17:00:00 --headless --time-origin 1700000000000 "
        "--time-scale 120"));
    EXPECT_EQ(start.origin, QDateTime(QDate(2013, 2, 8), QTime(17, 0)));
    EXPECT_EQ(start.realOriginMs, 1'700'000'000'000);
    EXPECT_EQ(start.scale, 120);
}

TEST(ClockOptions, WithoutATimeTheOriginIsTheRealTime) {
    EXPECT_FALSE(startFrom(QString()).origin.isValid());
    EXPECT_FALSE(startFrom(QStringLiteral("--file --scenario quick")).origin.isValid());

    const std::int64_t before = QDateTime::currentMSecsSinceEpoch();
    const ClockStart faster = startFrom(QStringLiteral("--time-scale=2.5"));
    EXPECT_EQ(faster.scale, 2.5);
    EXPECT_EQ(faster.origin.toMSecsSinceEpoch(), faster.realOriginMs);
    EXPECT_GE(faster.realOriginMs, before);

    const ClockStart shared = startFrom(QStringLiteral("--time-origin 1700000000000"));
    EXPECT_EQ(shared.origin.toMSecsSinceEpoch(), 1'700'000'000'000);
}

TEST(ClockOptions, UnreadableValuesCountAsNotGiven) {
    for (const char* options :
         {"--time-scale 0", "--time-scale -1", "--time-scale nan", "--time-scale inf",
          "--time-scale fast", "--time-from yesterday", "--time-from 2013-02-30T00:00:00",
          "--time-origin 1e3", "--time-origin 99999999999999999999"}) {
        const ClockStart start = startFrom(QString::fromLatin1(options));
        EXPECT_FALSE(start.origin.isValid()) << options;
        EXPECT_EQ(start.scale, 1) << options;
    }
}

} // namespace
} // namespace skyhold
