// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/alpaca.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kAnswerLimit = 64LL << 10;
constexpr int kClientId = 21117;

AlpacaDevice::Answer answerOf(const QByteArray& body, const QString& transport) {
    const QJsonObject answer = QJsonDocument::fromJson(body).object();
    if (!transport.isEmpty() || answer.isEmpty())
        return {{}, transport.isEmpty() ? u"the answer is not JSON"_s : transport};
    if (const int error = answer.value(u"ErrorNumber"_s).toInt(); error != 0)
        return {
            {},
            u"error %1 %2"_s.arg(error).arg(answer.value(u"ErrorMessage"_s).toString().left(80))};
    return {answer.value(u"Value"_s), {}};
}

QString textOf(const QJsonValue& value) {
    if (value.isBool())
        return value.toBool() ? u"true"_s : u"false"_s;
    return value.isDouble() ? QString::number(value.toDouble(), 'g', 15) : value.toString();
}

QUrlQuery named(const char16_t* name, const QString& value) {
    QUrlQuery arguments;
    arguments.addQueryItem(QString::fromUtf16(name), value);
    return arguments;
}

} // namespace

AlpacaDevice::AlpacaDevice(const QString& url, const QString& device, double timeoutSeconds)
    : base_(url + (url.endsWith(u'/') ? u"api/v1/"_s : u"/api/v1/"_s) + device + u'/')
    , timeoutMs_(static_cast<int>(std::lround(std::max(timeoutSeconds, 0.1) * 1000))) {}

QNetworkRequest AlpacaDevice::request(const QString& member, const QUrlQuery& arguments) const {
    QUrl url(base_ + member);
    url.setQuery(arguments);
    QNetworkRequest request(url);
    request.setTransferTimeout(timeoutMs_);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    return request;
}

QUrlQuery AlpacaDevice::identified(QUrlQuery arguments) {
    arguments.addQueryItem(u"ClientID"_s, QString::number(kClientId));
    arguments.addQueryItem(u"ClientTransactionID"_s, QString::number(++transaction_));
    return arguments;
}

void AlpacaDevice::get(const QString& member, const QUrlQuery& arguments, Take take) {
    await(network_.get(request(member, identified(arguments))), std::move(take));
}

void AlpacaDevice::put(const QString& member, const QUrlQuery& arguments, Take take) {
    QNetworkRequest form = request(member, {});
    form.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
    await(network_.put(form, identified(arguments).toString(QUrl::FullyEncoded).toUtf8()),
          std::move(take));
}

void AlpacaDevice::await(QNetworkReply* reply, Take take) {
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > kAnswerLimit)
            reply->abort();
    });
    // The timeout of a transfer begins anew with every byte.
    QTimer::singleShot(timeoutMs_, reply, [reply] { reply->abort(); });
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, take = std::move(take)] {
        reply->deleteLater();
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        QString fault;
        if (reply->error() != QNetworkReply::NoError)
            fault = reply->errorString();
        else if (status != 200)
            fault = u"HTTP status %1"_s.arg(status);
        take(answerOf(reply->readAll(), fault));
    });
}

AlpacaSource::AlpacaSource(const SourceSettings& settings, SourceReadings& readings)
    : readings_(readings)
    , device_(settings.text(u"url"_s), settings.text(u"device"_s), settings.number(u"timeout"_s))
    , observing_(settings.text(u"device"_s).startsWith(u"observingconditions")) {
    timer_.setInterval(
        static_cast<int>(std::lround(std::max(settings.number(u"every"_s), 0.1) * 1000)));
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { ask(); });
}

void AlpacaSource::start() {
    ask();
    timer_.start();
}

void AlpacaSource::ask() {
    if (awaited_ > 0)
        return;
    fault_.clear();
    if (!connected_) {
        awaited_ = 1;
        device_.put(u"connected"_s, named(u"Connected", u"true"_s),
                    [this](const AlpacaDevice::Answer& answer) {
                        connected_ = answer.fault.isEmpty();
                        if (!connected_)
                            readings_.dropAll();
                        finishOne(answer.fault);
                        if (connected_)
                            ask();
                    });
        return;
    }
    const QSet<QString> members = readings_.wanted();
    awaited_ = static_cast<int>(members.size());
    for (const QString& member : members) {
        const std::int64_t at = bootMs();
        if (!observing_ || ageless_.contains(member)) {
            askFor(member, at, 0);
            continue;
        }
        device_.get(u"timesincelastupdate"_s, named(u"SensorName", member),
                    [this, member, at](const AlpacaDevice::Answer& answer) {
                        const double age = answer.value.toDouble(-1);
                        if (answer.fault.isEmpty() && age >= 0 && age < 1e9) {
                            askFor(member, at, std::llround(age * 1000));
                        } else if (answer.fault.startsWith(u"error 1024")) {
                            ageless_.insert(member);
                            askFor(member, at, 0);
                        } else {
                            readings_.drop(member);
                            finishOne(answer.fault.isEmpty() ? u"%1 was never updated"_s.arg(member)
                                                             : member + u": "_s + answer.fault);
                        }
                    });
    }
}

void AlpacaSource::askFor(const QString& member, std::int64_t at, std::int64_t ageMs) {
    device_.get(member.toLower(), {},
                [this, member, at, ageMs](const AlpacaDevice::Answer& answer) {
                    const QString text = textOf(answer.value);
                    if (answer.fault.isEmpty() && !text.isEmpty()) {
                        readings_.take(member, text, at - ageMs);
                        finishOne({});
                    } else {
                        readings_.drop(member);
                        finishOne(member + u": "_s +
                                  (answer.fault.isEmpty() ? u"no value"_s : answer.fault));
                    }
                });
}

void AlpacaSource::finishOne(const QString& fault) {
    if (!fault.isEmpty() && fault_.isEmpty())
        fault_ = fault;
    if (--awaited_ > 0)
        return;
    readings_.setTrouble(fault_);
    // It may have been started anew, and connects again then.
    if (!fault_.isEmpty())
        connected_ = false;
}

} // namespace skyhold
