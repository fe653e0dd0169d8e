// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/night_log.h"

#include "platform/text_forms.h"
#include "ui/dialogs/choose_path.h"
#include "ui/look/look.h"
#include "ui/look/window_unit.h"
#include "ui/widgets/framed_button.h"
#include "ui/widgets/timeline_paint.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QSaveFile>
#include <QStyledItemDelegate>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kEntry = Qt::UserRole; // its place in the log

// Two lines: state, time, title and how long; below them the cause.
class EntryDelegate : public QStyledItemDelegate {
  public:
    EntryDelegate(const std::vector<LogEntry>& entries, QObject* parent)
        : QStyledItemDelegate(parent)
        , entries_(entries) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {100, 3 * textOf(option) + 3};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto at = static_cast<std::size_t>(index.data(kEntry).toInt());
        if (at >= entries_.size())
            return;
        const LogEntry& entry = entries_[at];
        const TimelineInk ink = timelineInk();
        const int text = textOf(option);
        const bool chosen = (option.state & QStyle::State_Selected) != 0;
        const QRectF row = QRectF(option.rect).adjusted(0, 0, -8, 0);
        painter->save();
        if (chosen)
            painter->fillRect(option.rect, ink.outlines ? ink.grid : look::kButton);
        if (at == 0)
            painter->fillRect(QRectF(row.left(), row.top() + 2, 3, row.height() - 4), ink.text);
        painter->setPen(QPen(ink.edge, 1));
        painter->drawLine(row.bottomLeft() + QPointF(6, 0), row.bottomRight());
        const double line = row.height() / 2 - 2;
        const QRectF first(row.left() + 10 + 1.8 * text, row.top() + 2,
                           row.width() - 10 - 1.8 * text, line);
        paintState(*painter,
                   {row.left() + 10, first.center().y() - 0.3 * text, 1.2 * text, 1.2 * text},
                   entry.segment.state);
        const QString lasts = durationText(entry.segment.time.lengthMs() / 1'000);
        painter->setFont(pixelFont(text));
        const double lastsWidth = painter->fontMetrics().horizontalAdvance(lasts) + 8;
        painter->setPen(at == 0 ? ink.text : ink.dim);
        painter->drawText(first, Qt::AlignRight | Qt::AlignVCenter, lasts);
        painter->setPen(ink.text);
        const QString time = clockText(entry.segment.time.fromMs);
        painter->drawText(first, Qt::AlignLeft | Qt::AlignVCenter, time);
        const double timeWidth = painter->fontMetrics().horizontalAdvance(time + u"  "_s);
        painter->setFont(pixelFont(text, true));
        const double titleWidth = first.width() - timeWidth - lastsWidth;
        painter->drawText(
            QRectF(first.left() + timeWidth, first.top(), titleWidth, first.height()),
            Qt::AlignLeft | Qt::AlignVCenter,
            painter->fontMetrics().elidedText(entry.title, Qt::ElideRight, int(titleWidth)));
        painter->setFont(pixelFont(std::max(text - 1, 11)));
        painter->setPen(ink.dim);
        const QRectF second(first.left(), first.bottom(), first.width(), line - 2);
        painter->drawText(
            second, Qt::AlignLeft | Qt::AlignVCenter,
            painter->fontMetrics().elidedText(entry.cause, Qt::ElideRight, int(second.width())));
        if ((option.state & QStyle::State_HasFocus) != 0) {
            painter->setPen(QPen(look::kAccent, 1));
            painter->drawRect(QRectF(option.rect).adjusted(0.5, 0.5, -1.5, -1.5));
        }
        painter->restore();
    }

  private:
    static int textOf(const QStyleOptionViewItem& option) {
        const QWidget* widget = option.widget;
        const QSizeF whole = widget ? QSizeF(widget->window()->size()) : QSizeF(1280, 800);
        const double unit = std::min(whole.width() / 1280, whole.height() / 800);
        return std::max(12, static_cast<int>(std::lround(12 * unit)));
    }

    const std::vector<LogEntry>& entries_;
};

// As it would be for the file of a night: "Kiv_Skyhold-log-2026-11-23.csv".
QString suggestedName(const std::vector<LogEntry>& entries) {
    const QDateTime last =
        QDateTime::fromMSecsSinceEpoch(entries.empty() ? 0 : entries.front().segment.time.fromMs);
    return u"Kiv_Skyhold-log-%1.csv"_s.arg(last.toString(u"yyyy-MM-dd"_s));
}

} // namespace

