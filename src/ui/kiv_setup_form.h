// The first start: where the station's file is, where files go, and the units.
#pragma once

#include "platform/settings_store.h"

#include <QDialog>

#include <functional>

class QButtonGroup;
class QFormLayout;
class QLineEdit;

namespace skyhold {

class KivSetupForm : public QDialog {
    Q_OBJECT

  public:
    // Works on the stored settings alone, before anything is loaded. `title` is the program's.
    KivSetupForm(SettingsStore& settings, const QString& title);

    // Saves and closes, or tells what is missing and saves nothing.
    void accept() override;

  private:
    QLineEdit* addPath(QFormLayout* form, const QString& caption, const QString& name,
                       std::function<QString(const QString&)> choose);
    QButtonGroup* addChoice(QFormLayout* form, const QString& caption, const char* control,
                            const QStringList& options);
    void saveOptions(const QString& key, const QButtonGroup& group);

    SettingsStore& settings_;
    QLineEdit* stationFile_ = nullptr;
    QLineEdit* dataFolder_ = nullptr;
    QLineEdit* ccdapFolder_ = nullptr;
    QLineEdit* imageFolder_ = nullptr;
    QButtonGroup* unitsTemp_ = nullptr;
    QButtonGroup* unitsSpeed_ = nullptr;
    QButtonGroup* dateFormat_ = nullptr;
};

// Shows the setup form of the first start; the setup-done flag.
bool runSetupForm(SettingsStore& settings);

} // namespace skyhold
