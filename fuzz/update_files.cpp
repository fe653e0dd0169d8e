// SPDX-License-Identifier: GPL-3.0-or-later
// The three files of the update server: whatever it sends.
#include "target.h"

#include "platform/files.h"
#include "platform/text_encoding.h"
#include "update/update_check.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold::fuzz {

namespace {

void updateFiles(QByteArrayView bytes) {
    static const QTemporaryDir folder;
    static int last = 0;
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    // A name of its own for each: Qt keeps the contents of files that it has read.
    SettingsStore settings(u"fuzz"_s + QString::number(++last));

    Input input(bytes);
    const std::uint8_t missing = input.byte(); // a bit a file
    const QByteArray version = input.upToZero().toByteArray();
    const QByteArray news = input.upToZero().toByteArray();
    const QByteArray instructions = input.rest().toByteArray();

    UpdateControls update;
    update.Left = -7;
    update.Top = 30000;
    WindowControls window;
    window.UpdateBaseAddress = u"https://update.example/x"_s;
    window.Kiv_News = u"old"_s;
    const QString instructionPath = folder.filePath(u"Kiv_Updater.txt"_s);
    QFile::remove(instructionPath);
    std::optional<QString> shown;
    UpdateSource source;
    source.runningVersion = u"2.30.004"_s;
    source.instructionFolder = folder.path();
    source.fetch = [&](const QUrl& url) -> std::optional<QByteArray> {
        const QString name = url.fileName();
        const int which = name == u"Kiv_Skyhold.txt"_s       ? 0
                          : name == u"Kiv_SkyholdNews.txt"_s ? 1
                                                             : 2;
        if (missing >> which & 1)
            return std::nullopt;
        return std::array{version, news, instructions}[static_cast<std::size_t>(which)];
    };
    CheckForUpdate(update, window, settings, source, [&](const QString& text) { shown = text; });

    require(update.CheckButton.Enabled, "the next check can be made");
    const QString newest = update.Label2.Caption;
    if (!update.DownloadFrame.Visible) {
        require(window.Kiv_News == u"old"_s && newest.isEmpty() && !shown &&
                    !QFile::exists(instructionPath),
                "after a failure all is as it was");
    } else {
        require((missing & 7) == 0, "an offer needs all three files");
        const bool printable =
            std::ranges::all_of(newest, [](QChar c) { return c >= u' ' && c <= u'~'; });
        require(!newest.isEmpty() && newest.size() <= 32 && printable,
                "a version is a short line of text");
        require(window.Kiv_News == decodeText(news), "the news are those of the server");
        require(window.Kiv_News.size() <= news.size(), "the news are no longer than their file");
        require(shown.has_value() == isNews(window.Kiv_News), "news are shown, left-overs not");
        QFile written(instructionPath);
        require(written.open(QIODevice::ReadOnly) &&
                    written.readAll() ==
                        "\"Title\",\"Kiv_Skyhold\",-7,30000,\"Kiv_Skyhold.exe\"\r\n" + instructions,
                "the instructions are those of the server");
        // As a later start finds them.
        const QString path = settings.filePath();
        const QString copy = folder.filePath(u"Kiv/copy%1.ini"_s.arg(last));
        require(QFile::copy(path, copy), "the news are on disk");
        const SettingsStore later(u"copy"_s + QString::number(last));
        // Qt drops byte order marks, which nobody sees, from what it reads.
        QString kept = later.GetSetting(u"Window"_s, u"Kiv_News"_s, u"none"_s);
        QString fetched = window.Kiv_News;
        require(kept.remove(QChar::ByteOrderMark) == fetched.remove(QChar::ByteOrderMark),
                "the news are kept as they are");
        QFile::remove(copy);
    }
    QFile::remove(settings.filePath());
}

} // namespace

const Target kUpdateFiles{"update_files", updateFiles};

} // namespace skyhold::fuzz
