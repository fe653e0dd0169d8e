#include "settings/load_save.h"
#include "support/core_fixture.h"

#include <sys/stat.h>

namespace skyhold {
namespace {

TEST(Version, titleTipAndText) {
    const ProgramVersion version{2, 30, 4};
    EXPECT_EQ(version.title(), u"Kiv_Skyhold (v2.30.004)"_s);
    EXPECT_EQ((ProgramVersion{2, 5, 12}.title()), u"Kiv_Skyhold (v2.05.012)"_s);
    EXPECT_EQ(version.trayTip(), u"Kiv Skyhold (v2.30.004)"_s);
}

TEST(UpdaterSwap, downloadedUpdaterReplacesTheInstalledOne) {
    using Files = QMap<QString, QByteArray>;
    const QString updater = u"Kiv_Updater.exe"_s;
    const QString old = u"Kiv_Updater_exe.old"_s;
    const std::pair<Files, Files> cases[] = {
        {{{updater, "old"}}, {{updater, "old"}}},
        {{{u"Kiv_Updater_net.exe"_s, "new"}, {old, "older"}}, {{updater, "new"}, {old, "older"}}},
        {{{u"KIV_UPDATER_NET.EXE"_s, "new"}, {updater, "old"}, {old, "older"}},
         {{updater, "new"}, {old, "old"}}},
    };
    for (const auto& [before, after] : cases) {
        const TestFolder folder;
        for (auto file = before.begin(); file != before.end(); ++file)
            folder.write(file.key(), file.value());
        swapUpdater(folder.path());
        Files found;
        for (const QString& name : folder.names())
            found[name] = folder.read(name);
        EXPECT_EQ(found, after);
    }
}

TEST(UpdaterSwap, aFileThatOthersMayHaveMadeStaysAside) {
    const struct {
        const char* what;
        mode_t folder, file;
        bool link, swapped;
    } cases[] = {
        {"the user's alone", 0755, 0644, false, true},
        {"the group may write to the folder", 0775, 0644, false, false},
        {"everybody may write to the folder", 01777, 0644, false, false},
        {"the group may write to the file", 0755, 0664, false, false},
        {"everybody may write to the file", 0755, 0646, false, false},
        {"a link", 0755, 0644, true, false},
    };
    for (const auto& [what, folderMode, fileMode, link, swapped] : cases) {
        const TestFolder folder;
        const QString target = folder.write(link ? u"target"_s : u"Kiv_Updater_net.exe"_s, "new");
        if (link)
            QFile::link(target, folder.filePath(u"Kiv_Updater_net.exe"_s));
        ::chmod(qPrintable(target), fileMode);
        ::chmod(qPrintable(folder.path()), folderMode);
        folder.write(u"Kiv_Updater.exe"_s, "old");
        testing::internal::CaptureStderr();
        swapUpdater(folder.path());
        EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), swapped) << what;
        EXPECT_EQ(folder.read(u"Kiv_Updater.exe"_s), swapped ? "new" : "old") << what;
        EXPECT_EQ(QFile::exists(folder.filePath(u"Kiv_Updater_net.exe"_s)), !swapped) << what;
    }
}

using StartUp = CoreFixture;

TEST_F(StartUp, firstStartIsKnownByTheMissingMarker) {
    EXPECT_TRUE(isFirstStart(settings_));
    records().session.EmulatorFlag.set(0);
    EXPECT_FALSE(isFirstStart(settings_));
    EXPECT_EQ(settings_.GetSetting(u"Setup"_s, u"Emulator"_s, u"9"_s), u"0"_s);
    EXPECT_FALSE(running());
}

TEST_F(StartUp, keysThatACutFileGotBackAreNamed) {
    EXPECT_EQ(status(), QString());
    EXPECT_TRUE(SaveSettings(records(), settings_, {}));
    QFile file(settings_.filePath());
    EXPECT_TRUE(file.resize(file.size() / 2));
    SettingsStore cut(u"Kiv_Skyhold"_s);
    MonitoringCore core(clock_, cut, sensor_.creator(), media_, ProgramVersion{});
    LoadMainWindow(core);
    const QString said = core.records.session.Statusbar1.Caption;
    EXPECT_EQ(said, u"Settings cut short - %1 restored: %2, …"_s.arg(
                        QString::number(cut.restored().size()), cut.restored().value(0)));
}

TEST_F(StartUp, newsAndUpdateStatusAreShownOnce) {
    const auto tick = [&] {
        messages_.clear();
        core_->Timer6.Tick();
        EXPECT_FALSE(core_->Timer6.enabled());
        return messages_;
    };
    EXPECT_EQ(tick(), QStringList());
    records().window.Kiv_News = u"ab"_s;
    records().window.LastUpdateMsg = u"  "_s;
    EXPECT_EQ(tick(), QStringList());
    records().window.Kiv_News = u"new"_s;
    records().window.LastUpdateMsg = u"updated"_s;
    core_->Timer6.arm(10);
    records().session.State = SessionState::Starting; // which a dialog would hold
    core_->Timer6.Tick();
    EXPECT_EQ(messages_, QStringList());
    EXPECT_TRUE(core_->Timer6.enabled());
    records().session.State = SessionState::Idle;
    EXPECT_EQ(tick(), (QStringList{u"new"_s, u"updated"_s}));
    EXPECT_EQ(tick(), QStringList{u"new"_s});

    // Closed by the program's end it has not been read: it is kept for the next start.
    records().window.LastUpdateMsg = u"updated"_s;
    core_->ending = true;
    tick();
    Unload(*core_);
    EXPECT_EQ(SettingsStore(u"Kiv_Skyhold"_s).GetSetting(u"Window"_s, u"LastUpdateMsg"_s, {}),
              u"updated"_s);
}

TEST_F(StartUp, unloadSavesAndGivesControlBack) {
    records().conditions.SafeDelayVal.Value = 77;
    StartSession(*core_);
    sensor_.takeCalls();
    Unload(*core_);
    EXPECT_EQ(sensor_.takeCalls().value(0), u"Kiv_LocalControl(b false, s )"_s);
    EXPECT_EQ(SettingsStore(u"Kiv_Skyhold"_s).GetSetting(u"Window"_s, u"SafeDelayVal"_s, {}),
              u"77"_s);
}

} // namespace
} // namespace skyhold
