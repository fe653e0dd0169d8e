// SPDX-License-Identifier: GPL-3.0-or-later
// The transfer of files to one server, over one connection as long as it holds.
#pragma once

#include "uploader/upload_job.h"

#include <curl/curl.h>

#include <memory>

namespace skyhold {

struct TransferResult {
    QString fault;           // empty: the file has arrived
    bool serverLost = false; // no other file would fare better
};

class Transfer {
  public:
    // `cancelled` is asked all the time; once it says true the current file breaks off within about
    // a second. `job` outlives this object.
    Transfer(const UploadJob& job, bool (*cancelled)());
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    // Sends a file of at most 256 MiB into the server's folder, which is made when it is missing.
    // It is sent under a name of its own (NAME.part) and takes its name when it has arrived whole,
    // so that no reader ever finds a part of it under its name. Takes at most the job's time-out,
    // whatever the server does or fails to do, and two seconds more to remove what has arrived of
    // a file that failed.
    TransferResult send(const QString& path);

  private:
    CURLcode store(const QString& name, const QByteArray& bytes);
    CURLcode replaceAndRename(const QString& name);
    void removePart(const QString& name);
    CURLcode command(const QList<QByteArray>& commands);
    CURLcode perform(const QByteArray& url, const QList<QByteArray>& commandsAfterwards);
    QList<QByteArray> renameCommands(const QString& name) const;
    QByteArray deleteCommand(const QString& name) const;
    bool renameWasRefused() const;
    // After a fault the server may never answer again: its farewell is not waited for, and the next
    // file gets a connection of its own.
    void hangUp();
    TransferResult result(CURLcode code, bool tookNothing) const;

    const UploadJob& job_;
    bool (*cancelled_)();
    std::unique_ptr<CURL, void (*)(CURL*)> curl_;
    bool partMade_ = false;     // of the current file
    std::int64_t deadline_ = 0; // of the current file, ms of the steady clock
};

} // namespace skyhold
