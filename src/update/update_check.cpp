// SPDX-License-Identifier: GPL-3.0-or-later
#include "update/update_check.h"

#include "platform/files.h"
#include "platform/remote_file.h"
#include "platform/replacement_file.h"
#include "platform/tasks.h"
#include "platform/text_encoding.h"

#include <QFile>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr qsizetype kShortestNews = 3;
// A server that answers every address with a page of its own has no version.
constexpr qsizetype kLongestVersion = 32;

QString instructionFile(const QString& folder) {
    return joinPath(folder, u"Kiv_Updater.txt"_s);
}

// A file of the server; `base` may have a path of its own.
QUrl remoteFile(const QUrl& base, const char* name) {
    QUrl url = base;
    url.setPath(joinPath(base.path(), u"kiv/skyhold220/"_s + QString::fromLatin1(name)));
    return url;
}

bool isVersion(const QString& text) {
    return !text.isEmpty() && text.size() <= kLongestVersion &&
           std::ranges::all_of(text, [](QChar c) { return c >= u' ' && c <= u'~'; });
}

struct Downloads {
    QString news;
    QString version;
    QByteArray instructions;
};

std::optional<Downloads> fetchAll(UpdateControls& update, const QString& baseAddress,
                                  const UpdateSource& source) {
    if (baseAddress.isEmpty()) {
        update.StatusLine.Caption =
            u"No update server is set (BaseAddress in section Update of the settings)"_s;
        return std::nullopt;
    }
    const QUrl base(baseAddress);
    if (!isRemoteAddress(base)) {
        update.StatusLine.Caption = u"The address of the update server is not valid"_s;
        return std::nullopt;
    }
    const auto fetch = [&](const char* name) {
        return source.fetch(remoteFile(base, name));
    };
    const std::optional<QByteArray> news = fetch("Kiv_SkyholdNews.txt");
    if (!news)
        return std::nullopt;
    const std::optional<QByteArray> version = fetch("Kiv_Skyhold.txt");
    if (!version)
        return std::nullopt;
    // A line end after the number is none of it.
    const QString newest = decodeText(*version).trimmed();
    if (!isVersion(newest)) {
        update.StatusLine.Caption = u"The update server gave no version number"_s;
        return std::nullopt;
    }
    const std::optional<QByteArray> instructions = fetch("Kiv_SkyholdUpdater.txt");
    if (!instructions)
        return std::nullopt;
    return Downloads{decodeText(*news), newest, *instructions};
}

bool writeInstructions(const UpdateControls& update, const QString& folder,
                       const QByteArray& downloaded) {
    ReplacementFile file(instructionFile(folder));
    return file.isOpen() && file.write(updaterInstructions(update.Left, update.Top, downloaded)) &&
           file.commit();
}

void saveNews(const QString& news, WindowControls& window, SettingsStore& settings) {
    window.Kiv_News = news;
    settings.saveNow(u"Window"_s, u"Kiv_News"_s, news);
}

} // namespace

bool isNews(const QString& text) {
    return text.size() >= kShortestNews;
}

QByteArray updaterInstructions(int left, int top, const QByteArray& downloaded) {
    return "\"Title\",\"Kiv_Skyhold\"," + QByteArray::number(left) + ',' + QByteArray::number(top) +
           ",\"Kiv_Skyhold.exe\"\r\n" + downloaded;
}

QString updateAddressWarning(const QString& baseAddress) {
    const QUrl base(baseAddress.trimmed());
    if (!isRemoteAddress(base) || base.scheme() == u"https"_s)
        return {};
    return u"The address of the update server begins with http, not https: what comes from it is "
           "neither encrypted nor verified, and anyone in between can replace it with "
           "a program of their own."_s;
}

void CheckForUpdate(UpdateControls& update, WindowControls& window, SettingsStore& settings,
                    const UpdateSource& source,
                    const std::function<void(const QString& news)>& showNews) {
    update.CheckButton.Enabled = false;
    update.StatusLine.Caption = u"Contacting Update Center"_s;
    update.Label1.Caption = source.runningVersion;
    const std::optional<Downloads> found =
        fetchAll(update, window.UpdateBaseAddress.trimmed(), source);
    update.CheckButton.Enabled = true;
    if (!found)
        return;
    if (!writeInstructions(update, source.instructionFolder, found->instructions)) {
        update.StatusLine.Caption = u"Cannot write "_s + instructionFile(source.instructionFolder);
        return;
    }
    saveNews(found->news, window, settings);
    update.Label2.Caption = found->version;
    update.DownloadFrame.Visible = true;
    if (isNews(found->news))
        showNews(found->news);
}

void ChooseDownload(UpdateControls& update, const ShowMessage& showMessage) {
    const bool same = update.Label1.Caption.value() == update.Label2.Caption.value();
    if (!same || showMessage({u"The lattest version already installed.\r\n"
                              " Do you wish to download?"_s,
                              MessageStyle::YesNo,
                              {}}) == MessageAnswer::Yes)
        update.DownloadFlag = true;
    update.DownloadFrame.Visible = false;
}

void RunUpdaterIfChosen(const UpdateControls& update, const QString& programFolder,
                        const QString& instructionFolder,
                        const std::function<void()>& closeWindow) {
    if (!update.DownloadFlag) {
        QFile::remove(instructionFile(instructionFolder));
        return;
    }
    const QString updater = joinPath(programFolder, u"Kiv_Updater.exe"_s);
    startTask(findFile(updater).value_or(updater));
    closeWindow();
}

void DiscardNews(WindowControls& window, SettingsStore& settings) {
    saveNews({}, window, settings);
}

} // namespace skyhold
