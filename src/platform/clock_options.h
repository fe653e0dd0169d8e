// SPDX-License-Identifier: GPL-3.0-or-later
// The developers' options that run a program's clock from another time and faster: the same three
// for every program, so that programs started with the same options share one time.
#pragma once

#include "platform/clock.h"

#include <QCommandLineOption>
#include <QList>
#include <QStringList>

namespace skyhold {

// For a parser that must know them beside options of its own.
QList<QCommandLineOption> clockOptions();

// Reads them from a program's arguments (the program's name first); other options are passed over.
// Without any of them the answer has no valid origin: real time. An option whose value cannot be
// read is logged and counts as not given.
ClockStart clockStartFromArguments(const QStringList& arguments);

} // namespace skyhold
