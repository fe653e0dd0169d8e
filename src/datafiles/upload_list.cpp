// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/upload_list.h"

#include "platform/files.h"
#include "platform/text_forms.h"

#include <QDir>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

FileItem* selectedFile(UploadControls& upload) {
    const int index = upload.ListIndex;
    const bool there = index >= 0 && static_cast<std::size_t>(index) < upload.Files.size();
    return there ? &upload.Files[static_cast<std::size_t>(index)] : nullptr;
}

// A file that has never been handed off counts as modified.
bool isModified(const FileItem& item, const QDateTime& modified) {
    return !item.fDateTimeStamp.isValid() || modified > item.fDateTimeStamp;
}

QString displayLine(const FileItem& item, bool fullName) {
    const QString prefix = item.fUploadOnce ? u"*** "_s : u"     "_s;
    return prefix + (fullName ? ItemPathName(item) : item.fName);
}

void endWithSlash(TextBox& box) {
    const QString text = box.Text;
    if (!text.isEmpty() && !text.endsWith(u'/'))
        box.Text = text + u'/';
}

} // namespace

QString ItemPathName(const FileItem& item) {
    return joinPath(item.fPath, item.fName);
}

void Add(UploadControls& upload, const QString& name, const QString& path, bool uploadOnce) {
    upload.Files.push_back({uploadOnce, {}, path, name});
    RefreshFileList(upload);
}

void Remove(UploadControls& upload, int index) {
    if (index < 1 || static_cast<std::size_t>(index) > upload.Files.size())
        return;
    upload.Files.erase(upload.Files.begin() + (index - 1));
    RefreshFileList(upload);
}

void RefreshFileList(UploadControls& upload) {
    const bool fullName = !upload.DispFileNameOnly.checked();
    QStringList lines;
    for (const FileItem& item : upload.Files)
        lines.append(displayLine(item, fullName));
    const int selected = upload.ListIndex;
    upload.FileLines = lines;
    SelectFile(upload, selected);
}

void AddChosenFiles(UploadControls& upload, const QStringList& paths) {
    if (!upload.ButtFileADD.Enabled)
        return;
    for (const QString& chosen : paths) {
        const QString path = nativePath(chosen);
        const qsizetype nameAt = path.lastIndexOf(u'/') + 1;
        if (nameAt == 0 || nameAt == path.size())
            continue; // no folder or no name: not a chosen file
        const QString name = path.sliced(nameAt);
        const QString folder = path.first(nameAt - 1);
        const bool listed = std::ranges::any_of(upload.Files, [&](const FileItem& item) {
            return ItemPathName(item) == joinPath(folder, name);
        });
        if (!listed)
            Add(upload, name, folder, false);
    }
}

void DeleteSelectedFile(UploadControls& upload) {
    if (upload.ButtFileADD.Enabled && selectedFile(upload) != nullptr)
        Remove(upload, upload.ListIndex + 1);
}

void ToggleUploadOnce(UploadControls& upload) {
    const FileItem* item = selectedFile(upload);
    if (item == nullptr || !upload.ButtFileADD.Enabled)
        return;
    upload.UploadOnce.Value = item->fUploadOnce ? 0 : 1;
    UploadOnce_Click(upload);
}

void SelectFile(UploadControls& upload, int listIndex) {
    upload.ListIndex = listIndex;
    const FileItem* item = selectedFile(upload);
    if (item == nullptr)
        upload.ListIndex = -1;
    upload.UploadOnce.Value = item != nullptr && item->fUploadOnce ? 1 : 0;
}

void UploadOnce_Click(UploadControls& upload) {
    FileItem* item = selectedFile(upload);
    if (item == nullptr)
        return;
    item->fUploadOnce = upload.UploadOnce.checked();
    RefreshFileList(upload);
}

void ServerAddress_LostFocus(TextBox& box) {
    endWithSlash(box);
}

void ServerPath_LostFocus(TextBox& box) {
    endWithSlash(box);
    const QString text = box.Text;
    if (text.startsWith(u'/'))
        box.Text = text.sliced(1);
}

bool IsUploadDue(const UploadControls& upload) {
    return std::ranges::all_of(upload.Files, [](const FileItem& item) {
        const QDateTime modified = modificationTime(ItemPathName(item));
        return modified.isValid() && (item.fUploadOnce || isModified(item, modified));
    });
}

bool IsRetryDue(const UploadControls& upload) {
    return std::ranges::any_of(upload.Files, [](const FileItem& item) {
        return item.fNotArrived && modificationTime(ItemPathName(item)).isValid();
    });
}

void WriteUploadList(UploadControls& upload, SettingsStore& area, HandOff wanted) {
    const auto write = [&area](const QString& key, const QString& text) {
        // What stands there already needs no write, so that a hand-off like the last one costs no
        // time of the disk. An absent key differs from any text.
        if (area.GetSetting(u"Setup"_s, key, text + u'-') != text)
            area.SaveSetting(u"Setup"_s, key, text);
    };
    write(u"Server"_s, upload.ServerAddress.Text);
    write(u"ServerPath"_s, upload.ServerPath.Text);
    write(u"Username"_s, upload.UserName.Text);
    write(u"Password"_s, upload.PassWord.Text);
    write(u"TimeoutUPLOAD"_s, QString::number(roundHalfEven(upload.TimeoutUPLOAD.Value), 'f', 0));
    write(u"UploadDir"_s, upload.UploadDir);
    int n = 0;
    for (FileItem& item : upload.Files) {
        const QDateTime modified = modificationTime(ItemPathName(item));
        const bool due =
            wanted == HandOff::Due && (!item.fUploadOnce || isModified(item, modified));
        if (!modified.isValid() || (!due && !item.fNotArrived))
            continue;
        ++n;
        write(u"File"_s + QString::number(n), ItemPathName(item));
        item.fDateTimeStamp = modified;
        item.fNotArrived = false;
    }
    write(u"NoFiles"_s, QString::number(n));
    area.flush();
}

void NoteUploadFaults(UploadControls& upload, const std::vector<UploadFault>& faults) {
    const QDir folder(upload.UploadDir); // of relative paths, as the uploader takes them
    for (FileItem& item : upload.Files) {
        const QString path = folder.filePath(ItemPathName(item));
        item.fNotArrived |= std::ranges::any_of(
            faults, [&path](const UploadFault& fault) { return fault.file == path; });
    }
}

void ShowUploadReport(UploadControls& upload, const UploadReport& report) {
    upload.LastSuccess.Caption = report.lastSuccess.isEmpty() ? u"none yet"_s : report.lastSuccess;
    upload.LastError.Caption = report.lastError.isEmpty() ? u"none"_s : report.lastError;
}

} // namespace skyhold
