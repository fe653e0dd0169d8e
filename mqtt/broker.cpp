// SPDX-License-Identifier: GPL-3.0-or-later
#include "mqtt/broker.h"

#include "platform/files.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kLongestPassword = 4096;
constexpr qsizetype kLongestTopic = 200;

} // namespace

QString MqttBroker::address() const {
    return (host.contains(u':') ? u'[' + host + u']' : host) + u':' + QString::number(usedPort());
}

bool readBrokerAddress(const QString& text, MqttBroker& broker, QString& fault) {
    static const QRegularExpression form(
        u"^(?:\\[([0-9a-fA-F:.%a-z]+)\\]|([^\\s:/\\[\\]]+))(?::([0-9]{1,5}))?$"_s);
    const QRegularExpressionMatch match = form.match(text);
    const int port = match.captured(3).toInt();
    if (!match.hasMatch() || port > 65535 || (port == 0 && !match.captured(3).isEmpty())) {
        fault = u"\"%1\" is no broker; it is HOST or HOST:PORT"_s.arg(text);
        return false;
    }
    broker.host = match.captured(1) + match.captured(2);
    broker.port = port;
    return true;
}

bool readPasswordFile(const QString& path, MqttBroker& broker, QString& fault) {
    const QFileInfo file(path);
    constexpr auto kOthers =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    const FileContents contents = readFile(path, kLongestPassword);
    if (contents.result != ReadResult::Ok) {
        fault = u"the password file %1 cannot be read"_s.arg(path);
        return false;
    }
    if (file.permissions() & kOthers) {
        fault = u"others may read the password in %1: chmod 600"_s.arg(path);
        return false;
    }
    broker.password = QString::fromUtf8(contents.bytes).section(u'\n', 0, 0);
    if (broker.password.endsWith(u'\r'))
        broker.password.chop(1);
    return true;
}

bool isTopic(const QString& text) {
    static const QRegularExpression form(u"^[^\\x00-\\x1f+#$/]+(?:/[^\\x00-\\x1f+#/]+)*$"_s);
    return text.size() <= kLongestTopic && form.match(text).hasMatch();
}

} // namespace skyhold
