// SPDX-License-Identifier: GPL-3.0-or-later
// The first settings, from the answers to five questions.
#pragma once

#include "sensors/discovery.h"

#include <QString>

namespace skyhold {

struct SetupAnswers {
    QString kind;   // "indi", "alpaca", "mqtt", "file", "command"
    QString where;  // server, URL, broker, path or command
    QString device; // of INDI and Alpaca: its name or "observingconditions/0"; of MQTT the topic
    bool brightness = false; // light makes it unsafe, too
    bool master = false;     // this program drives the roof
};

// The text of the settings file, with comments. `found` are the values that the INDI device has;
// what it has not, stands there as a comment.
QString settingsText(const SetupAnswers& answers, const std::vector<FoundValue>& found);

// Asks on standard input and writes the file, which must not exist; the exit status.
int setUp(const QString& path);

} // namespace skyhold
