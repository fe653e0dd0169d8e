// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/data_file_page.h"

#include "datafiles/user_data_file.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/dialogs/kiv_file_struct_form.h"
#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/open_editor.h"
#include "ui/widgets/readout.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QValidator>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class FileNameValidator : public QValidator {
  public:
    using QValidator::QValidator;

    State validate(QString& text, int&) const override {
        return std::all_of(text.cbegin(), text.cend(), dataFileNameAccepts) ? Acceptable : Invalid;
    }
};

// The lamp, and beside it what is recorded.
void addRecorded(QVBoxLayout* column, DataFileControls& dataFile) {
    QWidget* group = column->parentWidget();
    auto* lamp = new LampWidget(14, group);
    lamp->setObjectName(u"LEDRecord"_s);
    lamp->setToolTip(u"Green while lines are recorded, red when the last one was lost"_s);
    bind(lamp, dataFile.LEDRecord);
    QLabel* recorded = makeDimmed({}, group);
    recorded->setObjectName(u"LblRecorded"_s);
    recorded->setWordWrap(true);
    bind(recorded, dataFile.LblRecorded);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    row->addWidget(lamp, 0, Qt::AlignTop);
    row->addWidget(recorded, 1);
    column->addLayout(row);
}

QWidget* makeRecording(DataFileControls& dataFile, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Recording"_s);
    addOptions(column, "RecOption", {u"&Record"_s, u"Stop"_s}, dataFile.RecOption);
    addNumberRow(column, u"A line ever&y"_s, u"SaveFreq"_s, dataFile.SaveFreq, u"read cycles"_s);
    addRecorded(column, dataFile);
    column->addStretch();
    return column->parentWidget();
}

QWidget* makeFile(DataFileControls& dataFile, QWidget* page) {
    auto* group = new QGroupBox(u"File"_s, page);
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(14, 8, 14, 12);
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(look::kGap);

    const FolderChoice choice =
        makeFolderChoice(group, u"ButtPATH"_s, dataFile.ButtPATH, u"LblPathName"_s,
                         dataFile.LblPathName, u"Select a folder to store the data file."_s);
    auto* caption = new QLabel(u"File &name"_s, group);
    QLineEdit* name = makeText(group, u"FileName"_s, dataFile.FileName);
    name->setValidator(new FileNameValidator(name));
    name->setToolTip(u"Letters, digits and underscores"_s);
    caption->setBuddy(name);
    auto* structure = new QPushButton(u"Colu&mns…"_s, group);
    structure->setObjectName(u"ButtFileStructure"_s);
    bind(structure, dataFile.ButtFileStructure);
    structure->setToolTip(u"Choose and order the values of a line"_s);
    openEditorFrom(structure, [&dataFile, group] {
        DataColumns columns = dataFile.Columns;
        KivFileStructForm(columns, group).exec();
        // A recording that another program has begun meanwhile goes on as its header says.
        if (dataFile.ButtFileStructure.Enabled)
            dataFile.Columns = columns;
    });

    grid->addWidget(choice.button, 0, 0);
    grid->addWidget(choice.folder, 0, 1, 1, 2);
    grid->addWidget(caption, 1, 0);
    grid->addWidget(name, 1, 1);
    grid->addWidget(new QLabel(u".csv"_s, group), 1, 2);
    grid->addWidget(structure, 2, 0);
    auto* note = new QVBoxLayout;
    grid->addLayout(note, 2, 1, 1, 2);
    addHint(note, u"Which values are written, in which order and under which headers."_s);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(3, 1);
    return group;
}

QWidget* makeHistory(HistoryControls& history, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"History"_s);
    addHint(column,
            u"Every cycle and event goes into the monitor's own database, for looking back and "
            u"for What if. Changes here count from the next start of a session."_s);
    auto* row = new QHBoxLayout;
    row->setSpacing(3 * look::kMargin);
    const auto addAge = [&](const QString& caption, const QString& name, NumberBox& record,
                            const QString& unit, const QString& tip) {
        auto* box = new QVBoxLayout;
        row->addLayout(box);
        addNumberRow(box, caption, name, record, unit)->setToolTip(tip);
    };
    addAge(u"Keep single cycles for"_s, u"CycleDays"_s, history.CycleDays, u"days"_s,
           u"1 to 3660. Older ones become one entry a minute."_s);
    addAge(u"Minu&tes and events for"_s, u"EventYears"_s, history.EventYears, u"years"_s,
           u"1 to 50"_s);
    addAge(u"&At most"_s, u"Megabytes"_s, history.Megabytes, u"MB"_s,
           u"16 to 65536. When the file is full the oldest minutes give way."_s);
    row->addStretch(1);
    column->addLayout(row);
    return column->parentWidget();
}

} // namespace

QWidget* makeDataFilePage(DataFileControls& dataFile, HistoryControls& history, QWidget* parent) {
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    row->addWidget(makeRecording(dataFile, page), 2);
    row->addWidget(makeFile(dataFile, page), 5);
    column->addLayout(row);
    column->addWidget(makeHistory(history, page));
    column->addStretch(1);
    return page;
}

} // namespace skyhold
