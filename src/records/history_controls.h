// For how long the history is kept.
#pragma once

namespace skyhold {

struct HistoryControls {
    int CycleDays = 30;    // single cycles; from then on minutes
    int EventYears = 10;   // events, minutes and longer
    int Megabytes = 1'024; // of the file at most
};

} // namespace skyhold
