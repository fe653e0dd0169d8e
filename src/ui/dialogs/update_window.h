// SPDX-License-Identifier: GPL-3.0-or-later
// The check for a newer version.
#pragma once

#include "platform/remote_file.h"
#include "update/update_check.h"

#include <QDialog>

namespace skyhold {

class KivSHMainform;
struct MonitoringCore;

class UpdateWindow : public QDialog {
    Q_OBJECT

  public:
    // Shows and changes `update`, which outlives the window.
    UpdateWindow(UpdateControls& update, MonitoringCore& core, const QString& instructionFolder,
                 QWidget* parent);

    // Ends a transfer that is under way, too.
    void done(int result) override;

  private:
    void check();
    void download();

    UpdateControls& update_;
    MonitoringCore& core_;
    QString instructionFolder_;
    RemoteFile remoteFile_;
};

// Opens the update window over the main window; once it is closed, starts the updater and closes
// the main window when the user chose to download.
void runUpdateWindow(MonitoringCore& core, KivSHMainform& window);

} // namespace skyhold
