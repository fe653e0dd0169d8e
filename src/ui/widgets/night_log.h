// SPDX-License-Identifier: GPL-3.0-or-later
// The log of a night: each change of the verdict with its cause and how long it lasted, newest
// first; filtered by words, copied, or written to a file as CSV.
#pragma once

#include "ui/widgets/timeline_data.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace skyhold {

class NightLog : public QWidget {
    Q_OBJECT

  public:
    explicit NightLog(QWidget* parent);

    // The selection stays where it was.
    void show(std::vector<LogEntry> entries);

    std::function<void(const LogEntry&)> onEntry; // the user went to it
    // Where to write the file to; empty: nowhere. Unless set, the user is asked.
    std::function<QString(const QString& suggested)> chooseFile;
    std::function<void(const QString& fault)> onFault;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fill();
    void copy();
    void save();
    // The selected ones, else all that the filter lets through.
    std::vector<LogEntry> chosen() const;

    std::vector<LogEntry> entries_;
    QLabel* heading_;
    QLineEdit* filter_;
    QListWidget* list_;
    QPushButton* copy_;
    QPushButton* save_;
};

} // namespace skyhold
