// SPDX-License-Identifier: GPL-3.0-or-later
// A level from a number, by limits with hysteresis, or from a source's own verdict.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace skyhold {

struct LevelLimit {
    bool above = true; // else below
    double value = 0;
    bool operator==(const LevelLimit&) const = default;
};

struct LevelRule {
    // Beyond the second limit the level is 3, beyond the first 2, else 1.
    std::optional<LevelLimit> level2, level3;
    double hysteresis = 0; // a value must come back by so much before the level falls
    // Of a source that has a verdict: its text and the level, 1..3.
    struct Word {
        QString text;
        std::int32_t level = 0;
    };
    std::vector<Word> words;

    bool any() const { return level2 || level3 || !words.empty(); }
};

class LevelFinder {
  public:
    explicit LevelFinder(LevelRule rule = {})
        : rule_(std::move(rule)) {}

    const LevelRule& rule() const { return rule_; }

    // By the limits. Remembers the level, which must be found for every new value.
    std::int32_t levelOf(double value);
    // By the words, without regard to case; numbers are compared as numbers. Nothing for a text
    // that has no level.
    std::optional<std::int32_t> levelOf(const QString& text) const;

  private:
    LevelRule rule_;
    std::int32_t last_ = 0;
};

// The number that the whole text is, with "." as its decimal sign; nothing for one that is not
// finite.
std::optional<double> plainNumber(const QString& text);

} // namespace skyhold
