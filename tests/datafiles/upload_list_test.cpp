#include "datafiles/upload_list.h"

#include "support/test_folder.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

const QDateTime kEarlier(QDate(2026, 11, 16), QTime(22, 0));

class UploadList : public testing::Test {
  protected:
    // A file that was modified that long after kEarlier.
    void touch(const QString& name, int milliseconds = 0) {
        QFile file(folder_.write(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(
            file.setFileTime(kEarlier.addMSecs(milliseconds), QFileDevice::FileModificationTime));
    }
    void list(const QString& name, bool once = false) { Add(upload_, name, folder_.path(), once); }
    QString stored(const QString& key) {
        return SettingsStore(kUploaderArea).GetSetting(u"Setup"_s, key, u"absent"_s);
    }
    int handOff(HandOff wanted = HandOff::Due) {
        SettingsStore area(kUploaderArea);
        WriteUploadList(upload_, area, wanted);
        return stored(u"NoFiles"_s).toInt();
    }

    SettingsFolder folder_;
    UploadControls upload_;
};

TEST_F(UploadList, isDueWhenEveryFileIsThereAndModifiedOrUploadedOnce) {
    constexpr int kNever = -1;
    struct Item {
        bool once;
        int stampedAt;  // milliseconds after kEarlier; kNever: not handed off yet
        int modifiedAt; // the same; kNever: no such file
    };
    const Item modified{false, 0, 1}, unmodified{false, 0, 0}, missing{false, kNever, kNever};
    const struct {
        const char* what;
        std::vector<Item> items;
        bool due;
    } cases[] = {
        {"empty list", {}, true},
        {"never handed off", {{false, kNever, 0}}, true},
        {"modified since", {modified}, true},
        {"not modified", {unmodified}, false},
        {"set back", {{false, 1000, 0}}, false},
        {"once, not modified", {{true, 1000, 1000}}, true},
        {"once, missing", {{true, kNever, kNever}}, false},
        {"missing", {missing}, false},
        {"one of two modified", {modified, unmodified}, false},
        {"one missing holds all back", {modified, missing}, false},
        {"once never holds others back", {modified, {true, 0, 0}}, true},
        {"nor lets others through", {unmodified, {true, 0, 1}}, false},
    };
    for (const auto& [what, items, due] : cases) {
        upload_.Files.clear();
        for (const Item& item : items) {
            const QString name = u"file"_s + QString::number(upload_.Files.size());
            QFile::remove(folder_.filePath(name));
            if (item.modifiedAt != kNever)
                touch(name, item.modifiedAt);
            list(name, item.once);
            if (item.stampedAt != kNever)
                upload_.Files.back().fDateTimeStamp = kEarlier.addMSecs(item.stampedAt);
        }
        EXPECT_EQ(IsUploadDue(upload_), due) << what;
    }
}

TEST_F(UploadList, handOffListsWhatIsDueAndStampsIt) {
    upload_.ServerAddress.Text = u"ftp.example.org:2121/"_s;
    upload_.ServerPath.Text = u"web/data/"_s;
    upload_.UserName.Text = u"observer"_s;
    upload_.PassWord.Text = u"@ \"a;b\", %41=\\ä"_s;
    upload_.TimeoutUPLOAD.Value = 45;
    upload_.UploadDir = u"/somewhere"_s;
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        touch(QLatin1String(name));
        list(QLatin1String(name), *name == 'b');
    }
    EXPECT_EQ(handOff(), 5);
    const std::pair<const char*, QString> expected[] = {
        {"Server", u"ftp.example.org:2121/"_s},
        {"ServerPath", u"web/data/"_s},
        {"Username", u"observer"_s},
        {"Password", upload_.PassWord.Text},
        {"TimeoutUPLOAD", u"45"_s},
        {"UploadDir", u"/somewhere"_s},
        {"File1", folder_.filePath(u"a"_s)},
        {"File5", folder_.filePath(u"e"_s)},
    };
    for (const auto& [key, text] : expected)
        EXPECT_EQ(stored(QLatin1String(key)), text) << key;
    EXPECT_EQ(upload_.Files[1].fDateTimeStamp, kEarlier);
    EXPECT_FALSE(IsUploadDue(upload_));

    // Regular files are listed whenever there is a hand-off, the others when they have changed.
    // What an earlier hand-off has left beyond their number stays.
    Remove(upload_, 5);
    Remove(upload_, 4);
    touch(u"a"_s, 5);
    QFile::remove(folder_.filePath(u"c"_s));
    touch(u"late"_s, 5);
    list(u"late"_s, true);
    EXPECT_EQ(handOff(), 2);
    EXPECT_EQ(stored(u"File1"_s), folder_.filePath(u"a"_s));
    EXPECT_EQ(stored(u"File2"_s), folder_.filePath(u"late"_s));
    EXPECT_EQ(stored(u"File4"_s), folder_.filePath(u"d"_s));
    EXPECT_EQ(upload_.Files[0].fDateTimeStamp, kEarlier.addMSecs(5));
    EXPECT_EQ(upload_.Files[1].fDateTimeStamp, kEarlier);
    EXPECT_EQ(upload_.Files[2].fDateTimeStamp, kEarlier); // missing: as it was
}

TEST_F(UploadList, whatDidNotArriveIsDueAgain) {
    for (const char* name : {"a", "b", "c"}) {
        touch(QLatin1String(name));
        list(QLatin1String(name), *name == 'b');
    }
    EXPECT_EQ(handOff(), 3);
    EXPECT_FALSE(IsRetryDue(upload_));
    const auto missed = [this](const char* name) {
        NoteUploadFaults(upload_, {{folder_.filePath(QLatin1String(name)), {}, {}}});
    };
    missed("none of these");
    EXPECT_FALSE(IsRetryDue(upload_));
    missed("b");
    EXPECT_TRUE(IsRetryDue(upload_));
    EXPECT_FALSE(IsUploadDue(upload_)); // nothing has been modified
    EXPECT_EQ(handOff(HandOff::Retry), 1);
    EXPECT_EQ(stored(u"File1"_s), folder_.filePath(u"b"_s));
    EXPECT_FALSE(IsRetryDue(upload_));

    // It goes along when the others are due.
    missed("b");
    touch(u"a"_s, 5);
    touch(u"c"_s, 5);
    EXPECT_EQ(handOff(), 3);
    missed("c");
    QFile::remove(folder_.filePath(u"c"_s));
    EXPECT_FALSE(IsRetryDue(upload_)); // there is nothing to send
}

TEST_F(UploadList, editingWhileAllowed) {
    AddChosenFiles(upload_, {u"/web/a.htm"_s, u"/web/b.png"_s, u"/web/a.htm"_s, u"/Web/a.htm"_s,
                             u"\\web\\b.png"_s, u"/root.txt"_s, u"/web/"_s, u"bare"_s});
    EXPECT_EQ(upload_.FileLines.value(), (QStringList{u"     /web/a.htm"_s, u"     /web/b.png"_s,
                                                      u"     /Web/a.htm"_s, u"     /root.txt"_s}));
    EXPECT_EQ(upload_.Files[0].fPath, u"/web"_s);
    EXPECT_EQ(upload_.Files[0].fName, u"a.htm"_s);

    DeleteSelectedFile(upload_); // nothing is selected
    ToggleUploadOnce(upload_);
    EXPECT_EQ(upload_.Files.size(), 4U);

    SelectFile(upload_, 1);
    ToggleUploadOnce(upload_);
    EXPECT_TRUE(upload_.Files[1].fUploadOnce);
    EXPECT_EQ(upload_.UploadOnce.Value, 1);
    upload_.DispFileNameOnly.Value = 1;
    RefreshFileList(upload_);
    EXPECT_EQ(upload_.FileLines.value().mid(1, 2), (QStringList{u"*** b.png"_s, u"     a.htm"_s}));
    EXPECT_EQ(upload_.ListIndex, 1);

    SelectFile(upload_, 0);
    EXPECT_EQ(upload_.UploadOnce.Value, 0);
    DeleteSelectedFile(upload_); // the next one moves to the selected position
    EXPECT_EQ(upload_.ListIndex, 0);
    EXPECT_EQ(upload_.UploadOnce.Value, 1);
    upload_.UploadOnce.Value = 0;
    UploadOnce_Click(upload_);
    EXPECT_FALSE(upload_.Files[0].fUploadOnce);
    SelectFile(upload_, 2);
    DeleteSelectedFile(upload_); // the last one
    EXPECT_EQ(upload_.ListIndex, -1);

    SelectFile(upload_, 0);
    upload_.ButtFileADD.Enabled = false;
    AddChosenFiles(upload_, {u"/web/new"_s});
    DeleteSelectedFile(upload_);
    ToggleUploadOnce(upload_);
    EXPECT_EQ(upload_.FileLines.value(), (QStringList{u"     b.png"_s, u"     a.htm"_s}));
}

TEST_F(UploadList, addressAndFolderWhenTheirBoxIsLeft) {
    const QString host = u"ftp.example.org"_s;
    const struct {
        QString entered, address, folder;
    } cases[] = {
        {{}, {}, {}},
        {host, host + u'/', host + u'/'},
        {u"/web/data"_s, u"/web/data/"_s, u"web/data/"_s},
        {u"//abs/"_s, u"//abs/"_s, u"/abs/"_s},
        {u"/"_s, u"/"_s, {}},
    };
    for (const auto& [entered, address, folder] : cases) {
        TextBox box;
        box.Text = entered;
        ServerAddress_LostFocus(box);
        EXPECT_EQ(box.Text.value(), address);
        box.Text = entered;
        ServerPath_LostFocus(box);
        EXPECT_EQ(box.Text.value(), folder);
    }
}

} // namespace
} // namespace skyhold
