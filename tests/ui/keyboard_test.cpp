// The window and its dialogs for hands that never leave the keyboard.
#include "window_fixture.h"

#include "ui/dialogs/help_window.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/kiv_legend.h"
#include "ui/dialogs/kiv_setup_form.h"
#include "ui/dialogs/news_window.h"
#include "ui/window/simulators.h"

#include <QAbstractItemView>
#include <QButtonGroup>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSet>
#include <QSlider>
#include <QTabBar>
#include <QTextEdit>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

std::string nameOf(const QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return widget->objectName().toStdString() + " \"" +
           (button ? button->text().toStdString() : widget->metaObject()->className()) + "\"";
}

bool takesInput(const QWidget* widget) {
    if (qobject_cast<const QTabWidget*>(widget))
        return false; // its bar does
    return qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QLineEdit*>(widget) ||
           qobject_cast<const QComboBox*>(widget) || qobject_cast<const QSlider*>(widget) ||
           qobject_cast<const QTabBar*>(widget) || qobject_cast<const QAbstractItemView*>(widget) ||
           (widget->focusPolicy() & Qt::TabFocus);
}

// Tab stops at the chosen one of a group of which one is chosen; the arrow keys reach the others.
bool standsForItsGroup(const QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const bool oneOfMany =
        button && (button->autoExclusive() || (button->group() && button->group()->exclusive()));
    return !oneOfMany || button->isChecked();
}

// A pencil is for the mouse; its item answers the keys.
bool belongsToItsItem(const QWidget* widget) {
    return widget->focusPolicy() == Qt::NoFocus && widget->parentWidget() &&
           (widget->parentWidget()->focusPolicy() & Qt::TabFocus);
}

QWidget* groupOf(QWidget* widget, QWidget* within) {
    while (widget != within && !qobject_cast<QGroupBox*>(widget) && !qobject_cast<Card*>(widget))
        widget = widget->parentWidget();
    return widget;
}

QRect placeOf(const QWidget* widget) {
    return {widget->mapToGlobal(QPoint()), widget->size()};
}

// Left to right in a row, then the next row; or down a column, then the next column from its top.
bool readsBefore(const QRect& first, const QRect& second, int top) {
    const int shared =
        std::min(first.bottom(), second.bottom()) - std::max(first.top(), second.top());
    const bool oneRow = shared > std::min(first.height(), second.height()) / 2;
    const bool nextColumn = second.left() > first.right() && second.top() <= top;
    return nextColumn || (oneRow ? first.left() < second.left() : first.top() < second.top());
}

// Presses Tab from where the focus is until it is there again: what it stops at below `within`.
QList<QWidget*> tabThrough(QWidget* within) {
    QList<QWidget*> stops;
    QWidget* const start = QApplication::focusWidget();
    if (!start) {
        ADD_FAILURE() << "nothing has the focus";
        return stops;
    }
    for (int i = 0; i < 400; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QWidget* now = QApplication::focusWidget();
        if (within->isAncestorOf(now)) {
            EXPECT_FALSE(now->visibleRegion().isEmpty()) << nameOf(now) << " is out of sight";
            stops.append(now);
        }
        if (now == start)
            return stops;
    }
    ADD_FAILURE() << "no way back to " << nameOf(start);
    return stops;
}

// Where the walk of a dialog begins.
QWidget* firstStop(const QWidget& dialog) {
    QWidget* first = dialog.nextInFocusChain();
    while (!(first->focusPolicy() & Qt::TabFocus) || first->focusProxy() || !first->isVisible() ||
           !first->isEnabled())
        first = first->nextInFocusChain();
    return first;
}

void expectSensibleWalk(QWidget* within) {
    QList<QWidget*> stops = tabThrough(within);
    if (!stops.isEmpty() && within->isWindow())
        stops.prepend(stops.takeLast()); // it began there
    for (QWidget* widget : within->findChildren<QWidget*>()) {
        const bool belongsToTheWalk = takesInput(widget) && widget->isVisible() &&
                                      widget->isEnabled() && standsForItsGroup(widget) &&
                                      !belongsToItsItem(widget) &&
                                      !qobject_cast<QScrollBar*>(widget);
        EXPECT_TRUE(!belongsToTheWalk || stops.contains(widget))
            << nameOf(widget) << " is never reached";
    }
    QList<QWidget*> groups;
    int top = 0; // of the group
    for (qsizetype i = 0; i < stops.size(); ++i) {
        QWidget* group = groupOf(stops[i], within);
        if (groups.isEmpty() || groups.last() != group) {
            EXPECT_TRUE(group == within || !groups.contains(group))
                << nameOf(stops[i]) << " comes after its group was left";
            groups.append(group);
            top = placeOf(stops[i]).top();
        } else if (i > 0) {
            EXPECT_TRUE(readsBefore(placeOf(stops[i - 1]), placeOf(stops[i]), top))
                << nameOf(stops[i]) << " comes after " << nameOf(stops[i - 1]);
        }
    }
}

