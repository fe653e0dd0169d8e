#include "ui/dialogs/help_window.h"

#include "platform/files.h"
#include "ui/look/look.h"

#include <QDesktopServices>
#include <QDir>
#include <QImage>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

QString findHelpPage(const QStringList& dataFolders) {
    for (const QString& folder : dataFolders) {
        QString page = joinPath(folder, u"doc/kiv-skyhold/README.md"_s);
        if (isReadableFile(page))
            return page;
    }
    return {};
}

QStringList helpFolders() {
    return QStringList{QDir::cleanPath(joinPath(programFolder(), u"../share"_s))} +
           QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
}

void showHelp(MonitoringCore& core, QWidget* parent, const QStringList& dataFolders) {
    const QString& file = core.records.window.HelpFile;
    if (!file.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(file)))
        return;
    const QString page = findHelpPage(dataFolders);
    if (!page.isEmpty()) {
        (new HelpWindow(page, parent))->show();
        return;
    }
    core.showMessage({file.isEmpty()
                          ? u"No help is installed: there is no Kiv_Skyhold.chm beside the program "
                            u"and no doc/kiv-skyhold/README.md in "_s +
                                dataFolders.join(u", "_s)
                          : u"There is no program that opens "_s + file,
                      MessageStyle::Ok, u"Help"_s});
}

namespace {

// Its pictures are no wider than the text, and in the look in force.
class HelpText : public QTextBrowser {
  public:
    using QTextBrowser::QTextBrowser;

    QVariant loadResource(int type, const QUrl& name) override {
        QVariant loaded = QTextBrowser::loadResource(type, name);
        QImage image;
        if (type != QTextDocument::ImageResource || !image.loadFromData(loaded.toByteArray()))
            return loaded;
        constexpr int kWidest = 680;
        if (image.width() > kWidest)
            image = image.scaledToWidth(kWidest, Qt::SmoothTransformation);
        return look::photo(image);
    }
};

} // namespace

HelpWindow::HelpWindow(const QString& page, QWidget* parent)
    : QDialog(parent)
    , text_(new HelpText(this)) {
    setObjectName(u"HelpWindow"_s);
    setWindowTitle(u"Help"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setSizeGripEnabled(true);
    text_->setObjectName(u"TxtHelp"_s);
    text_->setOpenExternalLinks(true);
    text_->setSource(QUrl::fromLocalFile(page), QTextDocument::MarkdownResource);

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
    column->addWidget(text_);
    column->addLayout(row);
    for (QPushButton* button : {back, close})
        button->setMinimumSize(96, 32);
    constexpr QSize kUsual(860, 660);
    resize(kUsual.boundedTo(parent->screen()->availableSize() - QSize(40, 60)));
}

} // namespace skyhold
