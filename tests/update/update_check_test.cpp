#include "update/update_check.h"

#include "platform/remote_file.h"
#include "support/eventually.h"
#include "support/test_folder.h"
#include "support/web_server.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

const QByteArray kFolder = "/base/kiv/skyhold220/";
const QByteArray kInstructions = "line\n\0\xff\r"_ba;
const QByteArray kFirstLine = "\"Title\",\"Kiv_Skyhold\",-7,120,\"Kiv_Skyhold.exe\"\r\n";

class Update : public testing::Test {
  protected:
    Update() {
        window_.UpdateBaseAddress = server_.address() + u"/base"_s;
        update_.Left = -7;
        update_.Top = 120;
        serve("Kiv_SkyholdNews.txt", "Neu: f\xfcr Sie");
        serve("Kiv_Skyhold.txt", "2.31.000\r\n");
        serve("Kiv_SkyholdUpdater.txt", kInstructions);
    }

    void serve(const QByteArray& name, const QByteArray& body) {
        server_.answers[kFolder + name] = WebServer::ok(body);
    }
    void check() {
        const UpdateSource source{
            .fetch =
                [this](const QUrl& url) {
                    EXPECT_FALSE(update_.CheckButton.Enabled);
                    return file_.fetch(url, [this](TransferState state) {
                        update_.StatusLine.Caption = transferStateText(state);
                    });
                },
            .runningVersion = u"2.30.004"_s,
            .instructionFolder = folder_.path(),
        };
        CheckForUpdate(update_, window_, settings_, source, [this](const QString& news) {
            EXPECT_TRUE(update_.CheckButton.Enabled);
            EXPECT_TRUE(update_.DownloadFrame.Visible);
            shown_ += news;
        });
        EXPECT_TRUE(update_.CheckButton.Enabled);
    }
    QByteArray written(const QString& name = u"Kiv_Updater.txt"_s) { return folder_.read(name); }
    // As another run of the program finds it.
    QString storedNews() {
        return SettingsStore(u"Kiv_Skyhold"_s).GetSetting(u"Window"_s, u"Kiv_News"_s, u"none"_s);
    }

    const SettingsFolder folder_; // before the store, which is made in it
    SettingsStore settings_{u"Kiv_Skyhold"_s};
    WebServer server_;
    RemoteFile file_;
    UpdateControls update_;
    WindowControls window_;
    QStringList shown_;
};

TEST_F(Update, NewsVersionAndInstructionsAreFetchedAndKept) {
    EXPECT_FALSE(update_.DownloadFrame.Visible);
    check();
    EXPECT_EQ(server_.asked,
              (QList<QByteArray>{kFolder + "Kiv_SkyholdNews.txt", kFolder + "Kiv_Skyhold.txt",
                                 kFolder + "Kiv_SkyholdUpdater.txt"}));
    EXPECT_EQ(update_.Label1.Caption.value(), u"2.30.004"_s);
    EXPECT_EQ(update_.Label2.Caption.value(), u"2.31.000"_s);
    EXPECT_EQ(update_.StatusLine.Caption.value(), u"Sucessful response"_s);
    EXPECT_TRUE(update_.DownloadFrame.Visible);
    EXPECT_EQ(written(), kFirstLine + kInstructions);
    EXPECT_EQ(shown_, QStringList{u"Neu: f\u00fcr Sie"_s});
    EXPECT_EQ(window_.Kiv_News, u"Neu: f\u00fcr Sie"_s);
    EXPECT_EQ(storedNews(), u"Neu: f\u00fcr Sie"_s);

    DiscardNews(window_, settings_);
    EXPECT_EQ(window_.Kiv_News, QString());
    EXPECT_EQ(storedNews(), QString());
}

TEST_F(Update, ShortNewsAreKeptButNotShown) {
    for (const auto& [news, shown] :
         QList<std::pair<QByteArray, bool>>{{"", false}, {"ab", false}, {"abc", true}}) {
        serve("Kiv_SkyholdNews.txt", news);
        shown_.clear();
        check();
        EXPECT_EQ(storedNews(), QString::fromLatin1(news));
        EXPECT_EQ(shown_.size(), shown ? 1 : 0) << news.constData();
    }
}

