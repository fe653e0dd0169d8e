// SPDX-License-Identifier: GPL-3.0-or-later
// The help: the user guide, shown in a window of its own.
#pragma once

#include "core/monitoring_core.h"

#include <QDialog>

class QLabel;
class QTextBrowser;

namespace skyhold {

// The guide's first page; every other one leads there.
inline const QString kGuideStart = QStringLiteral("index.html");

// A page of the user guide, "doc/kiv-skyhold/guide/NAME" in the first of the data folders that
// has it; empty when none has.
QString findGuidePage(const QStringList& dataFolders, const QString& name);
// Where it is looked for: beside the programs' folder, then where the desktop keeps such files.
QStringList helpFolders();

// Opens the help file that stands beside the program with the desktop's own program for it, else
// the page of the guide in a window over `parent`. Where that page or the whole guide is not
// installed the guide's first page or the program's README comes in its place, and says so; without
// those a message says what is missing.
void showHelp(MonitoringCore& core, QWidget* parent, const QStringList& dataFolders,
              const QString& page);

// One for each parent. Pages have the colours of the look in force, not their own.
class HelpWindow : public QDialog {
    Q_OBJECT

  public:
    explicit HelpWindow(QWidget* parent);

    // `note` stands above the page: what it is not; empty for none.
    void open(const QString& page, const QString& note = {});

  private:
    QLabel* note_;
    QTextBrowser* text_;
};

} // namespace skyhold
