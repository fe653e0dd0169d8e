// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/records.h"

namespace skyhold {

namespace {

void setDigits(NumberBox& box, int mostSignificant) {
    box.DigitsMostSignificant = mostSignificant;
    box.DigitsDecimal = 0;
}

} // namespace

Records::Records() {
    setDigits(graphs.GraphNoPoints, 4);
    setDigits(graphs.GraphFreq, 2);
    setDigits(upload.UploadOnSec, 2);
    setDigits(upload.TimeoutUPLOAD, 3);
    setDigits(dataFile.SaveFreq, 3);
    setDigits(session.NBTimeout, 3);
    setDigits(stationFile.TimeoutREAD, 3);

    setDigits(historyKeep.CycleDays, 4);
    setDigits(historyKeep.EventYears, 2);
    setDigits(historyKeep.Megabytes, 5);

    session.RefreshRead.Entries = {QStringLiteral("5  secs"), QStringLiteral("10 secs"),
                                   QStringLiteral("30 secs"), QStringLiteral("60 secs")};
    upload.RefreshUpload.Entries = {QStringLiteral("5 sec"), QStringLiteral("10 sec"),
                                    QStringLiteral("30 sec"), QStringLiteral("60 sec")};
    session.EmulatorFlag.Caption = QStringLiteral("Connect to Kiv_Skyhold");
    alarms.SuspendSoundAlarm.Caption = QStringLiteral("Suspend sound alarms");
    alarms.ButtStopAlarm.Caption = QStringLiteral("Stop Alarm");
    alarms.ButtStopAlarm.Visible = false;
    session.FrameCOM.Visible = false;
    session.ButtStop.Visible = false;
    session.LblUsers.Caption = QStringLiteral("Attached Users: 0");
    dataFile.RecOption.Index = 1;
    dataFile.LblRecorded.Caption = QStringLiteral("Not recording");

    for (const QuantityRow& row : quantityTable())
        display.Label0[row.quantity].Caption = QString::fromLatin1(row.header);
    display.Label0Direction.Caption = QStringLiteral("Direction");
}

} // namespace skyhold
