// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/settings_pages.h"

#include "ui/dialogs/help_window.h"
#include "ui/look/window_unit.h"
#include "ui/pages/caution_page.h"
#include "ui/pages/ccdap_page.h"
#include "ui/pages/data_file_page.h"
#include "ui/pages/graphs_page.h"
#include "ui/pages/images_page.h"
#include "ui/pages/limits_page.h"
#include "ui/pages/network_page.h"
#include "ui/pages/settings_changes.h"
#include "ui/pages/sources_page.h"
#include "ui/pages/tonight_page.h"
#include "ui/pages/upload_page.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/grow_page.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// Scrolls to the kept position as soon as, and whenever, the pane is long enough, and keeps where
// the user scrolls to.
void followScroll(QScrollBar* bar, QProperty<int>& position) {
    QObject::connect(bar, &QScrollBar::rangeChanged, bar,
                     [bar, &position] { bar->setValue(position); });
    QObject::connect(bar, &QScrollBar::valueChanged, bar, [bar, &position](int value) {
        const bool cutShort = value == bar->maximum() && value < position;
        if (!cutShort)
            position = value;
    });
}

// Brings what the keyboard goes to into view. What a pressed mouse goes to must not move away
// under it.
void followFocus(QScrollArea* pane) {
    QObject::connect(qApp, &QApplication::focusChanged, pane, [pane](QWidget*, QWidget* now) {
        constexpr int kAround = 24;
        if (now && pane->isAncestorOf(now) && QApplication::mouseButtons() == Qt::NoButton)
            pane->ensureWidgetVisible(now, kAround, kAround);
    });
}

struct GuideRow {
    Page page;
    const char16_t* file;
};

constexpr std::array kGuide{
    GuideRow{Page::Sources, u"sources.html"},    GuideRow{Page::Limits, u"limits.html"},
    GuideRow{Page::Caution, u"caution.html"},    GuideRow{Page::Graphs, u"graphs.html"},
    GuideRow{Page::DataFile, u"data-file.html"}, GuideRow{Page::Ccdap, u"ccdautopilot.html"},
    GuideRow{Page::Images, u"images.html"},      GuideRow{Page::Upload, u"upload.html"},
    GuideRow{Page::Network, u"network.html"},    GuideRow{Page::Tonight, u"tonight.html"}};

// Tab leads from `before` to what takes the focus within `root`, in the order of its making. The
// last of it.
QWidget* focusAfter(QWidget* before, QWidget* root) {
    std::vector<QWidget*> within;
    for (QWidget* widget = root->nextInFocusChain(); widget != root;
         widget = widget->nextInFocusChain()) {
        if (root->isAncestorOf(widget) && widget->focusPolicy() != Qt::NoFocus)
            within.push_back(widget);
    }
    for (QWidget* widget : within) {
        QWidget::setTabOrder(before, widget);
        before = widget;
    }
    return before;
}

} // namespace

QString guidePage(Page page) {
    const auto* const row = std::ranges::find(kGuide, page, &GuideRow::page);
    return row == kGuide.end() ? kGuideStart : QString::fromUtf16(row->file);
}

SettingsPages::SettingsPages(MonitoringCore& core, QWidget* parent)
    : QTabWidget(parent)
    , core_(core)
    , changes_(new SettingsChanges(core, this)) {
    setObjectName(u"SSTab1"_s);
    setDocumentMode(true);
    addCorner();
    addPages();
    const auto pane = [this](int index, const QString& name) {
        auto* area = static_cast<QScrollArea*>(widget(index));
        area->setObjectName(name);
        return area;
    };
    const auto rememberScroll = [this](QScrollBar* bar, const QString& name,
                                       QProperty<int>& position) {
        bar->setObjectName(name);
        followScroll(bar, position);
    };
    WindowControls& window = core_.records.window;
    rememberScroll(pane(1, u"PicFrame0"_s)->verticalScrollBar(), u"VScrol0"_s, window.VScrollPos0);
    rememberScroll(pane(2, u"PicFrame1"_s)->verticalScrollBar(), u"VScrol1"_s, window.VScrollPos1);
    rememberScroll(pane(3, u"PicFrame2"_s)->horizontalScrollBar(), u"HScrol2"_s,
                   window.HScrollPos2);
    rememberScroll(pane(4, u"Picture3"_s)->verticalScrollBar(), u"VScrol3"_s, window.VScrollPos3);
    connect(new QShortcut(QKeySequence::NextChild, this), &QShortcut::activated, this,
            [this] { step(1); });
    connect(new QShortcut(QKeySequence::PreviousChild, this), &QShortcut::activated, this,
            [this] { step(-1); });
    makeShownSheet();
}

