// SPDX-License-Identifier: GPL-3.0-or-later
// A window that does nothing, with as many widgets as the monitor's has when it is first painted:
// what a program of its kind costs anyway. Says when it has first been painted.
#include <QApplication>
#include <QGridLayout>
#include <QLabel>

#include <cstdio>

constexpr int kWidgets = 250;

class Window : public QWidget {
  protected:
    void paintEvent(QPaintEvent*) override {
        if (!told_) {
            std::printf("Window painted\n");
            std::fflush(stdout);
        }
        told_ = true;
    }

  private:
    bool told_ = false;
};

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Window window;
    auto* grid = new QGridLayout(&window);
    for (int i = 0; i < kWidgets; ++i)
        grid->addWidget(new QLabel(QString::number(i)), i / 14, i % 14);
    window.resize(1280, 760);
    window.show();
    return QApplication::exec();
}
