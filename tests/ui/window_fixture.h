// SPDX-License-Identifier: GPL-3.0-or-later
// A monitor with its window, on folders of its own.
#pragma once

#include "dialog_driver.h"

#include "support/core_fixture.h"
#include "ui/pages/settings_pages.h"
#include "ui/widgets/readout.h"
#include "ui/window/main_window.h"

#include <QAction>

namespace skyhold {

class WindowFixture : public CoreFixture {
  protected:
    WindowFixture()
        : window_(std::make_unique<KivSHMainform>(*core_)) {
        core_->Timer6.Tick(); // what comes once after loading must not come amid a test
        window_->show();
        QCoreApplication::processEvents();
    }

    QString shown(const char* name) { return child<Readout>(*window_, name)->text(); }
    bool visible(const char* name) { return child(*window_, name)->isVisible(); }
    bool offered(const char* name) { return child<QAction>(name)->isVisible(); }
    template <class Object>
    Object* child(const char* name) {
        return window_->findChild<Object*>(QString::fromLatin1(name));
    }
    template <class Widget = QWidget>
    Widget* child(QWidget& window, const char* name) {
        return skyhold::child<Widget>(window, name);
    }
    void openPage(Page page) {
        window_->findChild<SettingsPages*>()->open(page);
        QCoreApplication::processEvents();
    }

    std::unique_ptr<KivSHMainform> window_;
};

} // namespace skyhold
