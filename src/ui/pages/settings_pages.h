// SPDX-License-Identifier: GPL-3.0-or-later
// The page of the night and those of settings, on three tab strips: one for the window, one for the
// conditions, one for the files.
//
// The page of settings of each strip and the scroll position of each of the window's four panes are
// kept in the window's records.
#pragma once

#include "core/monitoring_core.h"

#include <QTabWidget>

namespace skyhold {

// In the order in which Ctrl+Tab goes through them.
enum class Page {
    Tonight,
    Sources,
    Limits,
    Caution,
    Graphs,
    DataFile,
    Ccdap,
    Images,
    Upload,
    Network
};

// The page of the user guide that explains it.
QString guidePage(Page page);

class SettingsChanges;

class SettingsPages : public QTabWidget {
    Q_OBJECT

  public:
    // A page is made when it is first shown. `core` outlives the pages.
    SettingsPages(MonitoringCore& core, QWidget* parent);

    void open(Page page);
    SettingsChanges& changes() { return *changes_; }
    Page shownPage() const { return static_cast<Page>(shownSheet()); }

    std::function<void()> onHelp; // the "?" beside the pages was pressed
    std::function<void()> onFind; // a setting, wanted from the strip

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    using MakePage = std::function<QWidget*(QWidget* parent)>;
    struct Sheet {
        QTabWidget* strip; // the one that it stands on
        QWidget* holder;
        MakePage make; // empty once made
    };

    void addPages();
    void addTonight();
    void addCorner();
    void addSheet(QTabWidget* strip, const QString& title, MakePage make);
    QTabWidget* addStrip(const QString& name, const QString& title);
    void addPane(QWidget* content, const QString& title);
    // `first`: the number under which its first page is kept. Lower kept ones stand for that page,
    // too; a page whose number would be negative is not kept.
    void followStrip(QTabWidget* strip, QProperty<int>& index, int first = 0);
    void openSheet(std::size_t index);
    void step(int by);
    std::size_t shownSheet() const;
    void makeShownSheet();
    void growSheet(const Sheet& sheet);

    MonitoringCore& core_;
    SettingsChanges* changes_;
    QWidget* help_ = nullptr;
    QWidget* corner_ = nullptr;                 // at the right end of the strip
    SessionState session_ = SessionState::Idle; // as it was last seen
    std::vector<Sheet> sheets_;                 // in the order of Page
};

} // namespace skyhold
