// SPDX-License-Identifier: GPL-3.0-or-later
// Plays one sound file, once or in a loop, and ends with the sound.
//
//     Kiv_SoundPlayer [--repeat] FILE
//
// A program of its own, so that a sound server that hangs or a file that breaks a decoder can
// never hold or end the monitor: it starts this program for a sound and kills it to stop one. When
// nothing can be played, one line on standard output says why and the exit code is 1.
#include <QAudioDevice>
#include <QAudioOutput>
#include <QCoreApplication>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QTimer>
#include <QUrl>

#include <cstdio>

namespace {

int fail(const QString& reason) {
    std::printf("%s\n", qPrintable(reason));
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().sliced(1);
    const bool repeat = arguments.removeOne(QStringLiteral("--repeat"));
    if (arguments.size() != 1) {
        std::fputs("usage: Kiv_SoundPlayer [--repeat] FILE\n", stderr);
        return 2;
    }
    const QString& file = arguments.constFirst();

    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull())
        return fail(QStringLiteral("no audio device"));
    QAudioOutput output(device);
    QMediaPlayer player;
    player.setAudioOutput(&output);
    QObject::connect(&player, &QMediaPlayer::errorOccurred, &application,
                     [&file](QMediaPlayer::Error, const QString& reason) {
                         QCoreApplication::exit(fail(file + QStringLiteral(": ") + reason));
                     });
    // Opened again each time: the library's own loop, and playing again after the end, stop
    // sounding after a few times.
    QTimer begin;
    begin.setSingleShot(true);
    QObject::connect(&begin, &QTimer::timeout, &player, [&player, &file] {
        player.setSource(QUrl());
        player.setSource(QUrl::fromLocalFile(file));
        player.play();
    });
    const auto atEnd = [&begin, repeat](QMediaPlayer::MediaStatus status) {
        if (status != QMediaPlayer::EndOfMedia)
            return;
        if (repeat)
            begin.start();
        else
            QCoreApplication::quit();
    };
    QObject::connect(&player, &QMediaPlayer::mediaStatusChanged, &application, atEnd);
    begin.start();
    return QCoreApplication::exec();
}
