// SPDX-License-Identifier: GPL-3.0-or-later
// Sources that are a text: a file that is rewritten, a command that is run.
#pragma once

#include "sensors/settings.h"
#include "sensors/source_readings.h"

#include <QDateTime>
#include <QProcess>
#include <QTimer>

namespace skyhold {

// Reads the file when it has changed. A text that is not JSON must end in a line end, by which one
// that is still being written is known; until then the earlier values go on ageing.
class FileSource : public ValueSource {
  public:
    FileSource(const SourceSettings& settings, SourceReadings& readings);
    void start() override;

  private:
    void look();

    QString path_;
    SourceReadings& readings_;
    QTimer timer_;
    QDateTime seen_; // the time of the file that was read last
    qint64 seenSize_ = -1;
};

// Runs the command, without a shell, again and again; one that fails, says too much or takes too
// long says nothing. A value is as old as the beginning of its run.
class CommandSource : public ValueSource {
  public:
    CommandSource(const SourceSettings& settings, SourceReadings& readings);
    ~CommandSource() override;
    void start() override;

  private:
    void run();
    void finish(const QString& trouble);

    QStringList command_;
    SourceReadings& readings_;
    QTimer timer_, limit_;
    QProcess process_;
    QByteArray output_;
    std::int64_t begunMs_ = 0;
    bool running_ = false;
};

// Puts every value of the text into the readings, and drops those that are wanted and not in it.
// The reason when the text is not understood; nothing has changed then.
QString takePayload(QByteArrayView text, std::int64_t atMs, SourceReadings& readings);

} // namespace skyhold
