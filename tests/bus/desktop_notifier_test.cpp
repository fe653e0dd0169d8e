// SPDX-License-Identifier: GPL-3.0-or-later
#include "bus/desktop_notifier.h"

#include "support/eventually.h"

#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

const QString kName = u"org.freedesktop.Notifications"_s;
const QString kPath = u"/org/freedesktop/Notifications"_s;

// A desktop: what it shows, by id. It answers when it is let.
class Server : public QDBusVirtualObject {
  public:
    Server() {
        EXPECT_TRUE(bus_.registerVirtualObject(kPath, this, QDBusConnection::SubPath));
        EXPECT_TRUE(bus_.registerService(kName));
    }
    ~Server() override { QDBusConnection::disconnectFromBus(u"notifications"_s); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        calls += call.member();
        const QVariantList arguments = call.arguments();
        if (call.member() == u"CloseNotification"_s) {
            shown.remove(arguments[0].toUInt());
            return true;
        }
        const uint replaced = arguments[1].toUInt();
        const uint id = replaced != 0 ? replaced : ++last_;
        shown[id] = arguments[3].toString() + u'|' + arguments[4].toString() + u'|' +
                    arguments[5].toStringList().join(u' ');
        if (hangs)
            waiting += call.createReply(id);
        else
            bus_.send(call.createReply(id));
        return true;
    }
    void answer() {
        hangs = false;
        for (const QDBusMessage& reply : std::exchange(waiting, {}))
            bus_.send(reply);
    }
    void invoke(uint id, const QString& action) {
        QDBusMessage signal = QDBusMessage::createSignal(kPath, kName, u"ActionInvoked"_s);
        signal.setArguments({id, action});
        bus_.send(signal);
    }

    QMap<uint, QString> shown;
    QStringList calls;
    bool hangs = false;
    QList<QDBusMessage> waiting;

  private:
    QDBusConnection bus_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"notifications"_s);
    uint last_ = 0;
};

DesktopNotification notification(const QString& title, const QString& text = {},
                                 const QString& button = {}) {
    return {.title = title, .text = text, .icon = {}, .urgency = 1, .actionLabel = button};
}

TEST(DesktopNotifier, OneNotificationIsReplacedAndItsButtonActs) {
    SessionBus bus;
    DesktopNotifier notifier(bus);
    int silenced = 0;
    notifier.action = [&silenced] {
        ++silenced;
    };
    // Nobody there: nothing happens, and nothing waits.
    notifier.show(notification(u"Lost"_s));
    notifier.close();

    Server server;
    server.hangs = true;
    notifier.show(notification(u"Unsafe"_s, u"Wind <b> & 23"_s, u"Silence"_s));
    ASSERT_TRUE(eventually([&] { return server.waiting.size() == 1; }));
    notifier.show(notification(u"Waiting"_s));
    notifier.show(notification(u"Safe"_s));
    EXPECT_EQ(server.shown,
              (QMap<uint, QString>{{1, u"Unsafe|Wind &lt;b&gt; &amp; 23|button Silence"_s}}));
    server.answer();
    ASSERT_TRUE(eventually([&] { return server.shown[1] == u"Safe||"_s; }));
    EXPECT_EQ(server.calls, (QStringList{u"Notify"_s, u"Notify"_s}));

    server.invoke(7, u"button"_s); // another program's
    server.invoke(1, u"button"_s);
    ASSERT_TRUE(eventually([&] { return silenced > 0; }));
    EXPECT_EQ(silenced, 1);

    server.hangs = true;
    notifier.show(notification(u"Unsafe"_s));
    ASSERT_TRUE(eventually([&] { return server.waiting.size() == 1; }));
    notifier.close();
    server.answer();
    EXPECT_TRUE(eventually([&] { return server.shown.isEmpty(); }));
}

} // namespace
} // namespace skyhold
