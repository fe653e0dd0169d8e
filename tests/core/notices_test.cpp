// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/notices.h"

#include "core/alarms.h"
#include "support/core_fixture.h"

#include <QCoreApplication>

namespace skyhold {
namespace {

class Notices : public CoreFixture {
  protected:
    Notices() {
        notices_.show = [this](const Notice& notice) {
            said_ +=
                (notice.silence ? u"[silence] "_s : QString()) + notice.title + u'\n' + notice.text;
        };
        notices_.seen = [this] {
            return seen_;
        };
        for (CheckBox* box : {&records().notices.OnVerdict, &records().notices.OnSource,
                              &records().notices.OnAlarm})
            EXPECT_TRUE(box->checked());
        records().conditions.SafeDelayVal.Value = 30;
    }

    // What is said once events are served.
    QStringList said() {
        QCoreApplication::processEvents();
        return std::exchange(said_, {});
    }
    void giveSound(CheckBox& box) {
        box.Tag = folder_->write(u"beep.wav"_s, "sound");
        box.set(1);
    }

    bool seen_ = false;
    QStringList said_;
    ChangeNotices notices_{*core_};
};

TEST_F(Notices, ANightIsOneNoticeAChange) {
    StartSession(*core_);
    EXPECT_EQ(said(), QStringList{u"Safe\nAll conditions safe; nearest: dew-point spread 8.0 °C, "
                                  u"unsafe at 3"_s});
    cycle();
    EXPECT_EQ(said(), QStringList());
    cycle({.wind = u"23.4"_s}, 60);
    EXPECT_EQ(said(), QStringList{u"Unsafe\nWind 23.4 km/hr, above 20, since 22:01:10"_s});
    cycle({.wind = u"25"_s}); // the same, only worse
    EXPECT_EQ(said(), QStringList());
    cycle();
    EXPECT_EQ(said(), QStringList{u"Unsafe: waiting for the safe delay\nSafe in 30 s; last reset "
                                  u"by Wind at 22:01:20"_s});
    cycle({}, 30);
    EXPECT_EQ(said().value(0).section(u'\n', 0, 0), u"Safe"_s);

    giveSound(records().alarms.AlarmWS);
    cycleWithoutStation(300);
    EXPECT_EQ(said(), QStringList{u"[silence] Unsafe: a source has failed\nStation data 300 s old, "
                                  u"more than 180, since 22:07:00\nAlarm: weather station"_s});
    stopAlarm(*core_);
    cycleWithoutStation();
    EXPECT_EQ(said(), QStringList());
    StopSession(*core_);
    EXPECT_EQ(said(), QStringList{u"Not monitored\nNo monitoring session is running"_s});
}

TEST_F(Notices, EachKindIsItsOwnChoice) {
    struct Case {
        int verdict, source, alarm;
        const char* title;
    };
    // The sensor program fails, which does not count here, and has an alarm.
    const Case cases[]{{1, 1, 1, "[silence] Safe, but a source has failed"},
                       {0, 1, 0, "[silence] Safe, but a source has failed"},
                       {0, 0, 1, "[silence] Safe"},
                       {1, 0, 0, ""}};
    records().conditions.NBDataOldUnsafe.set(0);
    giveSound(records().alarms.AlarmNB);
    for (const Case& c : cases) {
        records().notices.OnVerdict.set(c.verdict);
        records().notices.OnSource.set(c.source);
        records().notices.OnAlarm.set(c.alarm);
        sensor_.answering = true;
        StartSession(*core_);
        said();
        sensor_.answering = false;
        cycle();
        const QString text = said().value(0);
        EXPECT_EQ(text.section(u'\n', 0, 0), QString::fromLatin1(c.title));
        EXPECT_EQ(text.contains(u"\nKiv_Nubilo has failed"_s), c.source == 1);
        EXPECT_EQ(text.contains(u"\nAlarm: Kiv_Nubilo"_s), c.title != QByteArray());
        StopSession(*core_);
        said();
    }
}

// What the user has seen is not said later either.
TEST_F(Notices, NothingWhileThePanelIsInFrontOfTheUser) {
    seen_ = true;
    StartSession(*core_);
    cycle({.wind = u"23.4"_s}, 60);
    EXPECT_EQ(said(), QStringList());
    seen_ = false;
    cycle({.wind = u"23.4"_s});
    EXPECT_EQ(said(), QStringList());
    cycle();
    EXPECT_EQ(said().size(), 1);
}

} // namespace
} // namespace skyhold
