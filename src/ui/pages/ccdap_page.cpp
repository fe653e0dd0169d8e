// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/ccdap_page.h"

#include "ui/look/look.h"
#include "ui/pages/page_parts.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

QWidget* makeCcdapPage(CcdapControls& ccdap, QWidget* parent) {
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    auto* group = new QGroupBox(u"CCDAutopilot weather file"_s, page);
    group->setMaximumWidth(820);
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(14, 12, 14, 14);
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(look::kGap);

    auto* caption = new QLabel(u"File &name"_s, group);
    QLineEdit* name = makeText(group, u"FileNameCCDAP4"_s, ccdap.FileNameCCDAP4);
    name->setPlaceholderText(u"Without a name no file is written"_s);
    caption->setBuddy(name);

    const FolderChoice choice =
        makeFolderChoice(group, u"ButtCCDAP4"_s, ccdap.ButtCCDAP4, u"LblPathNameCCDAP4"_s,
                         ccdap.LblPathNameCCDAP4, u"Select a folder to store the CCDAP4 file."_s);

    grid->addWidget(caption, 0, 0);
    grid->addWidget(name, 0, 1);
    grid->addWidget(choice.button, 1, 0);
    grid->addWidget(choice.folder, 1, 1);
    grid->setColumnStretch(1, 1);
    auto* notes = new QVBoxLayout;
    grid->addLayout(notes, 2, 0, 1, 2);
    addHint(notes, u"The file is rewritten in every read cycle: one record of 100 characters."_s);
    column->addWidget(group);
    column->addStretch();
    return page;
}

} // namespace skyhold
