// SPDX-License-Identifier: GPL-3.0-or-later
// Why the verdict was what it was at a moment of the past, in the words of `skyholdctl why`.
#pragma once

#include <QDialog>
#include <QThreadPool>

#include <cstdint>

class QPlainTextEdit;

namespace skyhold {

class WhyWindow : public QDialog {
    Q_OBJECT

  public:
    // One for each parent; it stays open beside the window.
    static WhyWindow* over(QWidget* parent);
    ~WhyWindow() override;

    // Reads the history on a thread of its own and shows what it says.
    void ask(const QString& historyPath, std::int64_t atMs);

  private:
    explicit WhyWindow(QWidget* parent);

    QPlainTextEdit* text_;
    std::int64_t askedMs_ = 0;
    QThreadPool pool_;
};

} // namespace skyhold
