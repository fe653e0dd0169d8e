// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/service_manager.h"

#include "support/test_folder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace skyhold {
namespace {

// The manager's end of the socket. `name` begins with "/", or with "@" for one without a file.
class ManagerSocket {
  public:
    explicit ManagerSocket(const QByteArray& name)
        : channel_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
        if (name[0] == '@')
            address.sun_path[0] = '\0';
        const auto length = offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(name.size());
        EXPECT_EQ(::bind(channel_, reinterpret_cast<const sockaddr*>(&address),
                         static_cast<socklen_t>(length)),
                  0);
    }
    ~ManagerSocket() { ::close(channel_); }
    Q_DISABLE_COPY_MOVE(ManagerSocket)

    // All that has come, a message a line of its own.
    QByteArray heard() const {
        QByteArray text;
        char message[512];
        for (;;) {
            const ssize_t length = ::recv(channel_, message, sizeof message, 0);
            if (length < 0)
                return text;
            text += QByteArray(message, length).replace('\n', ' ') + '\n';
        }
    }

  private:
    int channel_;
};

TEST(ServiceManager, hearsWhatItWaitsForAndNothingElse) {
    const TestFolder folder;
    const QByteArray own = QByteArray::number(::getpid());
    const QByteArray rounds = "READY=1\nWATCHDOG_USEC=300000000\n"
                              "WATCHDOG=1\nSTATUS=Unsafe: Rain WATCHDOG=0\nWATCHDOG_USEC=0\n"
                              "STOPPING=1\n";
    const QByteArray plain = "READY=1\nSTATUS=Unsafe: Rain WATCHDOG=0\nSTOPPING=1\n";
    const struct {
        QByteArray socket, limit, process, expected;
    } cases[] = {
        {folder.filePath(QStringLiteral("a")).toLocal8Bit(), "300000000", own, rounds},
        {"@skyhold-test-" + own, "300000000", "", rounds},
        {folder.filePath(QStringLiteral("b")).toLocal8Bit(), "300000000", "1", plain},
        {folder.filePath(QStringLiteral("c")).toLocal8Bit(), "", "", plain},
        {folder.filePath(QStringLiteral("d")).toLocal8Bit(), "soon", own, plain},
    };
    for (const auto& [socket, limit, process, expected] : cases) {
        const ManagerSocket manager(socket);
        qputenv("NOTIFY_SOCKET", socket);
        qputenv("WATCHDOG_USEC", limit);
        qputenv("WATCHDOG_PID", process);
        const ServiceManager sender;
        for (const char* name : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"})
            EXPECT_FALSE(qEnvironmentVariableIsSet(name)) << name;
        sender.ready();
        sender.expectRounds(true);
        // A text from outside brings no field of its own.
        sender.roundDone(QStringLiteral("Unsafe: Rain\nWATCHDOG=0"));
        sender.expectRounds(false);
        sender.stopping();
        EXPECT_EQ(manager.heard(), expected) << socket.constData();
    }
}

TEST(ServiceManager, noneOrOneThatIsGoneIsLeftAlone) {
    for (const QByteArray& address :
         {QByteArray(), QByteArray("/nonexistent/notify"), QByteArray("relative"),
          QByteArray("/" + QByteArray(200, 'x'))}) {
        qputenv("NOTIFY_SOCKET", address);
        const ServiceManager sender;
        sender.ready();
        sender.roundDone(QStringLiteral("Safe"));
        EXPECT_FALSE(qEnvironmentVariableIsSet("NOTIFY_SOCKET"));
    }
}

} // namespace
} // namespace skyhold
