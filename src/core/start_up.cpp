// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/start_up.h"

#include "conditions/rules_of.h"
#include "conditions/threshold_rules.h"
#include "core/roof.h"
#include "core/session.h"
#include "datafiles/upload_list.h"
#include "platform/files.h"
#include "platform/log.h"
#include "records/status_lines.h"
#include "settings/load_save.h"
#include "update/update_check.h"

#include <QFile>

namespace skyhold {

namespace {

// A session start that waits serves events meanwhile: a dialog in its midst would hold it until
// somebody closes it, so the next tick asks again.
void ShowNewsAtStart(MonitoringCore& core) {
    if (core.records.session.State == SessionState::Starting)
        return;
    core.Timer6.disarm();
    WindowControls& window = core.records.window;
    if (isNews(window.Kiv_News))
        core.showNews(window.Kiv_News);
    if (!window.LastUpdateMsg.trimmed().isEmpty()) {
        core.showMessage(
            {window.LastUpdateMsg, MessageStyle::Ok, QStringLiteral("Last Update Status")});
        if (!core.ending) // else the end closed it, and the next start shows it
            window.LastUpdateMsg.clear();
    }
}

} // namespace

bool isFirstStart(const SettingsStore& settings) {
    const QString never = QStringLiteral("9");
    return settings.GetSetting(QStringLiteral("Setup"), QStringLiteral("Emulator"), never) == never;
}

void swapUpdater(const QString& folder) {
    const auto present = [&folder](const char* name) {
        return findFile(joinPath(folder, QString::fromLatin1(name)));
    };
    const std::optional<QString> downloaded = present("Kiv_Updater_net.exe");
    if (!downloaded)
        return;
    if (!isOwnAlone(folder) || !isOwnAlone(*downloaded)) {
        qCWarning(updateLog, "%s is not installed: other users can change it or its folder",
                  qUtf8Printable(*downloaded));
        return;
    }
    if (const std::optional<QString> installed = present("Kiv_Updater.exe")) {
        if (const std::optional<QString> old = present("Kiv_Updater_exe.old"))
            QFile::remove(*old);
        QFile::rename(*installed, joinPath(folder, QStringLiteral("Kiv_Updater_exe.old")));
    }
    QFile::rename(*downloaded, joinPath(folder, QStringLiteral("Kiv_Updater.exe")));
}

void LoadMainWindow(MonitoringCore& core) {
    core.records.window.HelpFile =
        findFile(joinPath(programFolder(), QStringLiteral("Kiv_Skyhold.chm"))).value_or(QString());
    core.records.window.Caption = core.version.title();
    LoadSettings(core.records, core.settings, core.forms);
    if (const QStringList& restored = core.settings.restored(); !restored.isEmpty())
        SetStatusText(core.records.session.Statusbar1,
                      QStringLiteral("Settings cut short - %1 restored: %2")
                          .arg(QString::number(restored.size()), firstNames(restored, 1)),
                      kRed);
    core.result.rules = rulesOf(core.records.conditions);
    RefreshFileList(core.records.upload);
    ShowUploadReport(core.records.upload, readUploadReport(SettingsStore(kUploaderArea)));
    SetIdleControls(core.records, true);
    UpdateMenus(core.records);
    core.Timer6.Tick = [&core] {
        ShowNewsAtStart(core);
    };
    core.Timer6.arm(10);
}

bool RequestClose(MonitoringCore& core) {
    if (core.records.session.ClientCount > 0) {
        core.showMessage({QStringLiteral("There are other users present - cannot UNLOAD"),
                          MessageStyle::Ok, QStringLiteral("Warning")});
        return false;
    }
    if (!acceptLimits(core.records.conditions, core.showMessage) || !askAboutRoof(core))
        return false;
    const bool starting = core.records.session.State == SessionState::Starting;
    core.closeWanted = starting;
    StopSession(core);
    return !starting;
}

void Unload(MonitoringCore& core) {
    dropRefusedLimits(core.records.conditions);
    if (!SaveSettings(core.records, core.settings, core.forms))
        core.showMessage(
            {QStringLiteral("The settings could not be saved to ") + core.settings.filePath(),
             MessageStyle::Ok,
             {}});
    if (core.sensor.connected())
        core.sensor.CloseSensor(core.records.readings);
    core.imageWriter.finish();
    core.images.deInitialise();
    CloseUserDataFile(core.recorder);
    core.history.end();
}

} // namespace skyhold
