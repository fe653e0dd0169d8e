// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the steps of the first start's assistant.
#pragma once

#include <QStringList>

#include <functional>

class QButtonGroup;
class QLineEdit;
class QVBoxLayout;

namespace skyhold {

// Rows that belong together, at the width of a step; `indent` in pixels.
QVBoxLayout* addBlock(QVBoxLayout* step, int indent);

// A path with its button to browse: `choose` gets the text as it is, and returns the path or, when
// it was cancelled, nothing.
QLineEdit* addPath(QVBoxLayout* step, const QString& caption, const QString& name,
                   std::function<QString(const QString&)> choose);

// Options beside their caption, the first one chosen; their names are `control` and their index.
QButtonGroup* addChoice(QVBoxLayout* step, const QString& caption, const char* control,
                        const QStringList& options);

// A dimmed text that wraps.
void addExplanation(QVBoxLayout* step, const QString& text);

} // namespace skyhold
