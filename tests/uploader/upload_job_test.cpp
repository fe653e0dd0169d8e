// SPDX-License-Identifier: GPL-3.0-or-later
#include "uploader/upload_job.h"

#include "support/test_folder.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

class UploadJobTest : public testing::Test {
  protected:
    std::optional<UploadJob> job(const std::vector<std::pair<const char*, QString>>& settings) {
        SettingsStore area(kUploaderArea);
        for (const auto& [key, text] : settings)
            area.SaveSetting(u"Setup"_s, QLatin1String(key), text);
        fault_.clear();
        return readUploadJob(area, fault_);
    }

    const SettingsFolder folder_;
    QString fault_;
};

TEST_F(UploadJobTest, addressAndFolderMakeTheUrl) {
    const struct {
        QString address, folder;
        const char* url; // nullptr: no address
    } cases[] = {
        {u"ftp.example.org/"_s, u"web/data/"_s, "ftp://ftp.example.org/web/data/"},
        {u" ftp.example.org"_s, u""_s, "ftp://ftp.example.org/"},
        {u"ftp.example.org:2121/"_s, u"w w"_s, "ftp://ftp.example.org:2121/w%20w/"},
        {u"FTP://[::1]:21/base"_s, u"x/"_s, "ftp://[::1]:21/base/x/"},
        {u"ftpes://host/"_s, u"/abs/"_s, "ftp://host//abs/"},
        {u"ftps://host/"_s, u"x/"_s, "ftps://host/x/"},
        {u"sftp://host/"_s, u"x/"_s, "sftp://host/~/x/"},
        {u"sftp://host:22/"_s, u"/x/"_s, "sftp://host:22/x/"},
        {u""_s, u"x/"_s, nullptr},
        {u"/"_s, u"x/"_s, nullptr},
        {u"http://host/"_s, u"x/"_s, nullptr},
        {u"file:///etc/"_s, u"x/"_s, nullptr},
        {u"host:0/"_s, u"x/"_s, nullptr},
        {u"host:99999/"_s, u"x/"_s, nullptr},
        {u"observer:secret@host/"_s, u"x/"_s, nullptr},
        {u"host/"_s, u"x\r\nDELE y/"_s, nullptr},
    };
    for (const auto& [address, folder, url] : cases) {
        const auto read = job({{"Server", address}, {"ServerPath", folder}});
        EXPECT_EQ(read.has_value(), url != nullptr) << qPrintable(address);
        EXPECT_EQ(fault_.isEmpty(), url != nullptr);
        EXPECT_FALSE(fault_.contains(u"secret"_s));
        if (read) {
            EXPECT_EQ(remoteUrl(read->server, u"a b;#.png"_s), url + "a%20b%3B%23.png"_ba);
        }
    }
    EXPECT_FALSE(job({{"Server", u"host"_s}, {"ServerPath", {}}, {"Password", u"a\nb"_s}}));
}

TEST_F(UploadJobTest, filesAreBoundedByTheirNumberAndTheTimeIsAlwaysBounded) {
    const auto read = job({{"Server", u"host/"_s},
                           {"UploadDir", u"/work folder"_s},
                           {"File1", u"/a"_s},
                           {"File2", u"b"_s},
                           {"File3", u"/old"_s},
                           {"NoFiles", u"2"_s}});
    ASSERT_TRUE(read);
    EXPECT_EQ(read->files, (QStringList{u"/a"_s, u"/work folder/b"_s}));
    for (const auto& [text, seconds] : {std::pair{u"5"_s, 5},
                                        {u"999"_s, 999},
                                        {u"0"_s, 60},
                                        {u"-1"_s, 60},
                                        {u"1e3"_s, 60},
                                        {u""_s, 60}})
        EXPECT_EQ(job({{"TimeoutUPLOAD", text}})->timeoutSeconds, seconds) << qPrintable(text);
    EXPECT_TRUE(job({{"NoFiles", u"-3"_s}})->files.isEmpty());
}

} // namespace
} // namespace skyhold
