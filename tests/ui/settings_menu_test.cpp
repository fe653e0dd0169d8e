// SPDX-License-Identifier: GPL-3.0-or-later
#include "window_fixture.h"

#include "ui/pages/setting_places.h"
#include "ui/pages/settings_menu.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class SettingsMenu : public WindowFixture {
  protected:
    SettingsMenu() {
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        openPage(Page::Limits);
    }
    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
        QTest::keyClick(QApplication::focusWidget(), pressed, modifiers);
        QCoreApplication::processEvents();
    }
    double limit() { return records().conditions.Limit[Quantity::Gust][1].Value; }
};

TEST_F(SettingsMenu, CtrlZTakesBackWhatTheUserChangedAndTheListSaysWhat) {
    auto* box = child<QLineEdit>(*window_, "LimitGust1");
    box->setFocus();
    key(Qt::Key_A);
    for (const QChar digit : u"28"_s)
        key(static_cast<Qt::Key>(digit.unicode()), {});
    key(Qt::Key_Tab, {});
    clock_.advanceSeconds(60);
    auto* unsafe = child<QWidget>(*window_, "CondGust0");
    QTest::keyPress(unsafe, Qt::Key_Space);
    QCoreApplication::processEvents();
    QTest::keyRelease(unsafe, Qt::Key_Space);
    QCoreApplication::processEvents();
    clock_.advanceSeconds(1);
    records().conditions.SafeDelayVal.set(77); // a client
    const auto line = [this](const char* name) {
        return shown(name).section(u' ', 1).toStdString();
    };
    EXPECT_EQ(line("Change0"), "Gust, Calm: unsafe off → on");
    EXPECT_EQ(line("Change1"), "Gust, Gusty: upper limit 20 → 28");
    key(Qt::Key_Z);
    EXPECT_FALSE(records().conditions.Cond[Quantity::Gust][0].checked());
    EXPECT_EQ(records().conditions.SafeDelayVal.Value.value(), 77);
    EXPECT_EQ(line("Change1"), "Gust, Gusty: upper limit 20 → 28");
    box->setFocus(); // a number box keeps the key while it has something to undo itself
    box->setText(box->text());
    key(Qt::Key_Z);
    EXPECT_EQ(limit(), 20);
    EXPECT_EQ(box->text(), u"20"_s);
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(limit(), 28);
    StartSession(*core_); // locks what was changed before
    key(Qt::Key_Z);
    EXPECT_EQ(limit(), 28);
}

TEST_F(SettingsMenu, EverySettingOfAPageIsFoundAndGoneTo) {
    for (const Page page : {Page::Sources, Page::Limits, Page::Caution, Page::Graphs,
                            Page::DataFile, Page::Ccdap, Page::Images, Page::Upload, Page::Network})
        openPage(page);
    const auto places = settingPlaces(records());
    for (const KeyRow& row : keyTable(records())) {
        const QString key = row.section + u'/' + row.key;
        const auto place = std::ranges::find(places, key, &SettingPlace::key);
        const QStringList elsewhere{u"Setup/UploadDir"_s, u"Update/BaseAddress"_s, u"View/Look"_s};
        if (row.role == KeyRole::State || row.role == KeyRole::List || elsewhere.contains(key))
            continue;
        ASSERT_NE(place, places.end()) << qPrintable(key);
        const auto* control = window_->findChild<QWidget*>(place->control);
        ASSERT_NE(control, nullptr) << qPrintable(key + u' ' + place->control);
        EXPECT_NE(control->focusPolicy(), Qt::NoFocus) << qPrintable(place->control);
    }
    const std::tuple<QString, int, const char*> searches[]{
        {u"very gusty SECTOR"_s, 0, "DirectionGust2"},
        {u"humidity limit"_s, 2, "LimitHum2"},
        {u"upload pass"_s, 0, "PassWord"},
    };
    for (const auto& [words, down, control] : searches) {
        EXPECT_TRUE(duringDialog([this] { key(Qt::Key_F); },
                                 [&](QDialog& dialog) {
                                     auto* text = child<QLineEdit>(dialog, "FindText");
                                     QTest::keyClicks(text, u"no such setting"_s);
                                     QTest::keyClick(text, Qt::Key_Return);
                                     EXPECT_TRUE(dialog.isVisible());
                                     text->clear();
                                     QTest::keyClicks(text, words);
                                     for (int i = 0; i < down; ++i)
                                         QTest::keyClick(text, Qt::Key_Down);
                                     QTest::keyClick(text, Qt::Key_Return);
                                     EXPECT_FALSE(dialog.isVisible());
                                     if (dialog.isVisible())
                                         dialog.reject();
                                 }));
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        QCoreApplication::processEvents();
        EXPECT_EQ(QApplication::focusWidget(), child<QWidget>(*window_, control));
    }
}

TEST_F(SettingsMenu, AnImportAsksNamesWhatItRefusesAndCanBeUndone) {
    const QString path = folder_->filePath(u"in.ini"_s);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Limit]\nGustGusty=33\nWindCalm=fast\n[End]\nWhole=1\n");
    file.close();
    SettingsPages& pages = *window_->findChild<SettingsPages*>();
    const QString refused = u"Limit/WindCalm: \"fast\" is no value of it"_s;
    answer_ = MessageAnswer::No;
    importSettings(path, pages, *core_);
    EXPECT_EQ(limit(), 20);
    answer_ = MessageAnswer::Yes;
    importSettings(path, pages, *core_);
    EXPECT_EQ(limit(), 33);
    ASSERT_EQ(messages_.size(), 2);
    EXPECT_TRUE(messages_[1].contains(refused)) << qPrintable(messages_[1]);
    key(Qt::Key_Z);
    EXPECT_EQ(limit(), 20);
    StartSession(*core_);
    importSettings(path, pages, *core_);
    EXPECT_EQ(limit(), 20);
    EXPECT_TRUE(messages_.last().contains(u"locked"_s));
}

} // namespace

} // namespace skyhold