void SettingsPages::addPages() {
    Records& records = core_.records;
    WindowControls& window = records.window;
    addTonight();
    addSheet(this, u"S&ources"_s,
             [this](QWidget* parent) { return makeSourcesPage(core_, parent); });

    QTabWidget* conditions = addStrip(u"SSTab2"_s, u"&Conditions"_s);
    addSheet(conditions, u"Li&mits and alarms"_s,
             [this](QWidget* parent) { return makeLimitsPage(core_, *changes_, parent); });
    addSheet(conditions, u"Cautio&n"_s, [&records](QWidget* parent) {
        return makeCautionPage(records.conditions, records.notices, parent);
    });

    addSheet(this, u"&Graphs"_s, [this](QWidget* parent) { return makeGraphsPage(core_, parent); });

    QTabWidget* files = addStrip(u"SSTab3"_s, u"Fi&les"_s);
    addSheet(files, u"&Data file"_s, [&records](QWidget* parent) {
        return makeDataFilePage(records.dataFile, records.historyKeep, parent);
    });
    addSheet(files, u"CCDAuto&pilot file"_s,
             [&records](QWidget* parent) { return makeCcdapPage(records.ccdap, parent); });
    addSheet(files, u"&Images"_s,
             [&records](QWidget* parent) { return makeImagesPage(records.graphs, parent); });
    addSheet(files, u"&Upload"_s, [&records](QWidget* parent) {
        return makeUploadPage(records.upload, records.session.flgUpload, parent);
    });

    addSheet(this, u"Networ&k"_s,
             [&records](QWidget* parent) { return makeNetworkPage(records.network, parent); });

    // Tonight stands before the pages that are kept.
    followStrip(this, window.SSTab1, -1);
    followStrip(conditions, window.SSTab2, 1);
    followStrip(files, window.SSTab3);
}

// Shown when a session starts. Its buttons stand beside the tabs while it is shown.
void SettingsPages::addTonight() {
    addSheet(this, u"Tonight"_s, [this](QWidget* parent) {
        auto* page = new TonightPage(core_, parent);
        QWidget* bar = page->spanBar();
        static_cast<QHBoxLayout*>(corner_->layout())->insertWidget(0, bar);
        const auto showBar = [this, bar] {
            bar->setVisible(currentIndex() == 0);
        };
        connect(this, &QTabWidget::currentChanged, bar, showBar);
        showBar();
        return page;
    });
    follow(this, core_.records.session.State, [this](SessionState now) {
        if (now != SessionState::Idle && session_ == SessionState::Idle)
            open(Page::Tonight);
        session_ = now;
    });
}

