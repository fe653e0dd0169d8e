// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/upload_report.h"

#include <algorithm>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kMostFaults = 9999;

const QString kSection = u"Result"_s;

} // namespace

void writeUploadReport(SettingsStore& area, const UploadReport& report) {
    const auto write = [&area](const QString& key, const QString& text) {
        area.SaveSetting(kSection, key, text);
    };
    write(u"Task"_s, QString::number(report.processId));
    write(u"NotArrived"_s, QString::number(report.notArrived.size()));
    int k = 0;
    for (const UploadFault& fault : report.notArrived) {
        const QString number = QString::number(++k);
        write(u"File"_s + number, fault.file);
        write(u"Reason"_s + number, fault.reason);
        write(u"Time"_s + number, fault.time);
    }
    write(u"LastSuccess"_s, report.lastSuccess);
    write(u"LastError"_s, report.lastError);
}

UploadReport readUploadReport(const SettingsStore& area) {
    const auto read = [&area](const QString& key) {
        return area.GetSetting(kSection, key, {});
    };
    UploadReport report;
    report.processId = read(u"Task"_s).toLongLong();
    const int count = std::clamp(read(u"NotArrived"_s).toInt(), 0, kMostFaults);
    for (int k = 1; k <= count; ++k) {
        const QString number = QString::number(k);
        report.notArrived.push_back(
            {read(u"File"_s + number), read(u"Reason"_s + number), read(u"Time"_s + number)});
    }
    report.lastSuccess = read(u"LastSuccess"_s);
    report.lastError = read(u"LastError"_s);
    return report;
}

} // namespace skyhold
