// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/help_window.h"

#include "platform/files.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"

#include <QDesktopServices>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QStandardPaths>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

QString findInHelp(const QStringList& dataFolders, const QString& name) {
    for (const QString& folder : dataFolders) {
        QString page = joinPath(folder, u"doc/kiv-skyhold/"_s + name);
        if (isReadableFile(page))
            return page;
    }
    return {};
}

HelpWindow* helpWindowOver(QWidget* parent) {
    auto* open = parent->findChild<HelpWindow*>();
    return open ? open : new HelpWindow(parent);
}

} // namespace

QString findGuidePage(const QStringList& dataFolders, const QString& name) {
    return findInHelp(dataFolders, u"guide/"_s + name);
}

QStringList helpFolders() {
    return QStringList{QDir::cleanPath(joinPath(programFolder(), u"../share"_s))} +
           QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
}

void showHelp(MonitoringCore& core, QWidget* parent, const QStringList& dataFolders,
              const QString& page) {
    const QString& file = core.records.window.HelpFile;
    if (!file.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(file)))
        return;
    const QString found = findGuidePage(dataFolders, page);
    const QString start = findGuidePage(dataFolders, kGuideStart);
    const QString readme = findInHelp(dataFolders, u"README.md"_s);
    if (!found.isEmpty())
        helpWindowOver(parent)->open(found);
    else if (!start.isEmpty())
        helpWindowOver(parent)->open(
            start, u"The guide has no page of its own for this (%1 is not installed)."_s.arg(page));
    else if (!readme.isEmpty())
        helpWindowOver(parent)->open(
            readme, u"The user guide is not installed. This is the program's README."_s);
    else
        core.showMessage({file.isEmpty()
                              ? u"No help is installed: there is no Kiv_Skyhold.chm beside the "
                                u"program and no doc/kiv-skyhold/guide/%1 in "_s.arg(page) +
                                    dataFolders.join(u", "_s)
                              : u"There is no program that opens "_s + file,
                          MessageStyle::Ok, u"Help"_s});
}

namespace {

// Its pictures are no wider than the text. Pictures and text are in the look in force: a page's own
// white ground would undo a night's dark adaption.
class HelpText : public QTextBrowser {
  public:
    using QTextBrowser::QTextBrowser;

    QVariant loadResource(int type, const QUrl& name) override {
        if (type == QTextDocument::StyleSheetResource)
            return QByteArray();
        QVariant loaded = QTextBrowser::loadResource(type, name);
        // A page's own type is not known before it is loaded.
        if (type == QTextDocument::HtmlResource || type == QTextDocument::UnknownResource)
            return withoutStyle(loaded.toByteArray());
        QImage image;
        if (type != QTextDocument::ImageResource || !image.loadFromData(loaded.toByteArray()))
            return loaded;
        constexpr int kWidest = 680;
        if (image.width() > kWidest)
            image = image.scaledToWidth(kWidest, Qt::SmoothTransformation);
        return look::photo(image);
    }

  private:
    static QByteArray withoutStyle(const QByteArray& page) {
        static const QRegularExpression kStyles(
            u"<style.*?</style>|\\s(style|bgcolor|color)=(\"[^\"]*\"|'[^']*')"_s,
            QRegularExpression::CaseInsensitiveOption |
                QRegularExpression::DotMatchesEverythingOption);
        return QString::fromUtf8(page).remove(kStyles).toUtf8();
    }
};

} // namespace

HelpWindow::HelpWindow(QWidget* parent)
    : QDialog(parent)
    , note_(makeDimmed({}, this))
    , text_(new HelpText(this)) {
    setObjectName(u"HelpWindow"_s);
    setWindowTitle(u"Help"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setSizeGripEnabled(true);
    text_->setObjectName(u"TxtHelp"_s);
    text_->setOpenExternalLinks(true);
    note_->setObjectName(u"LblNote"_s);
    note_->setWordWrap(true);

    auto* back = new QPushButton(u"&Back"_s, this);
    back->setObjectName(u"ButtBack"_s);
    back->setAutoDefault(false);
    back->setEnabled(false);
    connect(back, &QPushButton::clicked, text_, &QTextBrowser::backward);
    connect(text_, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    auto* close = new QPushButton(u"&Close"_s, this);
    close->setObjectName(u"ButtClose"_s);
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto* row = new QHBoxLayout;
    row->setSpacing(look::kGap);
    row->addWidget(back);
    row->addStretch();
    row->addWidget(close);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(look::kMargin, look::kMargin, look::kMargin, look::kMargin);
    column->addWidget(note_);
    column->addWidget(text_);
    column->addLayout(row);
    for (QPushButton* button : {back, close})
        button->setMinimumSize(96, 32);
    constexpr QSize kUsual(860, 660);
    resize(kUsual.boundedTo(parent->screen()->availableSize() - QSize(40, 60)));
}

void HelpWindow::open(const QString& page, const QString& note) {
    note_->setText(note);
    note_->setVisible(!note.isEmpty());
    text_->setSource(QUrl::fromLocalFile(page));
    show();
    raise();
    activateWindow();
}

} // namespace skyhold
