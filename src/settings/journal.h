// SPDX-License-Identifier: GPL-3.0-or-later
// What was changed in the settings, when, and the way back.
#pragma once

#include "settings/key_table.h"

#include <QDateTime>

namespace skyhold {

struct SettingChange {
    std::size_t row; // of SettingsJournal::row
    QString before;  // as stored
    QString after;
};

// What was changed at one go.
struct SettingsStep {
    QDateTime at;
    bool byUser = false; // else by another program, or as a consequence of what it did
    std::vector<SettingChange> changes;
};

// Compares the settings with what they were when it looked last. The state of the window is no
// setting; the entries of the upload list are left out.
class SettingsJournal {
  public:
    // At most so many steps are kept; the oldest give way.
    static constexpr std::size_t kMostSteps = 200;

    explicit SettingsJournal(Records& records);

    // Takes up what has changed since. What the user changes again within seconds is one step with
    // the change before, and no step once it is what it was. False when nothing has changed.
    bool look(const QDateTime& now, bool byUser);

    // The steps that stand, the oldest first.
    const std::vector<SettingsStep>& steps() const { return steps_; }
    const KeyRow& row(const SettingChange& change) const { return rows_[change.row]; }

    // The user's last step, or null. One before `lock` is out of reach.
    const SettingsStep* undoable() const;
    const SettingsStep* redoable() const;
    // Puts back what `undoable` changed, except for what another program has changed since. Nothing
    // when there is none.
    void undo();
    void redo();

    // While a session runs some settings are locked: what was changed before it began stays.
    void lock();
    void unlock() { locked_ = 0; }

  private:
    void apply(const SettingsStep& step, QString SettingChange::*from, QString SettingChange::*to);
    bool joined(const SettingsStep& step);

    NumberForms forms_;
    std::vector<KeyRow> rows_;
    std::vector<QString> texts_; // of each row, when it was looked at last
    std::vector<SettingsStep> steps_;
    std::vector<SettingsStep> undone_; // the last one at the end
    std::size_t locked_ = 0;           // so many steps, from the first
};

} // namespace skyhold
