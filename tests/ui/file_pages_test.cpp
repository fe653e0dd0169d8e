// SPDX-License-Identifier: GPL-3.0-or-later
#include "window_fixture.h"

#include "core/upload.h"
#include "datafiles/upload_list.h"
#include "ui/dialogs/kiv_file_struct_form.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class FilePages : public WindowFixture {
  protected:
    FilePages() {
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }

    QLineEdit* text(const char* name) { return child<QLineEdit>(*window_, name); }
    void space(const char* name) { QTest::keyClick(child(*window_, name), Qt::Key_Space); }
    // As by a mouse: focus, and what the box does of itself on it.
    void focus(QLineEdit* box) {
        QTest::mouseClick(box, Qt::LeftButton);
        QCoreApplication::processEvents();
    }
};

TEST_F(FilePages, DataFileNameTakesLettersDigitsAndUnderscores) {
    openPage(Page::DataFile);
    QLineEdit* name = text("FileName");
    focus(name);
    EXPECT_EQ(name->selectedText(), u"Skyhold"_s);
    QTest::keyClicks(name, u"N/i.g h-t\\_0"_s);
    QTest::sendKeyEvent(QTest::Click, name, Qt::Key_Eacute, u"é"_s, {});
    QTest::keyClicks(name, u"9*"_s);
    EXPECT_EQ(name->text(), u"Night_09"_s);
    QTest::keyClick(name, Qt::Key_Backspace);
    EXPECT_EQ(records().dataFile.FileName.Text.value(), u"Night_0"_s);

    QApplication::clipboard()->setText(u"../up"_s);
    QTest::keyClick(name, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(name->text(), u"Night_0"_s);
}

TEST_F(FilePages, HistoryIsKeptWithinItsBoundsAndARecordingIsShown) {
    openPage(Page::DataFile);
    struct Case {
        const char *box, *typed, *kept;
    };
    for (const Case& c : {Case{"CycleDays", "90", "90"}, Case{"CycleDays", "9999", "3660"},
                          Case{"EventYears", "0", "1"}, Case{"Megabytes", "5", "16"}}) {
        QLineEdit* box = text(c.box);
        focus(box);
        QTest::keyClicks(box, QString::fromLatin1(c.typed));
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_EQ(box->text(), QString::fromLatin1(c.kept)) << c.box;
    }
    EXPECT_EQ(records().historyKeep.CycleDays.Value, 3660);
    space("RecOption0");
    EXPECT_TRUE(child<QLabel>(*window_, "LblRecorded")->text().startsWith(folder_->path()));
}

// Items as the data file's columns would be written: "+3" is on, "-3" off.
QStringList columnsText(const DataColumns& columns, std::size_t first) {
    QStringList result;
    for (std::size_t i = 0; i < first; ++i)
        result.append((columns[i].Prt ? u"+"_s : u"-"_s) + QString::number(columns[i].Cal));
    return result;
}

TEST_F(FilePages, ColumnsAreMovedAndSwitchedOnOkOnly) {
    openPage(Page::DataFile);
    DataColumns& columns = records().dataFile.Columns;
    columns[1].Hdr = u"Clock"_s;
    const auto edit = [&](const std::function<void(QDialog&, QListWidget&)>& act, const char* end) {
        EXPECT_TRUE(duringDialog([this] { click(*window_, "ButtFileStructure"); },
                                 [&](QDialog& dialog) {
                                     act(dialog, *child<QListWidget>(dialog, "ListCol"));
                                     click(dialog, end);
                                 }));
        return columnsText(columns, 4);
    };
    const auto select = [](QListWidget& list, int row) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                          list.visualItemRect(list.item(row)).center());
    };
    const auto change = [&](QDialog& dialog, QListWidget& list) {
        EXPECT_EQ(list.count(), 25);
        EXPECT_EQ(list.item(1)->text(), u"(02) Clock"_s);
        select(list, 2);
        QTest::keyClick(&list, Qt::Key_Space);
        for (int i = 0; i < 3; ++i) // the third finds the end
            click(dialog, "ButtArrUp");
        EXPECT_EQ(list.item(0)->text(), u"(03) Cloud Condition"_s);
        select(list, 2);
        click(dialog, "ButtHeader");
        auto* header = list.viewport()->findChild<QLineEdit*>();
        ASSERT_NE(header, nullptr);
        EXPECT_EQ(header->text(), u"Clock"_s);
        QTest::keyClicks(header, u"Clock (UT), local mean time"_s);
        QTest::keyClick(header, Qt::Key_Return);
        QCoreApplication::processEvents();
        EXPECT_EQ(list.item(2)->text(), u"(02) Clock (UT), local mean ti"_s);
        click(dialog, "ButtArrDown");
    };
    EXPECT_EQ(edit(change, "ButtCancel"), (QStringList{u"+1"_s, u"+2"_s, u"+3"_s, u"+4"_s}));
    EXPECT_EQ(edit(change, "ButtOK"), (QStringList{u"-3"_s, u"+1"_s, u"+4"_s, u"+2"_s}));
    EXPECT_EQ(columns[3].Hdr, u"Clock (UT), local mean ti"_s);
    const auto restore = [](QDialog& dialog, QListWidget& list) {
        click(dialog, "ButtDefaults");
        EXPECT_EQ(list.item(24)->text(), u"(25) Safe Condtition"_s);
    };
    EXPECT_EQ(edit(restore, "ButtOK"), (QStringList{u"+1"_s, u"+2"_s, u"+3"_s, u"+4"_s}));
    EXPECT_EQ(columns[1].Hdr, u"Time"_s);
}

