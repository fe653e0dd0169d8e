#include "ui/kiv_setup_form.h"

#include "platform/files.h"
#include "ui/choose_path.h"
#include "ui/dialog_parts.h"
#include "ui/kiv_error.h"
#include "ui/look.h"

#include <QButtonGroup>
#include <QCoreApplication>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

KivSetupForm::KivSetupForm(SettingsStore& settings, const QString& title)
    : settings_(settings) {
    setObjectName(u"KivSetupForm"_s);
    setWindowTitle(title);
    QVBoxLayout* column = dialogColumn(this);
    auto* heading = new QLabel(u"Before the first start: where is the weather station's data, and "
                               u"where do files go?"_s,
                               this);
    column->addWidget(heading);

    auto* form = new QFormLayout;
    form->setHorizontalSpacing(look::kMargin);
    form->setVerticalSpacing(look::kGap);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    const auto folder = [this](const QString& what) {
        return [this, what](const QString& current) {
            return chooseFolder(this, what, current);
        };
    };
    stationFile_ =
        addPath(form, u"&Weather station data file"_s, u"HTMFile"_s,
                [this](const QString& current) { return chooseStationFile(this, current); });
    dataFolder_ = addPath(form, u"User &data folder"_s, u"PathName"_s,
                          folder(u"Select a folder to store the user data file."_s));
    dataFolder_->setText(writableProgramFolder());
    ccdapFolder_ = addPath(form, u"&CCDAutopilot folder"_s, u"PathNameCCDAP4"_s,
                           folder(u"Select a folder to store the CCDAP4 file."_s));
    imageFolder_ = addPath(form, u"&Image folder"_s, u"GraphImagePath"_s,
                           folder(u"Select a folder to store the image files."_s));
    for (QLineEdit* optional : {ccdapFolder_, imageFolder_})
        optional->setPlaceholderText(u"None: nothing is written"_s);
    unitsTemp_ = addChoice(form, u"Temperature"_s, "UnitsTemp", {u"°C"_s, u"°F"_s});
    unitsSpeed_ =
        addChoice(form, u"Wind speed"_s, "UnitsSpeed", {u"km/hr"_s, u"mph"_s, u"m/s"_s, u"knot"_s});
    dateFormat_ = addChoice(form, u"Dates in the station's file"_s, "DateFormat",
                            {u"dd/mm/yy"_s, u"mm/dd/yy"_s});
    column->addLayout(form);
    addOkAndCancel(this, column).cancel->setObjectName(u"Command1"_s);
}

QLineEdit* KivSetupForm::addPath(QFormLayout* form, const QString& caption, const QString& name,
                                 std::function<QString(const QString&)> choose) {
    auto* edit = new QLineEdit(this);
    edit->setObjectName(name);
    edit->setMinimumWidth(380);
    auto* browse = new QPushButton(u"Browse…"_s, this);
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, [edit, choose = std::move(choose)] {
        const QString chosen = choose(edit->text());
        if (!chosen.isEmpty())
            edit->setText(chosen);
    });
    auto* label = new QLabel(caption, this);
    label->setBuddy(edit);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    row->addWidget(edit, 1);
    row->addWidget(browse);
    form->addRow(label, row);
    return edit;
}

QButtonGroup* KivSetupForm::addChoice(QFormLayout* form, const QString& caption,
                                      const char* control, const QStringList& options) {
    auto* group = new QButtonGroup(this);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    for (qsizetype i = 0; i < options.size(); ++i) {
        auto* option = new QRadioButton(options[i], this);
        option->setObjectName(QString::fromLatin1(control) + QString::number(i));
        group->addButton(option, static_cast<int>(i));
        row->addWidget(option);
    }
    row->addStretch();
    group->button(0)->setChecked(true);
    form->addRow(caption, row);
    return group;
}

void KivSetupForm::accept() {
    const QString station = stationFile_->text().trimmed();
    if (station.isEmpty()) {
        KivError({u"Please define path for Weather Station Data File"_s, MessageStyle::Ok, {}},
                 windowTitle(), this)
            .ask();
        stationFile_->setFocus();
        return;
    }
    const QString ccdap = ccdapFolder_->text().trimmed();
    const QString images = imageFolder_->text().trimmed();
    settings_.SaveSetting(u"Setup"_s, u"HTMFile"_s, station);
    const QString data = dataFolder_->text().trimmed();
    settings_.SaveSetting(u"Window"_s, u"PathName"_s,
                          data.isEmpty() ? writableProgramFolder() : data);
    settings_.SaveSetting(u"Window"_s, u"PathNameCCDAP4"_s, ccdap);
    settings_.SaveSetting(u"Graphs"_s, u"GraphImagePath"_s, images);
    saveOptions(u"UnitsTemp"_s, *unitsTemp_);
    saveOptions(u"UnitsSpeed"_s, *unitsSpeed_);
    saveOptions(u"DateFormat"_s, *dateFormat_);
    if (ccdap.isEmpty())
        settings_.SaveSetting(u"Window"_s, u"FileNameCCDAP4"_s, QString());
    if (images.isEmpty()) {
        for (const char* graph : {"Wind", "Gust", "Dir", "Hum", "Dew", "Temp"})
            settings_.SaveSetting(u"Graphs"_s, u"Image"_s + QString::fromLatin1(graph), u"0"_s);
    }
    if (!settings_.flush())
        KivError(
            {u"The settings could not be saved to "_s + settings_.filePath(), MessageStyle::Ok, {}},
            windowTitle(), this)
            .ask();
    QDialog::accept();
}

void KivSetupForm::saveOptions(const QString& key, const QButtonGroup& group) {
    for (QAbstractButton* option : group.buttons()) {
        const int index = group.id(option);
        settings_.SaveSetting(u"Limit"_s, key + QString::number(index),
                              index == group.checkedId() ? u"True"_s : u"False"_s);
    }
}

bool runSetupForm(SettingsStore& settings) {
    const QString title = u"%1 (v%2)"_s.arg(QCoreApplication::applicationName(),
                                            QCoreApplication::applicationVersion());
    return KivSetupForm(settings, title).exec() == QDialog::Accepted;
}

} // namespace skyhold
