// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/help_window.h"
#include "window_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QSet>
#include <QTextEdit>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr Page kAllPages[]{Page::Tonight, Page::Sources,  Page::Limits, Page::Caution,
                           Page::Graphs,  Page::DataFile, Page::Ccdap,  Page::Images,
                           Page::Upload,  Page::Network};

using Help = WindowFixture;

TEST_F(Help, ExplainsTheShownPageAndReportsWhatIsNotInstalled) {
    const auto write = [this](const QString& name, const QByteArray& text) {
        const QString path = folder_->filePath(u"doc/kiv-skyhold/"_s + name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    // What stands in the help window: the note above the page, and the page.
    const auto shownHelp = [this]() -> QString {
        auto* help = window_->findChild<HelpWindow*>();
        return !help ? QString()
                     : child<QLabel>(*help, "LblNote")->text() + u'|' +
                           child<QTextEdit>(*help, "TxtHelp")->toPlainText();
    };
    const auto helpOn = [&](Page page) {
        showHelp(*core_, window_.get(), {u"/nowhere"_s, folder_->path()}, guidePage(page));
        return shownHelp();
    };
    EXPECT_EQ(helpOn(Page::Sources), QString());
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].contains(u"doc/kiv-skyhold/guide/sources.html in /nowhere"_s));

    write(u"README.md"_s, "# Roof watching\n\nSee [more](more.md).\n");
    EXPECT_EQ(helpOn(Page::Sources).section(u'\n', 0, 0),
              u"The user guide is not installed. This is the program's README.|Roof watching"_s);
    write(u"guide/index.html"_s, "<h1>Guide</h1>");
    EXPECT_EQ(helpOn(Page::Sources), u"The guide has no page of its own for this (sources.html is "
                                     u"not installed).|Guide"_s);
    // In the colours of the look in force, whatever its own.
    write(u"guide/sources.html"_s, "<html><head><style>body { background: #123456 }</style>"
                                   "</head><body bgcolor='#123456'><h1>Two</h1></body></html>");
    EXPECT_EQ(helpOn(Page::Sources), u"|Two"_s);
    auto* text = window_->findChild<QTextEdit*>(u"TxtHelp"_s);
    const QImage shot = text->viewport()->grab().toImage();
    EXPECT_EQ(shot.pixelColor(shot.width() - 5, shot.height() - 5),
              text->palette().color(QPalette::Base));
    EXPECT_EQ(messages_.size(), 1);

    QSet<QString> files;
    for (const Page page : kAllPages) {
        EXPECT_NE(guidePage(page), kGuideStart);
        files.insert(guidePage(page));
    }
    EXPECT_EQ(files.size(), std::size(kAllPages));

    // What the build lays beside the programs has each page.
    for (const Page page : kAllPages)
        EXPECT_NE(findGuidePage(helpFolders(), guidePage(page)), QString())
            << qPrintable(guidePage(page));
    for (const auto& ask :
         {std::function<void()>([this] { click(*window_, "ButtHelp"); }),
          std::function<void()>([this] { QTest::keyClick(window_.get(), Qt::Key_F1); })}) {
        delete window_->findChild<HelpWindow*>();
        ask();
        EXPECT_EQ(shownHelp().section(u'\n', 0, 0), u"|Sources"_s);
    }
}

} // namespace

} // namespace skyhold
