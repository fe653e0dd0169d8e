// SPDX-License-Identifier: GPL-3.0-or-later
// Standard output whose every failure is noticed, and messages on standard error.
#pragma once

#include <QJsonValue>
#include <QString>

namespace skyhold {

// Opens what stands for a closed standard stream: otherwise the next file or socket that is opened
// would take its number, and the bus would be sent our output. Writing to a closed standard output
// fails as it should.
void secureStandardStreams();

// Writes the text and flushes it; false when not all of it was taken.
bool write(const QString& text);
bool writeLine(const QString& text);
// An object or an array on one line.
bool writeLine(const QJsonValue& json);

// Closes standard output; false when anything that was written has not arrived.
bool closeOutput();

// False when nobody can read any more what is written; true after `ms` milliseconds.
bool waitWhileRead(int ms);

void printFault(const QString& text);

} // namespace skyhold
