// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/images_page.h"

#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/bind.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

QWidget* makeWhich(GraphControls& graphs, QWidget* page) {
    struct Image {
        QString title;
        const char* suffix; // of the control names
    };
    const std::array<Image, kGraphCount> images{{{u"Wind"_s, "Wind"},
                                                 {u"Gust"_s, "Gust"},
                                                 {u"Direction"_s, "Dir"},
                                                 {u"Dew-point spread"_s, "Dew"},
                                                 {u"Humidity"_s, "Hum"},
                                                 {u"Temperature"_s, "Temp"}}};
    QVBoxLayout* column = addGroup(page, u"Save these graphs as images"_s);
    QWidget* group = column->parentWidget();
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(8);
    for (std::size_t i = 0; i < images.size(); ++i)
        grid->addWidget(makeCheck(group,
                                  QString::fromLatin1("GraphImage" + QByteArray(images[i].suffix)),
                                  images[i].title, graphs.GraphImage[i]),
                        static_cast<int>(i) / 3, static_cast<int>(i) % 3);
    column->addLayout(grid);
    column->addStretch();
    return group;
}

// The quality keeps its place while it is hidden.
QWidget* makeFormat(GraphControls& graphs, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Format"_s);
    QWidget* group = column->parentWidget();
    column->addWidget(makeCheck(group, u"ImageType"_s, {}, graphs.ImageType));
    auto* quality = new QWidget(group);
    QSizePolicy keepsPlace = quality->sizePolicy();
    keepsPlace.setRetainSizeWhenHidden(true);
    quality->setSizePolicy(keepsPlace);
    auto* row = new QHBoxLayout(quality);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(look::kMargin);
    row->addWidget(new QLabel(u"Quality"_s, quality));
    addOptions(row, "ImageQuality", {u"Top"_s, u"Good"_s, u"Normal"_s}, graphs.ImageQuality);
    followVisible(quality, graphs.ImageQuality.Visible);
    column->addWidget(quality);
    column->addStretch();
    return group;
}

QWidget* makeFolder(GraphControls& graphs, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Folder"_s);
    const FolderChoice choice = makeFolderChoice(
        column->parentWidget(), u"ButtGraphImagePath"_s, graphs.ButtGraphImagePath,
        u"GraphImagePath"_s, graphs.GraphImagePath, u"Select a folder to store the images."_s);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    row->addWidget(choice.button);
    row->addWidget(choice.folder, 1);
    column->addLayout(row);
    addHint(column, u"The files are named Kiv_ImageWindCondition, …GustCondition, "
                    u"…WindDirCondition, …DewCondition, …HumCondition and …TempCondition, and are "
                    u"written anew in every read cycle."_s);
    return column->parentWidget();
}

} // namespace

QWidget* makeImagesPage(GraphControls& graphs, QWidget* parent) {
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    row->addWidget(makeWhich(graphs, page), 1);
    row->addWidget(makeFormat(graphs, page), 1);
    column->addLayout(row);
    column->addWidget(makeFolder(graphs, page));
    column->addStretch(1);
    return page;
}

} // namespace skyhold
