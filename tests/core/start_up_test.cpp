// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/upload.h"
#include "datafiles/upload_list.h"
#include "records/status_lines.h"
#include "settings/load_save.h"
#include "support/core_fixture.h"
#include "support/eventually.h"

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

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
        folder.write(u"Kiv_Updater_exe.old"_s, "older");
        testing::internal::CaptureStderr();
        swapUpdater(folder.path());
        EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), swapped) << what;
        EXPECT_EQ(folder.read(u"Kiv_Updater.exe"_s), swapped ? "new" : "old") << what;
        EXPECT_EQ(folder.read(u"Kiv_Updater_exe.old"_s), swapped ? "old" : "older") << what;
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

class Upload : public CoreFixture {
  protected:
    Upload() {
        records().session.flgReadStation.set(0);
        records().session.flgUpload.set(1);
        records().upload.RefreshUpload.choose(0);
        Add(records().upload, u"station.htm"_s, folder_->path(), false);
    }
    ~Upload() override { StopSession(*core_); }

    // In the place of the uploader a script that notes its start and the key "{F6}".
    void installUploader(const QByteArray& work) {
        core_->handOff.program = folder_->writeProgram(
            u"uploader"_s, "trap 'echo F6 >>notes; exit' USR1\necho start >>notes\n" + work);
    }
    bool uploaderEnds() {
        return eventually([this] { return !isRunning(core_->handOff.task.value_or(Task())); });
    }
    // How often the uploader was started, once the last one has ended.
    int starts() {
        EXPECT_TRUE(uploaderEnds());
        return begun();
    }
    int begun() const { return static_cast<int>(folder_->read(u"notes"_s).count("start")); }
    void modifyFile() {
        clock_.advanceSeconds(5);
        writeStation({});
    }
    // The lamp that is lit; the other one is grey.
    Colour lamp() {
        const LampPair& lamps = records().upload.LEDUpload;
        return lamps.first.FillColor == kGrey ? lamps.second.FillColor : lamps.first.FillColor;
    }
    void sayRunning(const QString& text) {
        SettingsStore(kUploaderArea).saveNow(u"Window"_s, u"Running"_s, text);
    }

    // Has the uploader report, in the name of the process with that id.
    static QByteArray reporting(const QByteArray& id, const QByteArray& notArrived,
                                const QByteArray& more) {
        return "printf '[Result]\nTask=%s\nNotArrived=" + notArrived + "\n" + more + "\n' " + id +
               " >>\"$XDG_CONFIG_HOME/Kiv/Kiv_Uploader.ini\"\n";
    }

    const QByteArray atWork_ = "for i in $(seq 500); do sleep 0.02; done\n";
};

TEST_F(Upload, sessionHandsOffAtOnceAndItsEndSendsTheKey) {
    installUploader(atWork_);
    UploadControls& upload = records().upload;
    StartSession(*core_);
    EXPECT_EQ(core_->TimerUpload.interval(), 5000);
    EXPECT_TRUE(eventually([this] { return begun() == 1; }));
    const auto expectEditable = [&upload](bool editable) {
        for (const bool enabled :
             {upload.ServerAddress.Enabled.value(), upload.PassWord.Enabled.value(),
              upload.RefreshUpload.Enabled.value(), upload.TimeoutUPLOAD.Enabled.value(),
              upload.ButtFileADD.Enabled.value(), upload.UploadOnce.Enabled.value()})
            EXPECT_EQ(enabled, editable);
    };
    expectEditable(false);
    const SettingsStore area(kUploaderArea);
    EXPECT_EQ(area.GetSetting(u"Setup"_s, u"File1"_s, {}), stationPath());

    // As long as it runs nothing is handed off.
    const QDateTime stamp = upload.Files[0].fDateTimeStamp;
    modifyFile();
    core_->TimerUpload.Tick();
    EXPECT_EQ(upload.Files[0].fDateTimeStamp, stamp);
    EXPECT_EQ(lamp(), kYellow);

    StopSession(*core_);
    EXPECT_TRUE(uploaderEnds());
    EXPECT_EQ(folder_->read(u"notes"_s), "start\nF6\n");
    EXPECT_FALSE(core_->TimerUpload.enabled());
    expectEditable(true);
    EXPECT_TRUE(records().session.ButtStart.Visible);
    EXPECT_TRUE(records().session.ButtStop.Enabled);
}

