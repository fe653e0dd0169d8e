// SPDX-License-Identifier: GPL-3.0-or-later
// Follows what is changed in the settings, by the user and by other programs, and takes it back.
#pragma once

#include "core/monitoring_core.h"
#include "settings/journal.h"

#include <QObject>
#include <QTimer>

class QWidget;

namespace skyhold {

class SettingsChanges : public QObject {
    Q_OBJECT

  public:
    // The settings have been loaded. `core` outlives this.
    SettingsChanges(MonitoringCore& core, QObject* parent);

    // The latest steps in words, the last one first: "16:50 Gust, Gusty: upper limit 28 → 30".
    QStringList lines(std::size_t most) const;
    // What Undo and Redo would do, in words; empty for nothing.
    QString undoText() const;
    QString redoText() const;
    void undo();
    void redo();
    // What the user has just done by other means than keys and mouse.
    void noteUser();

    // Looks before and after what the user does, so that what another program did meanwhile is
    // known from it. A line without changes of its own leaves the keys of Undo to the settings.
    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    void changed();

  private:
    void note(bool byUser);
    bool settling() const;
    QString words(const SettingsStep& step) const;

    MonitoringCore& core_;
    SettingsJournal journal_;
    bool pending_ = false; // the user's event is at work
    std::optional<std::int64_t> lastInputMs_;
    QTimer settled_;
};

// The latest changes, with Undo and Redo.
QWidget* makeChangesCard(SettingsChanges& changes, QWidget* parent);

} // namespace skyhold
