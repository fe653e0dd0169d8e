// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/why_window.h"

#include "history/reader.h"
#include "history/why_text.h"
#include "ui/look/look.h"

#include <QDateTime>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

QString whyThen(const QString& path, std::int64_t atMs) {
    HistoryReader reader(path);
    const QJsonObject document = reader.stateAt(atMs);
    if (!document.isEmpty())
        return whyText(document);
    return reader.fault().isEmpty() ? u"Nothing is known of that time."_s
                                    : u"Not known: "_s + reader.fault();
}

} // namespace

WhyWindow* WhyWindow::over(QWidget* parent) {
    auto* open = parent->findChild<WhyWindow*>();
    return open ? open : new WhyWindow(parent);
}

WhyWindow::WhyWindow(QWidget* parent)
    : QDialog(parent)
    , text_(new QPlainTextEdit(this)) {
    setObjectName(u"WhyWindow"_s);
    pool_.setMaxThreadCount(1);
    text_->setObjectName(u"TxtWhy"_s);
    text_->setReadOnly(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont)); // it has columns
    text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    text_->setAccessibleName(u"Why"_s);
    auto* close = new QPushButton(u"&Close"_s, this);
    close->setObjectName(u"ButtClose"_s);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(look::kMargin, look::kMargin, look::kMargin, look::kMargin);
    column->addWidget(text_);
    column->addWidget(close, 0, Qt::AlignRight);
    resize(660, 360);
}

WhyWindow::~WhyWindow() {
    pool_.waitForDone();
}

void WhyWindow::ask(const QString& historyPath, std::int64_t atMs) {
    askedMs_ = atMs;
    const QDateTime at = QDateTime::fromMSecsSinceEpoch(atMs);
    setWindowTitle(u"Why at "_s + at.toString(u"yyyy-MM-dd HH:mm:ss"_s));
    pool_.start([this, historyPath, atMs] {
        const QString text = whyThen(historyPath, atMs);
        QMetaObject::invokeMethod(this, [this, text, atMs] {
            if (atMs == askedMs_)
                text_->setPlainText(text);
        });
    });
    QDialog::show();
    raise();
    activateWindow();
}

} // namespace skyhold
