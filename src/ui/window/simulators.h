// SPDX-License-Identifier: GPL-3.0-or-later
// The two simulators that come with the program, to try it without any hardware. Their weather is
// made up.
#pragma once

#include <QObject>
#include <QString>

#include <array>

class QProcess;

namespace skyhold {

struct Label;

class Simulators : public QObject {
    Q_OBJECT

  public:
    // The one of `owner`, with which it ends; made when it is first asked for.
    static Simulators& of(QObject* owner);
    ~Simulators() override;

    // Both programs stand beside this one.
    static bool installed();
    // The file that the simulated station writes, in the user's data folder.
    static QString stationFile();

    bool running() const;
    // Starts both, with one clock: that of this program's own options, if it was given any. Empty,
    // or why they do not run: a sensor program that runs already, for one, keeps its place.
    QString start();
    // From now on they end as soon as the station's file is another than theirs: beside a real
    // station their made-up clouds and rain would be judged as real ones.
    void endWithFile(Label& stationFile);

  Q_SIGNALS:
    // They run, or one has ended.
    void changed();

  private:
    explicit Simulators(QObject* owner);
    QString startOne(QProcess& process, const QString& name, const QStringList& arguments);
    void end();

    std::array<QProcess*, 2> processes_; // sensor program, station
};

} // namespace skyhold
