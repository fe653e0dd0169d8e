// The command "why": the state document in words, of now or of a moment of the past.
#pragma once

#include "ctl/command_line.h"

#include <QJsonObject>

namespace skyhold {

int runWhy(const Command& command);

// A state document in words.
QString whyText(const QJsonObject& document);

} // namespace skyhold