// For the mouse: the keyboard has Ctrl+F and F1.
void SettingsPages::addCorner() {
    auto* find = new QToolButton(this);
    find->setObjectName(u"ButtFind"_s);
    find->setText(u"Find a setting…   Ctrl+F"_s);
    find->setAccessibleName(u"Find a setting"_s);
    find->setFocusPolicy(Qt::NoFocus);
    connect(find, &QToolButton::clicked, this, [this] {
        if (onFind)
            onFind();
    });
    // On the page Tonight its buttons stand there.
    find->setVisible(currentIndex() > 0);
    connect(this, &QTabWidget::currentChanged, find,
            [find](int index) { find->setVisible(index > 0); });
    auto* button = new QToolButton(this);
    button->setObjectName(u"ButtHelp"_s);
    button->setText(u"?"_s);
    button->setToolTip(u"Explain this page (F1)"_s);
    button->setAccessibleName(u"Explain this page"_s);
    help_ = button;
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    corner_ = new QWidget(this);
    auto* row = new QHBoxLayout(corner_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(find);
    row->addWidget(button);
    setCornerWidget(corner_);
    connect(button, &QToolButton::clicked, this, [this] {
        if (onHelp)
            onHelp();
    });
}

void SettingsPages::addSheet(QTabWidget* strip, const QString& title, MakePage make) {
    auto* holder = new QWidget;
    auto* column = new QVBoxLayout(holder);
    column->setContentsMargins(0, 0, 0, 0);
    sheets_.push_back({strip, holder, std::move(make)});
    if (strip == this)
        addPane(holder, title);
    else
        strip->addTab(holder, title);
}

QTabWidget* SettingsPages::addStrip(const QString& name, const QString& title) {
    auto* strip = new QTabWidget;
    strip->setObjectName(name);
    strip->setDocumentMode(true);
    // A strip is as large as its page in sight: a larger one beside it makes nothing scroll.
    connect(strip, &QTabWidget::currentChanged, strip, [strip](int shown) {
        for (int i = 0; i < strip->count(); ++i) {
            const auto asked = i == shown ? QSizePolicy::Preferred : QSizePolicy::Ignored;
            strip->widget(i)->setSizePolicy(asked, asked);
        }
        strip->updateGeometry();
    });
    addPane(strip, title);
    return strip;
}

void SettingsPages::addPane(QWidget* content, const QString& title) {
    auto* pane = new QScrollArea(this);
    pane->setWidgetResizable(true);
    pane->setFrameShape(QFrame::NoFrame);
    pane->setFocusPolicy(Qt::NoFocus); // it scrolls with the focus of what stands in it
    pane->setWidget(content);
    followFocus(pane);
    addTab(pane, title);
}

void SettingsPages::followStrip(QTabWidget* strip, QProperty<int>& index, int first) {
    follow(strip, index, [strip, first](int saved) {
        const int page = std::max(saved - first, 0);
        if (saved >= 0 && page < strip->count())
            strip->setCurrentIndex(page);
    });
    connect(strip, &QTabWidget::currentChanged, this, [this, &index, first](int chosen) {
        if (chosen + first >= 0)
            index = chosen + first;
        makeShownSheet();
    });
}

void SettingsPages::resizeEvent(QResizeEvent* event) {
    QTabWidget::resizeEvent(event);
    const qreal unit = std::max(windowUnit(*this), 1.0);
    QFont grown = font();
    grown.setPixelSize(qRound(QFontInfo(QApplication::font()).pixelSize() * unit));
    if (grown == tabBar()->font())
        return;
    tabBar()->setFont(grown);
    for (QTabWidget* strip : findChildren<QTabWidget*>())
        strip->tabBar()->setFont(grown);
    for (auto* button : corner_->findChildren<QAbstractButton*>())
        button->setFont(grown);
    grown.setPixelSize(qRound(14 * unit));
    grown.setBold(true);
    help_->setFont(grown);
    help_->setFixedSize(qRound(36 * unit), QFontMetrics(grown).height() + 10);
    for (const Sheet& sheet : sheets_) {
        if (!sheet.make)
            growSheet(sheet);
    }
}

// The page Tonight grows by itself.
void SettingsPages::growSheet(const Sheet& sheet) {
    if (&sheet == &sheets_.front())
        return;
    for (QWidget* page : sheet.holder->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        growPage(page, std::max(windowUnit(*this), 1.0));
}

void SettingsPages::open(Page page) {
    openSheet(static_cast<std::size_t>(page));
}

void SettingsPages::openSheet(std::size_t index) {
    const Sheet& sheet = sheets_[index];
    for (int i = 0; i < count(); ++i) {
        if (widget(i)->isAncestorOf(sheet.holder))
            setCurrentIndex(i);
    }
    if (sheet.strip != this)
        sheet.strip->setCurrentWidget(sheet.holder);
}

void SettingsPages::step(int by) {
    const std::size_t many = sheets_.size();
    openSheet((shownSheet() + many + static_cast<std::size_t>(by)) % many);
}

std::size_t SettingsPages::shownSheet() const {
    std::size_t shown = 0;
    for (std::size_t i = 0; i < sheets_.size(); ++i) {
        const Sheet& sheet = sheets_[i];
        const bool onTop = sheet.strip == this || sheet.strip->currentWidget() == sheet.holder;
        if (onTop && currentWidget()->isAncestorOf(sheet.holder))
            shown = i;
    }
    return shown;
}

void SettingsPages::makeShownSheet() {
    Sheet& sheet = sheets_[shownSheet()];
    if (!sheet.make)
        return;
    QWidget* page = sheet.make(sheet.holder);
    sheet.holder->layout()->addWidget(page);
    page->show(); // at once: its pane is to know its size before it is painted
    // Tab leads from the strip through its buttons and the page, whatever else was made before it.
    QWidget* last = focusAfter(tabBar(), corner_);
    QWidget* strip = sheet.strip->tabBar();
    focusAfter(sheet.strip == this ? last : strip, page);
    sheet.make = nullptr;
    if (windowUnit(*this) > 1)
        growSheet(sheet);
}

} // namespace skyhold