// The keys that Alt takes in a window: each leads to one place.
void expectMnemonicsOnce(const QWidget* window) {
    QMap<QString, std::string> taken;
    const auto take = [&taken](const QString& text, const std::string& whose) {
        const QString key = QKeySequence::mnemonic(text).toString();
        if (key.isEmpty())
            return;
        EXPECT_FALSE(taken.contains(key))
            << key.toStdString() << ": " << taken[key] << " and " << whose;
        taken[key] = whose;
    };
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->window() != window)
            continue;
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
            take(button->text(), nameOf(button));
        else if (const auto* label = qobject_cast<const QLabel*>(widget); label && label->buddy())
            take(label->text(), label->text().toStdString());
        else if (const auto* bar = qobject_cast<const QMenuBar*>(widget))
            for (const QAction* action : bar->actions())
                take(action->text(), "menu " + action->text().toStdString());
        else if (const auto* tabs = qobject_cast<const QTabBar*>(widget))
            for (int i = 0; i < tabs->count(); ++i)
                take(tabs->tabText(i), "page " + tabs->tabText(i).toStdString());
    }
}

constexpr Page kAllPages[]{Page::Sources, Page::Limits,   Page::Unsafe, Page::Caution,
                           Page::Graphs,  Page::DataFile, Page::Ccdap,  Page::Images,
                           Page::Upload,  Page::Network};

class Keyboard : public WindowFixture {
  protected:
    Keyboard() {
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
    void keyF1() { QTest::keyClick(window_.get(), Qt::Key_F1); }
    SettingsPages* pages() { return window_->findChild<SettingsPages*>(); }
    // A dialog that is open, with the focus in it.
    void walk(QDialog& dialog) {
        dialog.activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([&dialog] {
            firstStop(dialog)->setFocus();
            return dialog.isAncestorOf(QApplication::focusWidget());
        }));
        expectSensibleWalk(&dialog);
        expectMnemonicsOnce(&dialog);
        constexpr QSize kSmallScreen(1024 - 8, 768 - 40);
        EXPECT_EQ(dialog.size().boundedTo(kSmallScreen), dialog.size());
        const auto buttons = dialog.findChildren<QPushButton*>();
        EXPECT_EQ(std::count_if(buttons.begin(), buttons.end(),
                                [](const QPushButton* button) { return button->isDefault(); }),
                  1);
        EXPECT_FALSE(dialog.windowFlags() & Qt::WindowMinMaxButtonsHint);
    }
};

TEST_F(Keyboard, EveryControlOfEveryPageIsReachedInReadingOrder) {
    records().alarms.AlarmWS.Tag = u"bell.wav"_s;
    for (const QSize size : {QSize(1280, 800), QSize(720, 560)}) { // the second one scrolls
        window_->setMinimumSize(1, 1);
        window_->resize(size);
        for (const Page page : kAllPages) {
            openPage(page);
            pages()->tabBar()->setFocus();
            SCOPED_TRACE(pages()->tabText(pages()->currentIndex()).toStdString());
            expectSensibleWalk(pages()->currentWidget());
            expectMnemonicsOnce(window_.get());
        }
    }
}

TEST_F(Keyboard, EveryDialogIsReachedInReadingOrderAndLeftByEscape) {
    for (const Page page : kAllPages)
        openPage(page); // makes it
    const auto menuKey = [this](const char* name) {
        return std::function<void()>(
            [this, name] { QTest::keyClick(child(*window_, name), Qt::Key_Menu); });
    };
    SettingsStore& settings = settings_;
    const std::function<void()> dialogs[]{
        menuKey("ColorDew1"),
        menuKey("GraphColorDir2"),
        menuKey("DirectionGust0"),
        menuKey("SoundAlarmWS"),
        menuKey("ButtUnits"),
        menuKey("ButtCardinal"),
        menuKey("ButtFileStructure"),
        [this] {
            makeMessageDialog (*window_)({u"Overwrite?"_s, MessageStyle::YesNoCancel, {}});
        },
        [this] { KivLegend(window_.get()).exec(); },
        [this] { NewsWindow(u"A new version"_s, window_.get()).exec(); },
    };
    for (const auto& open : dialogs) {
        EXPECT_TRUE(duringDialog(open, [this](QDialog& dialog) {
            SCOPED_TRACE(dialog.objectName().toStdString());
            walk(dialog);
            QTest::keyClick(&dialog, Qt::Key_Escape);
            EXPECT_FALSE(dialog.isVisible());
        }));
    }
    Simulators& simulators = Simulators::of(window_.get());
    EXPECT_TRUE(duringDialog([&] { KivSetupForm(settings, simulators, u"Title"_s).exec(); },
                             [this](QDialog& dialog) {
                                 auto* next = child<QPushButton>(dialog, "ButtNext");
                                 for (int step = 0; step < 4; ++step) {
                                     SCOPED_TRACE(step);
                                     walk(dialog);
                                     EXPECT_EQ(next->isEnabled(), step < 3);
                                     EXPECT_EQ(next->isDefault(), step < 3);
                                     if (step < 3)
                                         QTest::keyClick(&dialog, Qt::Key_Return);
                                 }
                                 QTest::keyClick(&dialog, Qt::Key_Escape);
                             }));
}