TEST_F(Update, AfterAFailureNothingHasChanged) {
    folder_.write(u"Kiv_Updater.txt"_s, "before");
    settings_.saveNow(u"Window"_s, u"Kiv_News"_s, u"old news"_s);
    window_.Kiv_News = u"old news"_s;
    const QString base = window_.UpdateBaseAddress;
    const auto failsWith = [&](const QString& status) {
        check();
        EXPECT_EQ(update_.StatusLine.Caption.value(), status);
        EXPECT_EQ(written(), "before"_ba);
        EXPECT_EQ(window_.Kiv_News, u"old news"_s);
        EXPECT_EQ(storedNews(), u"old news"_s);
        EXPECT_EQ(update_.Label2.Caption.value(), QString());
        EXPECT_FALSE(update_.DownloadFrame.Visible);
        EXPECT_EQ(shown_, QStringList());
    };
    for (const QByteArray& name : {kFolder + "Kiv_SkyholdNews.txt", kFolder + "Kiv_Skyhold.txt",
                                   kFolder + "Kiv_SkyholdUpdater.txt"}) {
        const WebServer::Answer good = server_.answers.take(name);
        failsWith(u"Communication error"_s);
        server_.answers[name] = good;
    }
    // A server that answers whatever it is asked with its own page.
    for (const QByteArray& page : {""_ba, " \r\n"_ba, "<html><body>Welcome, guest, log in"_ba,
                                   "2.31\0.000"_ba, "\xff\xfe\x32"_ba}) {
        serve("Kiv_Skyhold.txt", page);
        failsWith(u"The update server gave no version number"_s);
    }
    serve("Kiv_Skyhold.txt", "2.31.000");

    server_.asked.clear();
    window_.UpdateBaseAddress = u" "_s;
    failsWith(u"No update server is set (BaseAddress in section Update of the settings)"_s);
    for (const QString& address : {u"file:///etc"_s, u"updates"_s, u"http://"_s}) {
        window_.UpdateBaseAddress = address;
        failsWith(u"The address of the update server is not valid"_s);
    }
    EXPECT_EQ(server_.asked, QList<QByteArray>());
    window_.UpdateBaseAddress = base + u'/';
    check();
    EXPECT_EQ(written(), kFirstLine + kInstructions);
}

TEST_F(Update, InstructionsThatCannotBeWrittenAreSaidAndNotOffered) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(u"Kiv_Updater.txt/in the way"_s));
    check();
    EXPECT_EQ(update_.StatusLine.Caption.value(),
              u"Cannot write "_s + folder_.filePath(u"Kiv_Updater.txt"_s));
    EXPECT_FALSE(update_.DownloadFrame.Visible);
    EXPECT_EQ(storedNews(), u"none"_s);
    // Nothing half-written stays behind.
    EXPECT_EQ(folder_.names(), (QStringList{u"Kiv"_s, u"Kiv_Updater.txt"_s}));
}

TEST(UpdateAddress, WithoutEncryptionItIsWarnedOf) {
    for (const auto& [address, warns] :
         QList<std::pair<QString, bool>>{{u"http://updates.example.org"_s, true},
                                         {u" HTTP://updates.example.org/base "_s, true},
                                         {u"https://updates.example.org"_s, false},
                                         {u""_s, false},
                                         {u"ftp://updates.example.org"_s, false}}) // refused anyway
        EXPECT_EQ(updateAddressWarning(address).contains(u"not https"_s), warns)
            << qPrintable(address);
}

TEST_F(Update, OnlyTheSameVersionIsAskedAbout) {
    const QString question =
        u"The lattest version already installed.\r\n Do you wish to download?"_s;
    const struct {
        QString newest;
        MessageAnswer answer;
        QStringList asked;
        bool chosen;
    } cases[]{
        {u"2.30.004"_s, MessageAnswer::Yes, {question}, true},
        {u"2.30.004"_s, MessageAnswer::No, {question}, false},
        {u"2.31.000"_s, MessageAnswer::No, {}, true},
        {u"2.29.000"_s, MessageAnswer::No, {}, true},
    };
    for (const auto& tried : cases) {
        UpdateControls update;
        update.Label1.Caption = u"2.30.004"_s;
        update.Label2.Caption = tried.newest;
        update.DownloadFrame.Visible = true;
        QStringList asked;
        ChooseDownload(update, [&](const Message& message) {
            EXPECT_EQ(message.style, MessageStyle::YesNo);
            asked += message.text;
            return tried.answer;
        });
        EXPECT_EQ(asked, tried.asked);
        EXPECT_EQ(update.DownloadFlag, tried.chosen) << qPrintable(tried.newest);
        EXPECT_FALSE(update.DownloadFrame.Visible);
    }
}

TEST_F(Update, TheUpdaterRunsOnlyWhenChosen) {
    int closed = 0;
    const auto run = [&](bool chosen) {
        update_.DownloadFlag = chosen;
        RunUpdaterIfChosen(update_, folder_.path(), folder_.path(), [&] { ++closed; });
    };
    folder_.writeProgram(u"Kiv_Updater.exe"_s, "mv Kiv_Updater.txt taken\n");
    folder_.write(u"Kiv_Updater.txt"_s, "instructions");
    run(false);
    EXPECT_FALSE(QFile::exists(folder_.filePath(u"Kiv_Updater.txt"_s)));
    run(false); // nothing to delete
    EXPECT_EQ(closed, 0);

    folder_.write(u"Kiv_Updater.txt"_s, "instructions");
    run(true);
    EXPECT_EQ(closed, 1);
    EXPECT_TRUE(eventually([&] { return written(u"taken"_s) == "instructions"; }));

    ASSERT_TRUE(QFile::remove(folder_.filePath(u"Kiv_Updater.exe"_s)));
    run(true); // not checked
    EXPECT_EQ(closed, 2);
}

} // namespace
} // namespace skyhold
