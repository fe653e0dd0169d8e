// SPDX-License-Identifier: GPL-3.0-or-later
// A line of the user data file and a record of the CCDAutopilot file, beside bare writes of the
// same bytes.
#include "datafiles/ccdap_file.h"
#include "datafiles/user_data_file.h"
#include "ratios.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace skyhold;

const QString kName = QStringLiteral("bench");

struct Readings {
    Readings() {
        for (std::size_t i = 0; i < controls.Columns.size(); ++i)
            controls.Columns[i] = {QStringLiteral("Header"), static_cast<int>(i) + 1, true};
        controls.FileName.Text = kName;
        controls.LblPathName.Caption = folder.path();
        controls.SaveFreq.Value = 1;
        ccdap.FileNameCCDAP4.Text = QStringLiteral("bench.dat");
        ccdap.LblPathNameCCDAP4.Caption = folder.path();
        readings.LastReading = clock.now();
        readings.SensorValues = {-25.3, 2610, 12000, 13.5, 80, 35};
        readings.WindSpeed = 12.4;
    }

    QTemporaryDir folder;
    SystemClock clock;
    NumberForms forms;
    CurrentReadings readings;
    DataFileControls controls;
    CcdapControls ccdap;
    DataItemSource source{readings, forms, [](Quantity, std::int32_t) {
                              return QStringLiteral("Clear");
                          }};
};

void BM_records(benchmark::State& state) {
    Readings all;
    UserDataRecorder recorder;
    if (!Record_Start(false, recorder, all.controls) || !recorder.recording) {
        state.SkipWithError("recording did not begin");
        return;
    }
    for (auto _ : state) {
        if (!WriteCcdapFile(all.ccdap, all.readings, all.clock, all.forms))
            state.SkipWithError("the CCDAutopilot file was not written");
        WriteUserDataLine(recorder, all.controls, all.source);
    }
}

void BM_bare_writes(benchmark::State& state) {
    Readings all;
    const QByteArray line = dataLine(all.controls.Columns, all.source) + "\r\n";
    const QByteArray record = ccdapRecord(all.readings, all.clock, all.forms);
    const QByteArray lines = all.folder.filePath(QStringLiteral("lines")).toLocal8Bit();
    const QByteArray ccdap = all.folder.filePath(QStringLiteral("ccdap")).toLocal8Bit();
    const int data = ::open(lines.constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    for (auto _ : state) {
        const int file = ::open(ccdap.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        const bool written =
            ::pwrite(file, record.constData(), static_cast<std::size_t>(record.size()), 0) ==
                record.size() &&
            ::close(file) == 0 &&
            ::write(data, line.constData(), static_cast<std::size_t>(line.size())) == line.size();
        if (!written)
            state.SkipWithError("a write failed");
    }
    ::close(data);
}

BENCHMARK(BM_records)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_bare_writes)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    return skyhold::runAndPrintRatios(
        argc, argv,
        {{"data line and CCDAutopilot record to bare writes (at most 3)", "BM_records",
          "BM_bare_writes"}});
}
