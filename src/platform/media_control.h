// SPDX-License-Identifier: GPL-3.0-or-later
// Sound, asked for with the command strings of a media control interface. One sound at a time, by
// the name KivNubiloPlayer.
#pragma once

#include <QObject>
#include <QSet>
#include <QString>

#include <functional>

class QProcess;

namespace skyhold {

// "open PATH type MPEGVideo alias KivNubiloPlayer"; a path with blanks is put in quotation marks.
QString mediaOpenCommand(const QString& path);
inline const QString kMediaPlay = QStringLiteral("play KivNubiloPlayer from 0");
inline const QString kMediaPlayRepeat = QStringLiteral("play KivNubiloPlayer from 0 repeat");
inline const QString kMediaStop = QStringLiteral("stop KivNubiloPlayer");
inline const QString kMediaClose = QStringLiteral("close KivNubiloPlayer");
inline const QString kMediaMode = QStringLiteral("status KivNubiloPlayer mode");

class MediaControl {
  public:
    virtual ~MediaControl() = default;

    // 0 when the command was accepted. Only kMediaMode answers: "playing", or what else is the
    // case, cut to answerLength - 1 characters. Never waits for the sound.
    virtual int send(const QString& command, QString* answer = nullptr, int answerLength = 0) = 0;

    // Hears why a sound that was accepted is not heard after all.
    std::function<void(const QString& reason)> silent;
};

// Plays through the program Kiv_SoundPlayer, one process a sound, which is killed to stop it. So a
// monitor that never sounds loads no sound library, and a sound server that hangs or a file that
// breaks a decoder neither holds the monitor nor ends it.
class SoundPlayerProgram : public MediaControl {
  public:
    // `program` is the path of the player; `report` hears of each reason for silence once.
    SoundPlayerProgram(const QString& program, std::function<void(const QString&)> report);
    ~SoundPlayerProgram() override;

    int send(const QString& command, QString* answer = nullptr, int answerLength = 0) override;

  private:
    int open(const QString& path);
    void play(bool repeat);
    void stop();
    void report(const QString& reason);

    QString program_;
    std::function<void(const QString&)> report_;
    QSet<QString> reported_;
    QString file_;      // empty: closed
    QObject processes_; // parent of all, among them such as were killed and have not ended yet
    QProcess* process_ = nullptr;
};

} // namespace skyhold
