// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/station_check_view.h"

#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"
#include "ui/widgets/readout.h"

#include <QDialog>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr std::array kLampColours{kGreen, kOrange, kRed}; // by a check's status

} // namespace

StationCheckView::StationCheckView(QWidget* parent)
    : QWidget(parent)
    , lamp_(new LampWidget(14, this))
    , outcome_(new QLabel(this))
    , brief_(makeDimmed({}, this))
    , entries_(new QPushButton(u"Every entry…"_s, this)) {
    setObjectName(u"StationCheck"_s);
    outcome_->setObjectName(u"LblCheckOutcome"_s);
    outcome_->setTextFormat(Qt::PlainText);
    QFont bold = outcome_->font();
    bold.setBold(true);
    outcome_->setFont(bold);
    brief_->setObjectName(u"LblCheckBrief"_s);
    brief_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    for (QLabel* label : {outcome_, brief_})
        label->setWordWrap(true);
    entries_->setObjectName(u"ButtCheckEntries"_s);
    entries_->setAutoDefault(false);
    entries_->setToolTip(u"What each entry of the file came to"_s);
    connect(entries_, &QPushButton::clicked, this, &StationCheckView::showEntries);

    auto* head = new QHBoxLayout;
    head->setSpacing(look::kGap);
    head->addWidget(lamp_);
    head->addWidget(outcome_, 1);
    head->addWidget(entries_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addLayout(head);
    column->addWidget(brief_);
}

void StationCheckView::showCheck(const StationCheck& check) {
    lines_ = check.lines;
    lamp_->setUnlit(false);
    const auto status = static_cast<std::size_t>(std::clamp(check.status, 0, 2));
    lamp_->setColour(screenColour(kLampColours[status]));
    outcome_->setText(check.outcome);
    brief_->setText(check.brief.join(u'\n'));
    brief_->setVisible(!check.brief.isEmpty());
    entries_->setEnabled(check.lines.size() > 1);
}

void StationCheckView::showNone(const QString& why) {
    lines_.clear();
    lamp_->setUnlit(true);
    outcome_->setText(why);
    brief_->hide();
    entries_->setEnabled(false);
}

// Beside the window that asks: the monitor goes on meanwhile.
void StationCheckView::showEntries() {
    auto* dialog = new QDialog(window());
    dialog->setObjectName(u"StationEntries"_s);
    dialog->setWindowTitle(u"The station's file"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    auto* text = new QPlainTextEdit(lines_.join(u'\n'), dialog);
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setTabChangesFocus(true);
    auto* close = new QPushButton(u"&Close"_s, dialog);
    close->setObjectName(u"ButtClose"_s);
    close->setDefault(true);
    close->setMinimumSize(96, 32);
    connect(close, &QPushButton::clicked, dialog, &QDialog::accept);
    auto* column = new QVBoxLayout(dialog);
    column->setContentsMargins(look::kMargin, look::kMargin, look::kMargin, look::kMargin);
    column->addWidget(text);
    column->addWidget(close, 0, Qt::AlignRight);
    constexpr QSize kUsual(760, 460);
    dialog->resize(kUsual);
    dialog->show();
}

} // namespace skyhold
