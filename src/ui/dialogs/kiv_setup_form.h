// SPDX-License-Identifier: GPL-3.0-or-later
// The first start: an assistant that asks where the station's file is, which sensor there is, where
// files go, and for the units, one subject a step, and says of each what it is and what a wrong
// answer does.
#pragma once

#include "bus/automation_client.h"
#include "platform/settings_store.h"

#include <QDialog>
#include <QTimer>

#include <functional>
#include <memory>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStackedWidget;
class QVBoxLayout;

namespace skyhold {

class Clock;
class SensorStep;
class SensorWatch;
class Simulators;
class SourceNowView;
class StationCheckView;
struct Records;

class KivSetupForm : public QDialog {
    Q_OBJECT

  public:
    // Works on the stored settings alone, before anything is loaded. `title` is the program's.
    // Without hardware the user may start the simulators instead. `createObject` reaches the
    // sensor's program; `clock` says how old things are.
    KivSetupForm(SettingsStore& settings, Simulators& simulators, const CreateObject& createObject,
                 const Clock& clock, const QString& title);
    ~KivSetupForm() override;

    // Saves and closes, or shows what is missing and saves nothing. The simulators, when they were
    // chosen, run then.
    void accept() override;

  private:
    QVBoxLayout* addStep(const QString& heading, const QString& introduction);
    void addStationStep();
    void addSensorStep();
    void addUnitsStep();
    void addFilesStep();
    void addEndStep();
    void addTryOut(QVBoxLayout* step);
    void addButtons(QVBoxLayout* column);
    void goOn(int by);
    void showStep(int step);
    void chooseStation();
    bool prepareStation();
    bool prepareSensor();
    bool prepareFolders();
    void checkStation();
    void watchSources();
    void save(const QString& station);
    void saveOptions(const QString& key, const QButtonGroup& group);
    void showFault(const QString& text);

    SettingsStore& settings_;
    Simulators& simulators_;
    const Clock& clock_;
    QLabel* progress_;
    QStackedWidget* steps_;
    QPushButton* back_ = nullptr;
    QPushButton* next_ = nullptr;
    QPushButton* ok_ = nullptr;
    std::unique_ptr<SensorStep> sensor_;
    QRadioButton* tryOut_ = nullptr;
    QWidget* ownStation_ = nullptr;
    QLineEdit* stationFile_ = nullptr;
    StationCheckView* chosenCheck_ = nullptr; // what the file just chosen gives
    // At the end, where both are looked at again and again.
    SourceNowView* stationNow_ = nullptr;
    SourceNowView* sensorNow_ = nullptr;
    std::unique_ptr<SensorWatch> watch_;
    QTimer checkSoon_;
    QTimer checkAgain_;
    std::unique_ptr<Records> records_; // as stored: the texts by which units are recognised
    QLineEdit* dataFolder_ = nullptr;
    QLineEdit* ccdapFolder_ = nullptr;
    QLineEdit* imageFolder_ = nullptr;
    QButtonGroup* unitsTemp_ = nullptr;
    QButtonGroup* unitsSpeed_ = nullptr;
    QButtonGroup* dateFormat_ = nullptr;
    QCheckBox* beyondLimit_ = nullptr;
    QCheckBox* caution_ = nullptr;
};

// Shows the assistant of the first start; the setup-done flag.
bool runSetupForm(SettingsStore& settings, Simulators& simulators, const CreateObject& createObject,
                  const Clock& clock);

} // namespace skyhold
