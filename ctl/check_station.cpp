// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/check_station.h"

#include "ctl/output.h"
#include "ctl/values.h"
#include "datafiles/station_check.h"
#include "platform/settings_store.h"
#include "records/records.h"
#include "settings/load_save.h"

#include <QFileInfo>

namespace skyhold {

int runCheckStation(const Command& command) {
    Records records;
    LoadSettings(records, SettingsStore(QStringLiteral("Kiv_Skyhold")));
    const QString path = QFileInfo(command.arguments[0]).absoluteFilePath();
    const StationCheck check =
        checkStationFile(path, records.units, records.stationFile.TimeoutREAD.Value,
                         localeNumberForms(), QDateTime::currentDateTime());
    for (const QString& line : check.lines)
        writeLine(plainLine(line));
    return check.status;
}

} // namespace skyhold