TEST_F(Upload, ticksHandOffWhenDueAndNoUploaderIsAtWork) {
    installUploader("");
    TaskLock otherUploader;
    ASSERT_TRUE(otherUploader.take(taskLockPath(SettingsStore(kUploaderArea))));
    sayRunning(u"1"_s);
    StartSession(*core_); // the start asks for no leave
    EXPECT_TRUE(uploaderEnds());
    core_->TimerUpload.Tick(); // not modified
    EXPECT_EQ(starts(), 1);

    modifyFile();
    core_->TimerUpload.Tick(); // busy
    EXPECT_EQ(starts(), 1);
    EXPECT_EQ(lamp(), kYellow);
    sayRunning(u"0"_s);
    core_->TimerUpload.Tick();
    EXPECT_EQ(lamp(), kGreen);
    EXPECT_EQ(starts(), 2);
}

TEST_F(Upload, whatDidNotArriveGoesAgainAtTheNextTick) {
    UploadControls& upload = records().upload;
    EXPECT_EQ(upload.LastSuccess.Caption.value(), u"none yet"_s);
    upload.Files[0].fUploadOnce = true;
    const QByteArray missed =
        "File1=" + stationPath().toUtf8() +
        "\nReason1=no connection\nTime1=2026-11-16 22:00:05\nLastError=2026-11-16 22:00:05 none";
    installUploader(reporting("$$", "1", missed));
    StartSession(*core_);
    EXPECT_TRUE(uploaderEnds());
    SetStatusText(records().session.Statusbar1, u"all is well"_s, kGreen);

    installUploader(reporting("$$", "0", "LastSuccess=2026-11-16 22:01:05 1 of 1 files"));
    core_->TimerUpload.Tick();
    EXPECT_EQ(upload.LastError.Caption.value(), u"2026-11-16 22:00:05 none"_s);
    EXPECT_EQ(status(), u"Upload failed 22:00:05, station.htm: no connection"_s);
    EXPECT_TRUE(uploaderEnds());
    const SettingsStore area(kUploaderArea);
    EXPECT_EQ(area.GetSetting(u"Setup"_s, u"NoFiles"_s, {}), u"1"_s);
    EXPECT_EQ(starts(), 2);

    // It has arrived: a hand-off for what else is due has it no more.
    installUploader(reporting("$$", "1", missed));
    core_->TimerUpload.Tick();
    EXPECT_EQ(status(), u"Uploaded 2026-11-16 22:01:05 1 of 1 files"_s);
    EXPECT_TRUE(uploaderEnds());
    EXPECT_EQ(upload.LastSuccess.Caption.value(), u"2026-11-16 22:01:05 1 of 1 files"_s);
    EXPECT_EQ(SettingsStore(kUploaderArea).GetSetting(u"Setup"_s, u"NoFiles"_s, {}), u"0"_s);
    // An error of the readings stays. A report of somebody else's makes nothing due.
    SetStatusText(records().session.Statusbar1, u"Error with Kiv_Nubilo"_s, kRed);
    installUploader(reporting("1", "1", missed));
    upload.Files[0].fUploadOnce = false;
    core_->TimerUpload.Tick();
    EXPECT_EQ(status(), u"Error with Kiv_Nubilo"_s);
    EXPECT_EQ(starts(), 4);
    core_->TimerUpload.Tick();
    EXPECT_EQ(starts(), 4);
}

TEST_F(Upload, anUploaderThatWasKilledHoldsNothingUp) {
    installUploader("");
    StartSession(*core_);
    EXPECT_TRUE(uploaderEnds());
    sayRunning(u"1"_s); // and nobody holds the lock
    modifyFile();
    core_->TimerUpload.Tick();
    EXPECT_EQ(starts(), 2);
}

TEST_F(Upload, withoutUploaderTheNextTickTriesAgain) {
    StartSession(*core_);
    EXPECT_TRUE(running());
    EXPECT_TRUE(messages_.isEmpty());
    core_->TimerUpload.Tick();
    EXPECT_EQ(lamp(), kRed);
    installUploader("");
    sayRunning(u"1"_s); // the forced hand-off is still to come
    TaskLock otherUploader;
    ASSERT_TRUE(otherUploader.take(taskLockPath(SettingsStore(kUploaderArea))));
    core_->TimerUpload.Tick();
    EXPECT_EQ(starts(), 1);
}

} // namespace
} // namespace skyhold
