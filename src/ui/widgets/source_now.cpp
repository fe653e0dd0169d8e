// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/source_now.h"

#include "datafiles/station_check.h"
#include "platform/text_forms.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"
#include "ui/widgets/readout.h"

#include <QGridLayout>
#include <QLabel>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

QColor lampColour(SourceNow::State state) {
    switch (state) {
    case SourceNow::State::Good:
        return screenColour(kGreen);
    case SourceNow::State::Doubtful:
        return screenColour(kOrange);
    case SourceNow::State::None:
        break;
    }
    return screenColour(kRed);
}

QLabel* boldLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

} // namespace

SourceNow stationNow(const StationCheck& check) {
    SourceNow now{.state = check.status == 0   ? SourceNow::State::Good
                           : check.status == 1 ? SourceNow::State::Doubtful
                                               : SourceNow::State::None,
                  .outcome = check.outcome,
                  .age = {},
                  .values = {},
                  .remarks = check.remarks};
    if (check.ageSeconds)
        now.age = u"Written %1 ago"_s.arg(durationText(*check.ageSeconds));
    for (const StationCheck::Value& value : check.values)
        now.values.push_back({value.name, value.text.isEmpty() ? u"–"_s : value.text, value.note});
    return now;
}

SourceNowView::SourceNowView(const QString& title, const QString& name, QWidget* parent)
    : QWidget(parent)
    , lamp_(new LampWidget(14, this))
    , outcome_(boldLabel({}, this))
    , age_(makeDimmed({}, this))
    , table_(new QWidget(this))
    , grid_(new QGridLayout(table_))
    , remarks_(makeDimmed({}, this)) {
    table_->setObjectName(u"Values"_s + name);
    outcome_->setObjectName(u"LblOutcome"_s + name);
    age_->setObjectName(u"LblAge"_s + name);
    remarks_->setObjectName(u"LblRemarks"_s + name);
    for (QLabel* label : {outcome_, remarks_})
        label->setWordWrap(true);
    grid_->setContentsMargins(0, 4, 0, 4);
    grid_->setHorizontalSpacing(look::kMargin);
    grid_->setVerticalSpacing(4);
    grid_->setColumnStretch(2, 1);
    auto* head = new QHBoxLayout;
    head->setSpacing(look::kGap);
    head->addWidget(lamp_);
    head->addWidget(boldLabel(title, this), 1);
    head->addWidget(age_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addLayout(head);
    column->addWidget(outcome_);
    column->addWidget(table_);
    column->addWidget(remarks_);
    column->addStretch();
}

// The labels are used again: a screen reader stays where it is.
void SourceNowView::show(const SourceNow& now) {
    lamp_->setColour(lampColour(now.state));
    outcome_->setText(now.outcome);
    age_->setText(now.age);
    remarks_->setText(now.remarks.join(u'\n'));
    remarks_->setVisible(!now.remarks.isEmpty());
    const auto put = [this](int row, int column, const QString& text) {
        QLayoutItem* item = grid_->itemAtPosition(row, column);
        auto* label = item ? static_cast<QLabel*>(item->widget()) : nullptr;
        if (!label) {
            label = column == 1 ? boldLabel({}, table_) : makeDimmed({}, table_);
            label->setTextFormat(Qt::PlainText);
            if (column == 1)
                label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            grid_->addWidget(label, row, column);
        }
        label->setText(text);
        label->setVisible(!text.isEmpty());
    };
    const int rows = std::max(grid_->rowCount(), static_cast<int>(now.values.size()));
    for (int row = 0; row < rows; ++row) {
        const bool used = row < static_cast<int>(now.values.size());
        const SourceNow::Value value =
            used ? now.values[static_cast<std::size_t>(row)] : SourceNow::Value();
        put(row, 0, value.name);
        put(row, 1, value.value);
        put(row, 2, value.note);
    }
    table_->setVisible(!now.values.empty());
}

} // namespace skyhold
