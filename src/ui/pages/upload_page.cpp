// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/upload_page.h"

#include "datafiles/upload_list.h"
#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/kiv_file_list.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/readout.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

void addSwitch(QVBoxLayout* column, UploadControls& upload, CheckBox& flgUpload) {
    QWidget* group = column->parentWidget();
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    QCheckBox* box = makeCheck(group, u"flgUpload"_s, u"Upload files i&n a session"_s, flgUpload);
    box->setToolTip(u"What did not arrive is sent again"_s);
    row->addWidget(box);
    row->addStretch();
    std::array<LampWidget*, 2> lamps{};
    for (std::size_t i = 0; i < lamps.size(); ++i) {
        lamps[i] = new LampWidget(14, group);
        lamps[i]->setObjectName(indexed("LEDUpload", i));
        lamps[i]->setToolTip(
            u"Blinks green when files are handed to the uploader, yellow while they "
            "wait for it, red when it cannot be started."_s);
        row->addWidget(lamps[i]);
    }
    bind(lamps[0], lamps[1], upload.LEDUpload);
    column->addLayout(row);
    addHint(column, u"They are sent together, once each has changed since it was last sent."_s);
}

QWidget* makeServer(UploadControls& upload, CheckBox& flgUpload, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Server"_s);
    QWidget* group = column->parentWidget();
    addSwitch(column, upload, flgUpload);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(1, 1);
    column->addLayout(grid);
    const auto addRow = [&](const QString& caption, QWidget* box, const QString& tip,
                            Qt::Alignment alignment = {}) {
        auto* label = new QLabel(caption, group);
        label->setBuddy(box);
        label->setToolTip(tip);
        box->setToolTip(tip);
        const int row = grid->rowCount();
        grid->addWidget(label, row, 0);
        grid->addWidget(box, row, 1, alignment);
    };
    const auto addText = [&](const QString& caption, const QString& name, TextBox& record,
                             const QString& tip) {
        QLineEdit* box = makeText(group, name, record);
        addRow(caption, box, tip);
        return box;
    };
    onLeaving(addText(u"Add&ress"_s, u"ServerAddress"_s, upload.ServerAddress,
                      u"A host (plain FTP), or ftpes://, ftps:// or sftp:// and a host"_s),
              [&upload] { ServerAddress_LostFocus(upload.ServerAddress); });
    onLeaving(addText(u"Path"_s, u"ServerPath"_s, upload.ServerPath,
                      u"The folder on the server; empty: the one that it begins in"_s),
              [&upload] { ServerPath_LostFocus(upload.ServerPath); });
    addText(u"User na&me"_s, u"UserName"_s, upload.UserName, u"On the server"_s);
    addText(u"Pass&word"_s, u"PassWord"_s, upload.PassWord,
            u"Kept in the settings file, which only you can read"_s)
        ->setEchoMode(QLineEdit::Password);
    auto* cycle = new QComboBox(group);
    cycle->setObjectName(u"RefreshUpload"_s);
    bind(cycle, upload.RefreshUpload);
    addRow(u"Check c&ycle"_s, cycle,
           u"How often the monitor looks whether the files have changed"_s, Qt::AlignLeft);
    addRow(u"Timeout(sec)"_s, makeNumber(group, u"TimeoutUPLOAD"_s, upload.TimeoutUPLOAD),
           u"After how many seconds without an answer of the server an upload is given up"_s,
           Qt::AlignLeft);
    addRow(u"Upload second"_s, makeNumber(group, u"UploadOnSec"_s, upload.UploadOnSec),
           u"Kept for other programs that read the settings; this monitor does not use it"_s,
           Qt::AlignLeft);
    column->addStretch();
    return group;
}

// What became of the last uploads, with their times.
void addResults(QVBoxLayout* column, UploadControls& upload) {
    QWidget* group = column->parentWidget();
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(look::kGap);
    grid->setColumnStretch(1, 1);
    column->addLayout(grid);
    const auto addResult = [&](const QString& caption, const QString& name, Label& record) {
        auto* label = new QLabel(group);
        label->setObjectName(name);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setWordWrap(true);
        bind(label, record);
        const int row = grid->rowCount();
        grid->addWidget(new QLabel(caption, group), row, 0, Qt::AlignTop);
        grid->addWidget(label, row, 1, Qt::AlignTop);
    };
    addResult(u"Last success"_s, u"LblLastSuccess"_s, upload.LastSuccess);
    addResult(u"Last error"_s, u"LblLastError"_s, upload.LastError);
}

QWidget* makeFiles(UploadControls& upload, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Files"_s);
    QWidget* group = column->parentWidget();
    auto* list = new KivFileList(upload, group);
    column->addWidget(list, 1);

    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    column->addLayout(row);
    const auto addButton = [&](const QString& name, const QString& text, Button& record, auto act) {
        auto* button = new QPushButton(text, group);
        button->setObjectName(name);
        bind(button, record);
        QObject::connect(button, &QPushButton::clicked, group, act);
        row->addWidget(button);
    };
    addButton(u"ButtFileADD"_s, u"&Add…"_s, upload.ButtFileADD, [list] { list->addFiles(); });
    addButton(u"ButtFileDEL"_s, u"D&elete"_s, upload.ButtFileDEL,
              [&upload] { DeleteSelectedFile(upload); });
    row->addStretch();
    QCheckBox* once = makeCheck(group, u"UploadOnce"_s, u"Upload once"_s, upload.UploadOnce);
    once->setToolTip(u"Send the selected file when it has changed, and never wait for it"_s);
    row->addWidget(once);
    row->addSpacing(look::kGap);
    row->addWidget(
        makeCheck(group, u"DispFileNameOnly"_s, u"File names only"_s, upload.DispFileNameOnly));
    addResults(column, upload);
    return group;
}

} // namespace

QWidget* makeUploadPage(UploadControls& upload, CheckBox& flgUpload, QWidget* parent) {
    auto* page = new QWidget(parent);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    row->addWidget(makeServer(upload, flgUpload, page), 2);
    row->addWidget(makeFiles(upload, page), 3);
    pageColumn(page)->addLayout(row);
    return page;
}

} // namespace skyhold