TEST_F(FilePages, ServerTextsAreCompletedWhenTheirBoxIsLeft) {
    openPage(Page::Upload);
    focus(text("ServerAddress"));
    QTest::keyClicks(text("ServerAddress"), u"ftp.example"_s);
    QTest::keyClicks(text("ServerAddress"), u".org"_s);
    EXPECT_EQ(records().upload.ServerAddress.Text.value(), u"ftp.example.org"_s);
    focus(text("ServerPath"));
    EXPECT_EQ(records().upload.ServerAddress.Text.value(), u"ftp.example.org/"_s);
    QTest::keyClicks(text("ServerPath"), u"/web/data"_s);
    focus(text("PassWord"));
    EXPECT_EQ(text("ServerPath")->text(), u"web/data/"_s);
    QTest::keyClicks(text("PassWord"), u"open sesame"_s);
    EXPECT_EQ(records().upload.PassWord.Text.value(), u"open sesame"_s);
    EXPECT_EQ(text("PassWord")->displayText().count(u's'), 0);
    records().upload.LastError.Caption = u"22:00:05, page.htm"_s;
    EXPECT_EQ(window_->findChild<QLabel*>(u"LblLastError"_s)->text(), u"22:00:05, page.htm"_s);
}

class UploadList : public FilePages {
  protected:
    UploadList() {
        openPage(Page::Upload);
        for (const QString& name : {u"a.png"_s, u"b.png"_s, u"c.htm"_s})
            EXPECT_TRUE(QFile(folder_->filePath(name)).open(QIODevice::WriteOnly));
        list_ = child<QListWidget>("KivFileList");
        menu_ = child<QMenu>("mPopup1");
    }

    void add(const QStringList& names) {
        for (const QString& name : names)
            AddChosenFiles(records().upload, {folder_->filePath(name)});
    }
    QStringList lines() {
        QStringList result;
        for (int i = 0; i < list_->count(); ++i)
            result.append(list_->item(i)->text().remove(folder_->path() + u'/'));
        return result;
    }
    // The menu of a line; of none below the last.
    bool popUp(int row) {
        QTest::mouseClick(list_->viewport(), Qt::RightButton, {},
                          row < list_->count() ? list_->visualItemRect(list_->item(row)).center()
                                               : list_->viewport()->rect().bottomRight());
        return menu_->isVisible();
    }
    void pick(const char* name) {
        QTest::mouseClick(menu_, Qt::LeftButton, {},
                          menu_->actionGeometry(child<QAction>(name)).center());
    }

    QListWidget* list_;
    QMenu* menu_;
};

