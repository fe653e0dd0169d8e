// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/update_window.h"

#include "core/monitoring_core.h"
#include "platform/files.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/news_window.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/window/main_window.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kWidth = 400;

QPushButton* makeButton(const QString& caption, const QString& name, QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setMinimumSize(96, 32);
    return button;
}

} // namespace

UpdateWindow::UpdateWindow(UpdateControls& update, MonitoringCore& core,
                           const QString& instructionFolder, QWidget* parent)
    : QDialog(parent)
    , update_(update)
    , core_(core)
    , instructionFolder_(instructionFolder) {
    setObjectName(u"UpdateWindow"_s);
    setWindowTitle(u"Check update"_s);
    QVBoxLayout* column = dialogColumn(this);

    auto* versions = new QFormLayout;
    versions->setHorizontalSpacing(look::kMargin);
    versions->setVerticalSpacing(look::kGap);
    versions->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    const auto addVersion = [&](const QString& caption, const QString& name, Label& record) {
        auto* label = new QLabel(this);
        label->setObjectName(name);
        label->setTextFormat(Qt::PlainText);
        bind(label, record);
        versions->addRow(caption, label);
    };
    addVersion(u"This version"_s, u"Label1"_s, update_.Label1);
    addVersion(u"Newest version"_s, u"Label2"_s, update_.Label2);
    column->addLayout(versions);

    const auto addText = [&](const QString& name, Label& record) {
        auto* label = new QLabel(this);
        label->setObjectName(name);
        label->setWordWrap(true);
        label->setFixedWidth(kWidth);
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        bind(label, record);
        column->addWidget(label);
        return label;
    };
    update_.Warning.Caption = updateAddressWarning(core_.records.window.UpdateBaseAddress);
    update_.Warning.Visible = !update_.Warning.Caption.value().isEmpty();
    update_.Warning.ForeColor = kRed;
    addText(u"LblWarning"_s, update_.Warning);
    QLabel* status = addText(u"LblStatusLine"_s, update_.StatusLine);
    status->setMinimumHeight(2 * status->fontMetrics().lineSpacing());

    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    QPushButton* checkButton = makeButton(u"Check &now"_s, u"ButtCheck"_s, this);
    checkButton->setDefault(true);
    bind(checkButton, update_.CheckButton);
    connect(checkButton, &QPushButton::clicked, this, &UpdateWindow::check);
    row->addWidget(checkButton);
    auto* frame = new QWidget(this);
    frame->setObjectName(u"FrameDownload"_s);
    auto* inFrame = new QHBoxLayout(frame);
    inFrame->setContentsMargins(0, 0, 0, 0);
    QPushButton* downloadButton = makeButton(u"&Download"_s, u"ButtDownload"_s, frame);
    downloadButton->setAutoDefault(false);
    connect(downloadButton, &QPushButton::clicked, this, &UpdateWindow::download);
    inFrame->addWidget(downloadButton);
    bind(frame, update_.DownloadFrame);
    row->addWidget(frame);
    row->addStretch();
    QPushButton* closeButton = makeButton(u"Close"_s, u"ButtClose"_s, this);
    closeButton->setAutoDefault(false);
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);
    row->addWidget(closeButton);
    column->addLayout(row);
}

void UpdateWindow::done(int result) {
    remoteFile_.abort();
    QDialog::done(result);
}

void UpdateWindow::check() {
    update_.Left = x();
    update_.Top = y();
    const UpdateSource source{
        .fetch =
            [this](const QUrl& url) {
                return remoteFile_.fetch(url, [this](TransferState state) {
                    update_.StatusLine.Caption = transferStateText(state);
                });
            },
        .runningVersion = core_.version.text(),
        .instructionFolder = instructionFolder_,
    };
    CheckForUpdate(update_, core_.records.window, core_.settings, source,
                   [this](const QString& news) { showNewsOver(*this, core_, news); });
}

void UpdateWindow::download() {
    ChooseDownload(update_, [this](const Message& message) {
        return KivError(message, core_.version.title(), this).ask();
    });
    accept();
}

void runUpdateWindow(MonitoringCore& core, KivSHMainform& window) {
    UpdateControls update;
    update.Label1.Caption = core.version.text();
    const QString instructionFolder = writableProgramFolder();
    {
        UpdateWindow dialog(update, core, instructionFolder, &window);
        centreOver(&dialog, &window);
        execOver(dialog);
    }
    RunUpdaterIfChosen(update, programFolder(), instructionFolder, core.closeWindow);
}

} // namespace skyhold
