// A monitor whose alarms are played by a scripted media control.
#pragma once

#include "conditions/alarms.h"
#include "monitor.h"
#include "support/scripted_media.h"
#include "support/test_folder.h"

namespace skyhold {

struct AlarmFixture : Monitor {
    // A sound file of that name; its path.
    QString sound(const QString& name) const { return folder.write(name + u".wav"_s); }

    // The one indicator that is lit, or -1.
    int lit() const {
        int found = -1;
        for (int i = 0; i < 10; ++i) {
            if (!alarms.PlayAlarm[static_cast<std::size_t>(i)])
                continue;
            EXPECT_EQ(found, -1) << "two indicators are lit";
            found = i;
        }
        return found;
    }

    TestFolder folder;
    AlarmControls alarms;
    ScriptedMedia media;
    Timer timer{clock};
    AlarmPlayer player{media, timer, alarms};
};

} // namespace skyhold
