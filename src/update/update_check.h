// SPDX-License-Identifier: GPL-3.0-or-later
// The check for a newer version: news, version and updater instructions from the maker's server,
// and the start of the updater.
#pragma once

#include "platform/settings_store.h"
#include "records/controls.h"
#include "records/messages.h"
#include "records/session_controls.h"

#include <QByteArray>
#include <QUrl>

#include <functional>
#include <optional>

namespace skyhold {

// The update window.
struct UpdateControls {
    Label Label1; // the running version
    Label Label2; // the newest version
    Label StatusLine;
    Label Warning; // of the server's address
    Button CheckButton;
    Frame DownloadFrame{.Visible = QProperty<bool>(false)};
    int Left = 0, Top = 0;     // screen units
    bool DownloadFlag = false; // read after the window has closed
};

// What a check needs from outside.
struct UpdateSource {
    // The file at that address; nothing, with the reason in the status line, when it failed.
    std::function<std::optional<QByteArray>(const QUrl&)> fetch;
    QString runningVersion;
    QString instructionFolder; // of "Kiv_Updater.txt"
};

// Shorter texts are left-overs, not news.
bool isNews(const QString& text);

// The contents of "Kiv_Updater.txt": a line that says what the updater puts where, then the
// downloaded instructions byte for byte.
QByteArray updaterInstructions(int left, int top, const QByteArray& downloaded);

// What is to be said about the address of the update server before anything is fetched from it:
// what comes without encryption may come from anybody on the way. Empty: nothing.
QString updateAddressWarning(const QString& baseAddress);

// Fetches the three files. When all are there, writes the instruction file, keeps the news in
// "Window"/"Kiv_News" and on disk, and offers the download; news are shown last. After any failure
// the status line has the reason, and news, instruction file and offer are as they were.
void CheckForUpdate(UpdateControls& update, WindowControls& window, SettingsStore& settings,
                    const UpdateSource& source,
                    const std::function<void(const QString& news)>& showNews);

// Sets the download flag; asks first when the newest version is the running one.
void ChooseDownload(UpdateControls& update, const ShowMessage& showMessage);

// After the update window: starts "Kiv_Updater.exe" of the program folder and closes the main
// window when the download was chosen, else deletes the instruction file.
void RunUpdaterIfChosen(const UpdateControls& update, const QString& programFolder,
                        const QString& instructionFolder, const std::function<void()>& closeWindow);

// The user has read the news and does not want to see them again.
void DiscardNews(WindowControls& window, SettingsStore& settings);

} // namespace skyhold