TEST_F(UploadList, PopupTogglesUploadOnceAndDeletes) {
    ASSERT_TRUE(popUp(0));
    EXPECT_FALSE(child<QAction>("mPopup1Up")->isEnabled());
    EXPECT_FALSE(child<QAction>("mPopup1Del")->isEnabled());
    EXPECT_TRUE(child<QAction>("mPopup1Add")->isEnabled());
    menu_->close();

    add({u"a.png"_s, u"b.png"_s});
    for (const bool once : {true, false}) {
        ASSERT_TRUE(popUp(1));
        EXPECT_EQ(records().upload.ListIndex, 1);
        EXPECT_EQ(child<QAction>("mPopup1Up")->isChecked(), !once);
        pick("mPopup1Up");
        EXPECT_FALSE(menu_->isVisible());
        EXPECT_EQ(records().upload.Files[1].fUploadOnce, once);
        EXPECT_EQ(records().upload.UploadOnce.checked(), once);
        EXPECT_EQ(lines(),
                  (QStringList{u"     a.png"_s, (once ? u"*** "_s : u"     "_s) + u"b.png"_s}));
        EXPECT_EQ(list_->currentRow(), 1); // a rebuilt list keeps its selection
    }
    ASSERT_TRUE(popUp(0));
    pick("mPopup1Del");
    space("UploadOnce");
    space("DispFileNameOnly");
    EXPECT_EQ(list_->item(0)->text(), u"*** b.png"_s);
}

TEST_F(UploadList, FilesAreDroppedAndDeletedUnlessASessionUploads) {
    const auto drop = [this](const QStringList& names) {
        QMimeData dragged;
        QList<QUrl> urls{QUrl(u"http://host/d.png"_s), QUrl::fromLocalFile(folder_->path())};
        for (const QString& name : names)
            urls += QUrl::fromLocalFile(folder_->filePath(name));
        dragged.setUrls(urls);
        QDragEnterEvent enter({9, 9}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QApplication::sendEvent(list_->viewport(), &enter);
        QDropEvent event({9, 9}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QApplication::sendEvent(list_->viewport(), &event);
        return enter.isAccepted();
    };
    EXPECT_FALSE(drop({}));
    EXPECT_TRUE(drop({u"a.png"_s, u"b.png"_s}));
    EXPECT_TRUE(drop({u"b.png"_s, u"gone.png"_s, u"c.htm"_s}));
    EXPECT_EQ(lines(), (QStringList{u"     a.png"_s, u"     b.png"_s, u"     c.htm"_s}));
    SelectFile(records().upload, 1);
    QTest::keyClick(list_, Qt::Key_Delete);
    const QStringList left{u"     a.png"_s, u"     c.htm"_s};
    EXPECT_EQ(lines(), left);
    SetUploadEditable(records().upload, false);
    EXPECT_FALSE(drop({u"b.png"_s}));
    QTest::keyClick(list_, Qt::Key_Delete);
    EXPECT_EQ(lines(), left);
}

TEST_F(UploadList, FilesAreAddedByDialogUnlessASessionUploads) {
    const auto inDialog = [&](const QString& names, bool accept) {
        return duringDialog(
            [this] { click(*window_, "ButtFileADD"); },
            [&](QDialog& dialog) {
                auto& files = dynamic_cast<QFileDialog&>(dialog);
                files.setDirectory(folder_->path());
                child<QLineEdit>(files, "fileNameEdit")->setText(names);
                QPushButton* open =
                    child<QDialogButtonBox>(files, "buttonBox")->button(QDialogButtonBox::Open);
                if (accept)
                    QTest::mouseClick(open, Qt::LeftButton);
                EXPECT_NE(files.isVisible(), accept);
                if (files.isVisible())
                    files.reject();
            });
    };
    EXPECT_TRUE(inDialog(u"\"a.png\" \"b.png\""_s, true));
    EXPECT_EQ(lines(), (QStringList{u"     a.png"_s, u"     b.png"_s}));

    records().session.flgUpload.Value = 1;
    click(*window_, "ButtStart");
    EXPECT_FALSE(inDialog(u"c.htm"_s, true));
    EXPECT_FALSE(popUp(0));
    click(*window_, "ButtStop");
    EXPECT_TRUE(popUp(0));
    menu_->close();
}

} // namespace

} // namespace skyhold