NightLog::NightLog(QWidget* parent)
    : QWidget(parent)
    , heading_(new QLabel(u"Log"_s, this))
    , filter_(new QLineEdit(this))
    , list_(new QListWidget(this))
    , copy_(new FramedButton(u"Copy"_s, this))
    , save_(new FramedButton(u"CSV…"_s, this)) {
    setObjectName(u"NightLog"_s);
    filter_->setObjectName(u"TxtLogFilter"_s);
    filter_->setPlaceholderText(u"Filter"_s);
    filter_->setAccessibleName(u"Filter of the log"_s);
    filter_->setToolTip(u"Shows the entries that have all of these words"_s);
    filter_->setClearButtonEnabled(true);
    list_->setObjectName(u"LstLog"_s);
    list_->setAccessibleName(u"Log of the verdict"_s);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setItemDelegate(new EntryDelegate(entries_, list_));
    list_->setUniformItemSizes(true);
    copy_->setObjectName(u"ButtLogCopy"_s);
    copy_->setToolTip(u"Copies the selected entries, or all that are shown (Ctrl+C)"_s);
    save_->setObjectName(u"ButtLogCsv"_s);
    save_->setToolTip(u"Writes the selected entries, or all that are shown, to a CSV file"_s);

    auto* head = new QHBoxLayout;
    head->setSpacing(6);
    head->addWidget(heading_);
    head->addWidget(filter_, 1);
    head->addWidget(copy_);
    head->addWidget(save_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 4, 4, 4);
    column->setSpacing(4);
    column->addLayout(head);
    column->addWidget(list_, 1);

    connect(filter_, &QLineEdit::textChanged, this, &NightLog::fill);
    connect(copy_, &QPushButton::clicked, this, &NightLog::copy);
    connect(save_, &QPushButton::clicked, this, &NightLog::save);
    auto* copyKey = new QAction(list_);
    copyKey->setShortcut(QKeySequence::Copy);
    copyKey->setShortcutContext(Qt::WidgetShortcut);
    list_->addAction(copyKey);
    connect(copyKey, &QAction::triggered, this, &NightLog::copy);
    const auto go = [this](const QListWidgetItem* item) {
        if (onEntry)
            onEntry(entries_[static_cast<std::size_t>(item->data(kEntry).toInt())]);
    };
    connect(list_, &QListWidget::itemClicked, this, go);
    connect(list_, &QListWidget::itemActivated, this, go);
    chooseFile = [this](const QString& suggested) {
        return chooseLogFile(this, suggested);
    };
    followLook(this, [this] {
        setAutoFillBackground(true);
        QPalette palette = this->palette();
        palette.setColor(QPalette::Window, timelineInk().ground);
        palette.setColor(QPalette::Base, timelineInk().ground);
        setPalette(palette);
        list_->setPalette(palette);
    });
}

void NightLog::show(std::vector<LogEntry> entries) {
    entries_ = std::move(entries);
    fill();
}

// Entries are as high as the window's letters, and a list asks for that once.
void NightLog::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const double unit = std::max(windowUnit(*this), 1.0);
    heading_->setFont(pixelFont(qRound(13 * unit), true));
    for (QWidget* part : std::initializer_list<QWidget*>{filter_, copy_, save_})
        part->setFont(pixelFont(qRound(12 * unit)));
    list_->doItemsLayout();
}

void NightLog::fill() {
    std::vector<std::int64_t> selected;
    std::int64_t current = -1;
    for (int i = 0; i < list_->count(); ++i) {
        const std::int64_t from = list_->item(i)->data(kEntry + 1).toLongLong();
        if (list_->item(i)->isSelected())
            selected.push_back(from);
        if (i == list_->currentRow())
            current = from;
    }
    const QListWidgetItem* top = list_->itemAt(list_->viewport()->rect().topLeft());
    const std::int64_t scrolledTo =
        top && list_->row(top) > 0 ? top->data(kEntry + 1).toLongLong() : -1;
    const QListWidgetItem* atTop = nullptr;
    list_->clear();
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!matches(entries_[i], filter_->text()))
            continue;
        const std::int64_t from = entries_[i].segment.time.fromMs;
        auto* item = new QListWidgetItem(logLine(entries_[i]).replace(u'\t', u"  "_s), list_);
        item->setData(kEntry, static_cast<int>(i));
        item->setData(kEntry + 1, static_cast<qlonglong>(from));
        item->setToolTip(entries_[i].cause);
        if (from == current)
            list_->setCurrentItem(item, QItemSelectionModel::NoUpdate);
        item->setSelected(std::ranges::count(selected, from) > 0);
        if (from == scrolledTo)
            atTop = item;
    }
    if (atTop)
        list_->scrollToItem(atTop, QAbstractItemView::PositionAtTop);
    copy_->setEnabled(list_->count() > 0);
    save_->setEnabled(list_->count() > 0);
}

std::vector<LogEntry> NightLog::chosen() const {
    std::vector<LogEntry> all;
    const bool some = !list_->selectedItems().isEmpty();
    for (int i = 0; i < list_->count(); ++i) {
        const QListWidgetItem* item = list_->item(i);
        if (!some || item->isSelected())
            all.push_back(entries_[static_cast<std::size_t>(item->data(kEntry).toInt())]);
    }
    return all;
}

void NightLog::copy() {
    QStringList lines;
    for (const LogEntry& entry : chosen())
        lines += logLine(entry);
    QApplication::clipboard()->setText(lines.join(u'\n'));
}

void NightLog::save() {
    const std::vector<LogEntry> entries = chosen();
    const QString path = chooseFile(suggestedName(entries));
    if (path.isEmpty())
        return;
    QSaveFile file(path);
    const QByteArray text = logCsv(entries).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        if (onFault)
            onFault(u"The log cannot be written to %1: %2"_s.arg(path, file.errorString()));
    }
}

} // namespace skyhold
