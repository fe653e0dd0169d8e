#include "core/upload.h"

#include "datafiles/upload_list.h"
#include "support/core_fixture.h"

#include <QDeadlineTimer>
#include <QThread>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

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
        QFile file(folder_->filePath(u"uploader"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\ntrap 'echo F6 >>notes; exit' USR1\necho start >>notes\n" + work);
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        core_->handOff.program = file.fileName();
    }
    QStringList notes() {
        QFile file(folder_->filePath(u"notes"_s));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }
    bool until(const std::function<bool()>& holds) {
        const QDeadlineTimer patience(10'000);
        while (!holds() && !patience.hasExpired())
            QThread::msleep(5);
        return holds();
    }
    bool uploaderEnds() {
        return until([this] { return !isRunning(core_->handOff.task.value_or(Task())); });
    }
    void modifyFile() {
        clock_.advanceSeconds(5);
        writeStation({});
    }
    void sayRunning(const QString& text) {
        SettingsStore(kUploaderArea).saveNow(u"Window"_s, u"Running"_s, text);
    }

    const QByteArray atWork_ = "for i in $(seq 500); do sleep 0.02; done\n";
    const QStringList once_{u"start"_s};
};

TEST_F(Upload, sessionHandsOffAtOnceAndItsEndSendsTheKey) {
    installUploader(atWork_);
    UploadControls& upload = records().upload;
    StartSession(*core_);
    EXPECT_EQ(core_->TimerUpload.interval(), 5000);
    EXPECT_TRUE(until([this] { return notes() == once_; }));
    for (const bool enabled :
         {upload.ServerAddress.Enabled.value(), upload.PassWord.Enabled.value(),
          upload.RefreshUpload.Enabled.value(), upload.TimeoutUPLOAD.Enabled.value(),
          upload.ButtFileADD.Enabled.value(), upload.UploadOnce.Enabled.value()})
        EXPECT_FALSE(enabled);
    const SettingsStore area(kUploaderArea);
    EXPECT_EQ(area.GetSetting(u"Setup"_s, u"File1"_s, {}), stationPath());

    // As long as it runs nothing is handed off.
    const QDateTime stamp = upload.Files[0].fDateTimeStamp;
    modifyFile();
    core_->TimerUpload.Tick();
    EXPECT_EQ(upload.Files[0].fDateTimeStamp, stamp);

    StopSession(*core_);
    EXPECT_TRUE(uploaderEnds());
    EXPECT_EQ(notes(), (QStringList{u"start"_s, u"F6"_s}));
    EXPECT_FALSE(core_->TimerUpload.enabled());
    EXPECT_TRUE(upload.ServerAddress.Enabled);
    EXPECT_TRUE(upload.ButtFileADD.Enabled);
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
    EXPECT_EQ(notes(), once_);

    modifyFile();
    core_->TimerUpload.Tick(); // busy
    EXPECT_EQ(notes(), once_);
    sayRunning(u"0"_s);
    core_->TimerUpload.Tick();
    EXPECT_TRUE(uploaderEnds());
    EXPECT_EQ(notes().size(), 2);
}

TEST_F(Upload, anUploaderThatWasKilledHoldsNothingUp) {
    installUploader("");
    StartSession(*core_);
    EXPECT_TRUE(uploaderEnds());
    sayRunning(u"1"_s); // and nobody holds the lock
    modifyFile();
    core_->TimerUpload.Tick();
    EXPECT_TRUE(uploaderEnds());
    EXPECT_EQ(notes().size(), 2);
}

TEST_F(Upload, withoutUploaderTheNextTickTriesAgain) {
    StartSession(*core_);
    EXPECT_TRUE(records().session.Running);
    EXPECT_TRUE(messages_.isEmpty());
    core_->TimerUpload.Tick();
    installUploader("");
    sayRunning(u"1"_s); // the forced hand-off is still to come
    TaskLock otherUploader;
    ASSERT_TRUE(otherUploader.take(taskLockPath(SettingsStore(kUploaderArea))));
    core_->TimerUpload.Tick();
    EXPECT_TRUE(uploaderEnds());
    EXPECT_EQ(notes(), once_);
}

} // namespace
} // namespace skyhold
