// SPDX-License-Identifier: GPL-3.0-or-later
// A media control that notes every command and plays nothing.
#pragma once

#include "platform/media_control.h"

#include <QStringList>

#include <utility>

namespace skyhold {

struct ScriptedMedia : MediaControl {
    QStringList commands;
    int openResult = 0;
    int statusResult = 0;
    QString mode = QStringLiteral("playing");

    int send(const QString& command, QString* answer, int answerLength) override {
        commands.append(command);
        if (command.startsWith(QStringLiteral("open ")))
            return openResult;
        if (answer == nullptr)
            return 0;
        *answer = mode.left(answerLength - 1);
        return statusResult;
    }

    // What the commands since the last call come to: the name of the sound that was last started,
    // without folder and ending, "-" when what may have sounded was only stopped, and nothing when
    // there was no command.
    QString heard() {
        QString result;
        QString opened;
        for (const QString& command : std::exchange(commands, {})) {
            if (command.startsWith(QStringLiteral("open ")))
                opened = command.section(u'/', -1).section(u'.', 0, 0);
            else
                result = command.startsWith(QStringLiteral("play ")) ? opened : QStringLiteral("-");
        }
        return result;
    }
};

} // namespace skyhold
