// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/alpaca.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QByteArray defaultValue(AlpacaType type) {
    switch (type) {
    case AlpacaType::Bool:
        return "false";
    case AlpacaType::Integer:
        return "0";
    case AlpacaType::Number:
        return "0.0";
    case AlpacaType::Text:
        return "\"\"";
    case AlpacaType::List:
        return "[]";
    case AlpacaType::None:
        break;
    }
    return {};
}

std::optional<std::uint32_t> transactionNumber(const QByteArray& text) {
    for (const char digit : text) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
    }
    bool fits = false;
    const std::uint32_t number = text.toUInt(&fits);
    return fits ? std::optional(number) : std::nullopt;
}

std::optional<bool> booleanOf(const QByteArray& text) {
    const QByteArray lower = text.toLower();
    if (lower == "true" || lower == "false")
        return lower == "true";
    return std::nullopt;
}

const char* typeText(AlpacaType type) {
    if (type == AlpacaType::Bool)
        return "true or false";
    return type == AlpacaType::Integer ? "a whole number" : "a number";
}

bool reads(const QByteArray& text, AlpacaType type) {
    bool sound = true;
    switch (type) {
    case AlpacaType::Bool:
        return booleanOf(text).has_value();
    case AlpacaType::Integer:
        text.toInt(&sound);
        return sound;
    case AlpacaType::Number:
        return std::isfinite(text.toDouble(&sound)) && sound;
    default:
        return true;
    }
}

struct Path {
    QByteArrayView type, number, name;
};

// Of "/api/v1/type/number/name"; nothing where it has more parts or fewer.
std::optional<Path> pathOf(const QByteArray& path) {
    std::array<QByteArrayView, 6> parts; // "", "api", "v1", type, number, name
    std::size_t count = 0;
    for (QByteArrayView rest = path;; ++count) {
        if (count == parts.size())
            return std::nullopt;
        const qsizetype slash = rest.indexOf('/');
        parts[count] = slash < 0 ? rest : rest.first(slash);
        if (slash < 0)
            break;
        rest = rest.sliced(slash + 1);
    }
    if (count + 1 != parts.size())
        return std::nullopt;
    return Path{parts[3], parts[4], parts[5]};
}

const AlpacaMember* memberOf(const AlpacaDevice& device, QByteArrayView name, bool put,
                             bool& exists) {
    exists = false;
    for (const auto members : {device.members, commonMembers()}) {
        for (const AlpacaMember& member : members) {
            if (name != member.name)
                continue;
            exists = true;
            if (member.put == put)
                return &member;
        }
    }
    return nullptr;
}

// The member's result as the API has it.
Answer answerOf(const AlpacaResult& result, const AlpacaMember& member, std::uint32_t client,
                std::uint32_t transaction) {
    constexpr qsizetype kUsualLength = 256;
    QByteArray body;
    body.reserve(kUsualLength);
    body += '{';
    if (member.type != AlpacaType::None) {
        body += "\"Value\":";
        body += result.error == AlpacaError::None ? result.value : defaultValue(member.type);
        body += ',';
    }
    const auto add = [&body](const char* name, std::int64_t number) {
        char digits[24];
        const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
        body.append(name).append(digits, end - digits);
    };
    add("\"ClientTransactionID\":", client);
    add(",\"ServerTransactionID\":", transaction);
    add(",\"ErrorNumber\":", static_cast<int>(result.error));
    body += ",\"ErrorMessage\":";
    if (result.message.isEmpty())
        body += "\"\"";
    else
        body += jsonText(QLatin1String(member.name) + u": "_s + result.message);
    body += '}';
    return jsonAnswer(body);
}

// Why the parameters cannot be read, naming the one and what it takes; empty when they can.
QByteArray parameterFault(const AlpacaMember& member, const Parameters& all) {
    constexpr qsizetype kMostShown = 40;
    for (const AlpacaParameter& wanted : member.parameters) {
        if (!wanted.name)
            continue;
        const std::optional<QByteArray> value = parameter(all, wanted.name, !member.put);
        if (!value)
            return QByteArray(wanted.name) + " is missing";
        if (!reads(*value, wanted.type))
            return QByteArray(wanted.name) + " \"" + value->left(kMostShown) +
                   "\" cannot be read; it takes " + typeText(wanted.type);
    }
    return {};
}

Answer refusedRequest(const char* member, const QByteArray& fault) {
    return textAnswer(400, QByteArray(member) + ": " + fault);
}

