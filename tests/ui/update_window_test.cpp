#include "ui/dialogs/update_window.h"

#include "platform/files.h"
#include "support/web_server.h"
#include "ui/dialogs/news_window.h"
#include "window_fixture.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

class Updates : public WindowFixture {
  protected:
    Updates() {
        core_->showNews = [this](const QString& text) {
            showNewsOver(*window_, *core_, text);
        };
        core_->closeWindow = [this] {
            ++closed_;
        };
        records().window.UpdateBaseAddress = server_.address();
        serve("Kiv_SkyholdNews.txt", "ab");
        serve("Kiv_Skyhold.txt", "2.31.000");
        serve("Kiv_SkyholdUpdater.txt", "instructions");
    }
    ~Updates() override { QFile::remove(instructions()); }

    void serve(const QByteArray& name, const QByteArray& body) {
        server_.answers["/kiv/skyhold220/" + name] = WebServer::ok(body);
    }
    static QString instructions() {
        return joinPath(writableProgramFolder(), u"Kiv_Updater.txt"_s);
    }
    void run(const std::function<void(QDialog&)>& act) {
        EXPECT_TRUE(duringDialog([&] { runUpdateWindow(*core_, *window_); }, act));
    }
    QString storedNews() {
        return SettingsStore(u"Kiv_Skyhold"_s).GetSetting(u"Window"_s, u"Kiv_News"_s, u"none"_s);
    }

    WebServer server_;
    int closed_ = 0;
};

TEST_F(Updates, NewsComeAtStartUntilTheyAreDiscarded) {
    const QString news = u"<b>News</b>\r\nof two lines"_s;
    settings_.saveNow(u"Window"_s, u"Kiv_News"_s, news);
    records().window.Kiv_News = news;
    const auto start = [&](const std::function<void(QDialog&)>& act) {
        return duringDialog([&] { core_->Timer6.Tick(); }, act);
    };
    EXPECT_TRUE(start([this](QDialog& dialog) {
        EXPECT_EQ(child<QLabel>(dialog, "LblNews")->text(), u"<b>News</b>\nof two lines"_s);
        EXPECT_EQ(child<QLabel>(dialog, "LblNews")->textFormat(), Qt::PlainText);
        EXPECT_TRUE(dialog.windowFlags() & Qt::WindowStaysOnTopHint);
        click(dialog, "ButtClose");
    }));
    EXPECT_TRUE(start([this](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }));
    EXPECT_EQ(storedNews(), news);
    // However it is closed.
    EXPECT_TRUE(start([this](QDialog& dialog) {
        child<QCheckBox>(dialog, "CheckDiscard")->setChecked(true);
        dialog.close();
    }));
    EXPECT_EQ(records().window.Kiv_News, QString());
    EXPECT_EQ(storedNews(), QString());
    EXPECT_FALSE(start([](QDialog&) {}));
}

TEST_F(Updates, NewsOfAnyLengthFitTheScreen) {
    const QSize screen = window_->screen()->availableGeometry().size();
    QStringList lines;
    for (int i = 0; i < 400; ++i)
        lines += u"A line of news that is wider than the window may be, and so it is wrapped."_s;
    const NewsWindow tall(lines.join(u'\n'), window_.get());
    EXPECT_LT(tall.sizeHint().height(), screen.height());
    EXPECT_LT(tall.sizeHint().width(), screen.width());
    EXPECT_TRUE(tall.findChild<QScrollArea*>());
    const NewsWindow shorter(u"One\ntwo\nthree"_s, window_.get());
    EXPECT_FALSE(shorter.findChild<QScrollArea*>());
    const QLabel* label = shorter.findChild<QLabel*>(u"LblNews"_s);
    EXPECT_GE(label->height(), 3 * label->fontMetrics().height());
    EXPECT_LT(shorter.sizeHint().height(), 200);
}

