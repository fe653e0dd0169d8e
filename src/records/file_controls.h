// SPDX-License-Identifier: GPL-3.0-or-later
// Controls of every file that is read, written or handed on.
#pragma once

#include "records/controls.h"

#include <QDateTime>

#include <array>
#include <vector>

namespace skyhold {

struct StationFileControls {
    Label HTMFile; // path of the station's data file
    Button ButtHTMPath;
    NumberBox TimeoutREAD; // age limit of the station data, minutes
};

struct CcdapControls {
    TextBox FileNameCCDAP4; // empty: nothing is written
    Label LblPathNameCCDAP4;
    Button ButtCCDAP4;
};

// One column of the user data file.
struct DataColumn {
    QString Hdr; // at most 25 characters
    int Cal = 1; // data item 1..25
    bool Prt = true;
};

struct DataFileControls {
    TextBox FileName; // without extension
    Label LblPathName;
    Button ButtPATH, ButtFileStructure;
    NumberBox SaveFreq;    // read cycles per line, at least 1
    OptionGroup RecOption; // 0 record, 1 stop
    std::array<DataColumn, 25> Columns;
    Lamp LEDRecord;    // green while it records, red while its lines are lost
    Label LblRecorded; // the file, and how many lines
};

// One entry of the upload list.
struct FileItem {
    bool fUploadOnce = false;
    QDateTime fDateTimeStamp; // modification time at its last hand-off; invalid at first
    QString fPath;            // without a trailing separator
    QString fName;
    bool fNotArrived = false; // the uploader reported so: it is due again
};

struct UploadControls {
    TextBox ServerAddress, ServerPath, UserName, PassWord;
    NumberBox TimeoutUPLOAD; // seconds
    NumberBox UploadOnSec;
    ComboBox RefreshUpload;
    QString UploadDir;
    CheckBox DispFileNameOnly;
    std::vector<FileItem> Files;
    QProperty<QStringList> FileLines; // the list as it is shown
    QProperty<int> ListIndex{-1};     // selected item from 0; -1 is none
    CheckBox UploadOnce;              // of the selected item
    Button ButtFileADD, ButtFileDEL;
    LampPair LEDUpload;
    Label LastSuccess, LastError; // of the uploader, with their times
};

// The places of all arrays of graphs.
enum Graph : std::size_t {
    kWindGraph,
    kGustGraph,
    kDirectionGraph,
    kDewGraph,
    kHumidityGraph,
    kTemperatureGraph,
    kGraphCount
};

struct GraphControls {
    NumberBox GraphNoPoints; // 20..2000
    NumberBox GraphFreq;     // readings per point, at least 1
    Label GraphSpan;         // seconds
    Label GraphSpanDesc;
    std::array<CheckBox, kGraphCount> GraphGenerate;
    std::array<CheckBox, kGraphCount> GraphImage;
    // BackColor; only the direction uses the third.
    std::array<std::array<Label, 3>, kGraphCount> GraphColor;
    CheckBox ImageType;       // checked PNG, unchecked JPEG
    OptionGroup ImageQuality; // 0 top, 1 good, 2 normal
    Label GraphImagePath;
    Button ButtGraphImagePath;
};

} // namespace skyhold