TEST_F(Keyboard, CtrlTabGoesThroughAllPagesAndTheyComeBackAfterARestart) {
    const auto shownPages = [this] {
        const WindowControls& window = records().window;
        return QList<int>{window.SSTab1, window.SSTab2, window.SSTab3};
    };
    EXPECT_EQ(shownPages(), (QList<int>{0, 1, 0}));
    const QList<QList<int>> walked{{1, 0, 0}, {1, 1, 0}, {1, 2, 0}, {2, 2, 0}, {3, 2, 0},
                                   {3, 2, 1}, {3, 2, 2}, {3, 2, 3}, {4, 2, 3}, {0, 2, 3}};
    pages()->open(Page::Limits);
    for (const QList<int>& expected : walked) {
        EXPECT_EQ(shownPages(), expected);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        QCoreApplication::processEvents();
    }
    openPage(Page::Images);
    ASSERT_TRUE(child(*window_, "GraphImageDew")->isVisible());
    window_ = std::make_unique<KivSHMainform>(*core_);
    window_->show();
    EXPECT_TRUE(child(*window_, "GraphImageDew")->isVisible());
    EXPECT_EQ(window_->findChild<QWidget*>(u"LimitWind0"_s), nullptr); // not before it is shown
}

TEST_F(Keyboard, HelpIsReadableInTheProgramAndItsAbsenceIsToldPlainly) {
    const auto write = [this](const QString& name, const QByteArray& text) {
        const QString path = folder_->filePath(u"doc/kiv-skyhold/"_s + name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    // What stands in the help window: the note above the page, and the page.
    const auto shownHelp = [this]() -> QString {
        auto* help = window_->findChild<HelpWindow*>();
        return !help ? QString()
                     : child<QLabel>(*help, "LblNote")->text() + u'|' +
                           child<QTextEdit>(*help, "TxtHelp")->toPlainText();
    };
    const auto helpOn = [&](Page page) {
        showHelp(*core_, window_.get(), {u"/nowhere"_s, folder_->path()}, guidePage(page));
        return shownHelp();
    };
    EXPECT_EQ(helpOn(Page::Sources), QString());
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].contains(u"docs/guide/sources.html in /nowhere"_s));

    write(u"README.md"_s, "# Roof watching\n\nSee [more](more.md).\n");
    EXPECT_EQ(helpOn(Page::Sources).section(u'\n', 0, 0),
              u"The user guide is not installed. This is the program's README.|Roof watching"_s);
    write(u"docs/guide/index.html"_s, "<h1>Guide</h1>");
    EXPECT_EQ(helpOn(Page::Sources), u"The guide has no page of its own for this (sources.html is "
                                     u"not installed).|Guide"_s);
    // In the colours of the look in force, whatever its own.
    write(u"docs/guide/sources.html"_s,
          "<html><head><style>body { background: #123456 }</style>"
          "</head><body bgcolor='#123456'><h1>Two</h1></body></html>");
    EXPECT_EQ(helpOn(Page::Sources), u"|Two"_s);
    auto* text = window_->findChild<QTextEdit*>(u"TxtHelp"_s);
    const QImage shot = text->viewport()->grab().toImage();
    EXPECT_EQ(shot.pixelColor(shot.width() - 5, shot.height() - 5),
              text->palette().color(QPalette::Base));
    EXPECT_EQ(messages_.size(), 1);

    QSet<QString> files;
    for (const Page page : kAllPages) {
        EXPECT_NE(guidePage(page), kGuideStart);
        files.insert(guidePage(page));
    }
    EXPECT_EQ(files.size(), std::size(kAllPages));

    // By the key and the button: what the build lays beside the programs.
    for (const auto& ask : {std::function<void()>([this] { click(*window_, "ButtHelp"); }),
                            std::function<void()>([this] { keyF1(); })}) {
        delete window_->findChild<HelpWindow*>();
        ask();
        EXPECT_NE(shownHelp(), QString());
    }
}

} // namespace

} // namespace skyhold
