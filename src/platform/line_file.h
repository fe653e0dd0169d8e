// SPDX-License-Identifier: GPL-3.0-or-later
// A file that whole lines are added to for as long as it is open.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>

namespace skyhold {

// A line is with the operating system when addLine returns, so that it outlives a killed program.
// One that could not be written whole leaves nothing behind.
class LineFile {
  public:
    LineFile() = default;
    ~LineFile() { close(); }
    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    // Makes a missing file; `append` keeps what an existing one holds. False when it cannot be
    // opened or is not an ordinary file: a link in its place is not followed,
    // and no pipe is waited for.
    bool open(const QString& path, bool append);
    void close();

    // False when no file is open, or when the open one has been deleted.
    bool isThere() const;

    // Adds the line and CR LF. False when the line is lost (a full disk, no open file).
    bool addLine(const QByteArray& line);

  private:
    bool cutTornLine();

    int fd_ = -1;
    bool midLine_ = false;               // the file found does not end in a line end
    std::optional<std::int64_t> tornAt_; // where a line begins that could not be written whole
};

} // namespace skyhold