Handling call(const AlpacaMember& member, AlpacaCall call) {
    QByteArray fault;
    const auto ids = readAlpacaIds(call.parameters, !member.put, fault);
    if (!ids)
        return refusedRequest(member.name, fault);
    fault = parameterFault(member, call.parameters);
    if (!fault.isEmpty())
        return refusedRequest(member.name, fault);
    call.clientId = ids->client;
    const std::uint32_t client = ids->transaction;
    const std::uint32_t transaction = ++call.server.transactions;
    AlpacaOutcome outcome = member.call(call);
    if (const auto* result = std::get_if<AlpacaResult>(&outcome))
        return answerOf(*result, member, client, transaction);
    return LaterAnswer([work = std::get<AlpacaLater>(std::move(outcome)), &member, client,
                        transaction](Reply reply) {
        work([reply = std::move(reply), &member, client, transaction](const AlpacaResult& result) {
            reply(answerOf(result, member, client, transaction));
        });
    });
}

} // namespace

AlpacaResult alpacaError(AlpacaError error, const QString& message) {
    return {.error = error, .message = message};
}

AlpacaResult alpacaNumber(double value) {
    return {.value = QByteArray::number(value, 'g', 12)};
}

AlpacaResult alpacaBool(bool value) {
    return {.value = value ? "true" : "false"};
}

AlpacaResult alpacaText(const QString& text) {
    return {.value = jsonText(text)};
}

QByteArray jsonText(const QString& text) {
    const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return list.sliced(1, list.size() - 2);
}

std::optional<AlpacaIds> readAlpacaIds(const Parameters& all, bool anyCase, QByteArray& fault) {
    AlpacaIds ids;
    const std::pair<const char*, std::uint32_t*> wanted[] = {
        {"ClientID", &ids.client}, {"ClientTransactionID", &ids.transaction}};
    for (const auto& [name, number] : wanted) {
        const std::optional<QByteArray> text = parameter(all, name, anyCase);
        if (!text)
            continue;
        const std::optional<std::uint32_t> read =
            text->isEmpty() ? std::nullopt : transactionNumber(*text);
        if (!read) {
            fault = QByteArray(name) + " takes a whole number from 0 to 4294967295";
            return std::nullopt;
        }
        *number = *read;
    }
    return ids;
}

void AlpacaClients::set(const QByteArray& client, bool connected) {
    clients_.removeAll(client);
    if (!connected)
        return;
    clients_.append(client);
    if (clients_.size() > kMost)
        clients_.removeFirst();
}

QByteArray AlpacaCall::client() const {
    return device.type + (' ' + request.client) + ' ' + QByteArray::number(clientId);
}

QByteArray AlpacaCall::text(const char* name) const {
    return parameter(parameters, name, !put()).value_or(QByteArray());
}

int AlpacaCall::integer(const char* name) const {
    return text(name).toInt();
}

double AlpacaCall::number(const char* name) const {
    return text(name).toDouble();
}

bool AlpacaCall::boolean(const char* name) const {
    return booleanOf(text(name)).value_or(false);
}

QByteArray causesJson(const View& view) {
    return QJsonDocument(view.document()[u"causes"_s].toArray()).toJson(QJsonDocument::Compact);
}

Handling alpacaRequest(const Request& request, AlpacaServer& server, const View& view) {
    const std::optional<Path> path = pathOf(request.path);
    const AlpacaDevice* device = path ? alpacaDevice(path->type) : nullptr;
    if (!device)
        return textAnswer(400, "There is no such device; they are safetymonitor, "
                               "observingconditions and switch");
    if (path->number != "0")
        return textAnswer(400, "There is only the device number 0");
    const bool put = request.method == "PUT";
    if (!put && request.method != "GET")
        return textAnswer(400, "The verbs are GET and PUT");
    bool exists = false;
    const AlpacaMember* member = memberOf(*device, path->name, put, exists);
    if (!member) {
        if (exists)
            return textAnswer(400, path->name.toByteArray() +
                                       (put ? " cannot be written" : " cannot be read"));
        return textAnswer(400, QByteArray("There is no such command of ") + device->type);
    }
    if (put && !request.contentType.isEmpty() &&
        !request.contentType.toLower().startsWith("application/x-www-form-urlencoded"))
        return textAnswer(400, "Parameters come as application/x-www-form-urlencoded");
    const std::optional<Parameters> parameters =
        put ? parseForm(request.body) : std::optional(request.query);
    if (!parameters)
        return textAnswer(400, "The parameters cannot be read");
    return call(*member, {.server = server,
                          .device = *device,
                          .view = view,
                          .parameters = *parameters,
                          .request = request});
}

} // namespace skyhold
