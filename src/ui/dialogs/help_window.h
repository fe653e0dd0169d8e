// The help: the program's own pages, shown in a window of its own.
#pragma once

#include "core/monitoring_core.h"

#include <QDialog>

class QTextBrowser;

namespace skyhold {

// The first page of the help: "doc/kiv-skyhold/README.md" in the first of the data folders that has
// it; empty when none has.
QString findHelpPage(const QStringList& dataFolders);
// Where it is looked for: beside the programs' folder, then where the desktop keeps such files.
QStringList helpFolders();

// Opens the help file that stands beside the program with the desktop's own program for it, else
// the help page in a window over `parent`, else says what is missing.
void showHelp(MonitoringCore& core, QWidget* parent, const QStringList& dataFolders);

class HelpWindow : public QDialog {
    Q_OBJECT

  public:
    HelpWindow(const QString& page, QWidget* parent);

  private:
    QTextBrowser* text_;
};

} // namespace skyhold