TEST_F(Updates, ADownloadIsOfferedAfterTheCheckAndEndsTheProgram) {
    run([&](QDialog& dialog) {
        EXPECT_FALSE(child(dialog, "FrameDownload")->isVisible());
        EXPECT_TRUE(child<QLabel>(dialog, "LblWarning")->text().contains(u"not https"_s));
        EXPECT_TRUE(child(dialog, "LblWarning")->isVisible());
        click(dialog, "ButtCheck");
        EXPECT_EQ(child<QLabel>(dialog, "Label1")->text(), u"2.30.004"_s);
        EXPECT_EQ(child<QLabel>(dialog, "Label2")->text(), u"2.31.000"_s);
        EXPECT_EQ(child<QLabel>(dialog, "LblStatusLine")->text(), u"Sucessful response"_s);
        EXPECT_TRUE(child(dialog, "FrameDownload")->isVisible());
        EXPECT_EQ(
            readFile(instructions(), 1000).bytes,
            u"\"Title\",\"Kiv_Skyhold\",%1,%2,\"Kiv_Skyhold.exe\"\r\ninstructions"_s.arg(dialog.x())
                .arg(dialog.y())
                .toLatin1());
        click(dialog, "ButtClose");
    });
    EXPECT_EQ(closed_, 0);
    EXPECT_FALSE(QFile::exists(instructions()));
    EXPECT_EQ(storedNews(), u"ab"_s);

    run([&](QDialog& dialog) {
        click(dialog, "ButtCheck");
        click(dialog, "ButtDownload");
    });
    EXPECT_EQ(closed_, 1);
    EXPECT_TRUE(QFile::exists(instructions()));

    records().window.UpdateBaseAddress = u"https://updates.example.org"_s;
    run([this](QDialog& dialog) {
        EXPECT_FALSE(child(dialog, "LblWarning")->isVisible());
        click(dialog, "ButtClose");
    });
    records().window.UpdateBaseAddress = server_.address();

    serve("Kiv_Skyhold.txt", "2.30.004");
    for (const auto& [button, chosen] :
         QList<std::pair<const char*, bool>>{{"Butt1", false}, {"Butt0", true}}) {
        closed_ = 0;
        run([&](QDialog& dialog) {
            click(dialog, "ButtCheck");
            EXPECT_TRUE(duringDialog([&] { click(dialog, "ButtDownload"); },
                                     [&](QDialog& question) { click(question, button); }));
        });
        EXPECT_EQ(closed_, chosen ? 1 : 0);
        EXPECT_EQ(QFile::exists(instructions()), chosen);
    }
}

TEST_F(Updates, ClosingTheWindowEndsTheTransfer) {
    server_.answers["/kiv/skyhold220/Kiv_Skyhold.txt"] = {.bytes = {}, .close = false};
    run([&](QDialog& dialog) {
        auto* status = child<QLabel>(dialog, "LblStatusLine");
        QTimer watch; // closes the window as soon as the server has been asked for the version
        QObject::connect(&watch, &QTimer::timeout, &dialog, [&] {
            if (server_.asked.size() < 2)
                return;
            EXPECT_FALSE(child(dialog, "ButtCheck")->isEnabled());
            watch.stop();
            dialog.reject();
        });
        watch.start(1);
        click(dialog, "ButtCheck");
        EXPECT_FALSE(watch.isActive());
        EXPECT_EQ(status->text(), u"Communication error"_s);
    });
    EXPECT_EQ(server_.asked.size(), 2);
    EXPECT_EQ(storedNews(), u"none"_s);
    EXPECT_EQ(closed_, 0);
}

TEST_F(Updates, FreshNewsAreShownOverTheUpdateWindow) {
    serve("Kiv_SkyholdNews.txt", "fresh news");
    QString shown;
    run([&](QDialog& dialog) {
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, &dialog, [&] {
            auto* news = qobject_cast<NewsWindow*>(QApplication::activeModalWidget());
            if (!news)
                return;
            watch.stop();
            EXPECT_EQ(news->parentWidget(), &dialog);
            shown = child<QLabel>(*news, "LblNews")->text();
            news->close();
        });
        watch.start(1);
        click(dialog, "ButtCheck");
        dialog.close();
    });
    EXPECT_EQ(shown, u"fresh news"_s);
    EXPECT_EQ(storedNews(), u"fresh news"_s);
}

} // namespace
} // namespace skyhold
