// SPDX-License-Identifier: GPL-3.0-or-later
// A night at the observatory as a table that a person can read and edit, played through the whole
// monitor, and what came of it as text.
//
// Lines of a night (NAME.night), "#" begins a comment:
//   set SECTION/KEY=TEXT   a setting that the program starts with; "@" is the night's own folder
//   alarm KEY...           alarm KEY is on; its sound has the same name
//   columns WORD...        what the cells of the rows below are
//   N CELL... | WORD REST; WORD REST...
//                          first the cells ("=" or none: as before), then what happens, in order;
//                          then N read cycles, the station file written before each of them
// The words are those of `Night::happen` and `Night::use`.
#pragma once

#include "automation/member_calls.h"
#include "simulators/station_text.h"
#include "support/core_fixture.h"

namespace skyhold {

class Night : public CoreFixture, public testing::WithParamInterface<std::string> {
  protected:
    Night();
    ~Night() override { QLocale::setDefault(QLocale::c()); }

    // The outcomes, one line for all cycles in a row that came out the same:
    // time xCYCLES verdict | cause | delay and messages | alarm id, what was heard | status | codes
    // | lamps: verdict, read | switch; below it what was written to the user data file, and the
    // CCDAutopilot record when more of it changed than the time.
    QString play(const QByteArray& table);

  private:
    void prepare(const QStringList& lines);
    void set(const QString& key, const QString& text);
    void happen(const QString& word, const QString& rest);
    void use(const QString& word, const QString& rest);
    void writeStationFile();
    void playCycle();
    void note();
    void endRun();
    QString readLamps();
    QString written();

    StationCells cells_{u"12.0"_s, u"5.0"_s, u"8.0"_s, u"N"_s,     u"0.0"_s,
                        u"0.4"_s,  u"58%"_s, u"4.0"_s, u"1012.5"_s};
    StationForm form_;
    QString stationFile_ = u"new"_s; // "new", "kept", "gone", "torn", "empty" or "rubbish"
    int seconds_ = 10;
    bool secondLampLit_ = true;
    QByteArray dataFile_, record_;
    QString outcomes_;
    QString outcome_, began_; // the last one, how often it came in a row, and since when
    int repeats_ = 0;
    std::shared_ptr<const MemberTable> members_ = memberCalls(*core_);
};

} // namespace skyhold
