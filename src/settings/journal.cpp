// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/journal.h"

#include <algorithm>

namespace skyhold {

namespace {

constexpr int kSameStepSeconds = 10; // a number that is typed changes with each of its digits

} // namespace

SettingsJournal::SettingsJournal(Records& records)
    : forms_(localeNumberForms())
    , rows_(keyTable(records)) {
    std::erase_if(rows_, [](const KeyRow& row) {
        return row.role == KeyRole::State || row.role == KeyRole::List ||
               row.section == QStringLiteral("View"); // has a menu of its own
    });
    texts_.reserve(rows_.size());
    for (const KeyRow& row : rows_)
        texts_.push_back(row.text(forms_));
}

bool SettingsJournal::look(const QDateTime& now, bool byUser) {
    SettingsStep step{now, byUser, {}};
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        QString text = rows_[i].text(forms_);
        if (text == texts_[i])
            continue;
        step.changes.push_back({i, texts_[i], text});
        texts_[i] = std::move(text);
    }
    if (step.changes.empty())
        return false;
    if (byUser)
        undone_.clear();
    if (joined(step))
        return true;
    steps_.push_back(std::move(step));
    if (steps_.size() > kMostSteps) {
        steps_.erase(steps_.begin());
        locked_ -= std::min<std::size_t>(locked_, 1);
    }
    return true;
}

bool SettingsJournal::joined(const SettingsStep& step) {
    if (steps_.size() <= locked_ || step.changes.size() != 1)
        return false;
    SettingsStep& last = steps_.back();
    const bool same = last.byUser && step.byUser && last.changes.size() == 1 &&
                      last.changes[0].row == step.changes[0].row &&
                      last.at.secsTo(step.at) < kSameStepSeconds;
    if (!same)
        return false;
    last.at = step.at;
    last.changes[0].after = step.changes[0].after;
    if (last.changes[0].after == last.changes[0].before)
        steps_.pop_back();
    return true;
}

const SettingsStep* SettingsJournal::undoable() const {
    for (std::size_t i = steps_.size(); i > locked_; --i) {
        if (steps_[i - 1].byUser)
            return &steps_[i - 1];
    }
    return nullptr;
}

const SettingsStep* SettingsJournal::redoable() const {
    return undone_.empty() ? nullptr : &undone_.back();
}

void SettingsJournal::undo() {
    const SettingsStep* found = undoable();
    if (!found)
        return;
    SettingsStep step = *found;
    steps_.erase(steps_.begin() + (found - steps_.data()));
    apply(step, &SettingChange::after, &SettingChange::before);
    undone_.push_back(std::move(step));
}

void SettingsJournal::redo() {
    if (undone_.empty())
        return;
    SettingsStep step = std::move(undone_.back());
    undone_.pop_back();
    apply(step, &SettingChange::before, &SettingChange::after);
    steps_.push_back(std::move(step));
}

// In the order of the table, as settings are loaded: a unit before the limits that it converts, a
// sound before the box that needs one.
void SettingsJournal::apply(const SettingsStep& step, QString SettingChange::*from,
                            QString SettingChange::*to) {
    std::vector<const SettingChange*> stands;
    for (const SettingChange& change : step.changes) {
        if (rows_[change.row].text(forms_) == change.*from)
            stands.push_back(&change);
    }
    for (const SettingChange* change : stands)
        rows_[change->row].load(change->*to, forms_);
    for (std::size_t i = 0; i < rows_.size(); ++i)
        texts_[i] = rows_[i].text(forms_);
}

void SettingsJournal::lock() {
    locked_ = steps_.size();
    undone_.clear();
}

} // namespace skyhold
