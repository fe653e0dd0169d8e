// SPDX-License-Identifier: GPL-3.0-or-later
// Finds a setting by words of its title.
#pragma once

#include "ui/pages/setting_places.h"

#include <QDialog>

#include <optional>

class QLineEdit;
class QListWidget;

namespace skyhold {

// Accepted with the setting that was chosen.
class FindSetting : public QDialog {
    Q_OBJECT

  public:
    FindSetting(std::vector<SettingPlace> places, QWidget* parent);

    const SettingPlace& chosen() const { return *chosen_; }

    void accept() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void list(const QString& text);

    std::vector<SettingPlace> places_;
    std::vector<SettingPlace> found_;
    std::optional<SettingPlace> chosen_;
    QLineEdit* text_;
    QListWidget* list_;
};

} // namespace skyhold
