#include "gateway/alpaca.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

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

const AlpacaMember* memberOf(const AlpacaDevice& device, const QByteArray& name, bool put,
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
    QByteArray body = "{";
    if (member.type != AlpacaType::None) {
        const bool failed = result.error != AlpacaError::None;
        body += "\"Value\":" + (failed ? defaultValue(member.type) : result.value) + ',';
    }
    body += "\"ClientTransactionID\":" + QByteArray::number(client) +
            ",\"ServerTransactionID\":" + QByteArray::number(transaction) +
            ",\"ErrorNumber\":" + QByteArray::number(static_cast<int>(result.error)) +
            ",\"ErrorMessage\":" +
            (result.message.isEmpty()
                 ? QByteArray("\"\"")
                 : jsonText(QLatin1String(member.name) + u": "_s + result.message)) +
            '}';
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

Handling call(const AlpacaMember& member, AlpacaCall call, const Request& request) {
    QByteArray fault;
    const auto ids = readAlpacaIds(call.parameters, !member.put, fault);
    if (!ids)
        return refusedRequest(member.name, fault);
    fault = parameterFault(member, call.parameters);
    if (!fault.isEmpty())
        return refusedRequest(member.name, fault);
    call.client = call.device.type + (' ' + request.client) + ' ' + QByteArray::number(ids->client);
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

QByteArray AlpacaCall::text(const char* name) const {
    return parameter(parameters, name, !put).value_or(QByteArray());
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
    const QList<QByteArray> parts = request.path.split('/'); // "", "api", "v1", type, number, name
    const AlpacaDevice* device = parts.size() == 6 ? alpacaDevice(parts[3]) : nullptr;
    if (!device)
        return textAnswer(400, "There is no such device; they are safetymonitor, "
                               "observingconditions and switch");
    if (parts[4] != "0")
        return textAnswer(400, "There is only the device number 0");
    const bool put = request.method == "PUT";
    if (!put && request.method != "GET")
        return textAnswer(400, "The verbs are GET and PUT");
    bool exists = false;
    const AlpacaMember* member = memberOf(*device, parts[5], put, exists);
    if (!member) {
        if (exists)
            return textAnswer(400, parts[5] + (put ? " cannot be written" : " cannot be read"));
        return textAnswer(400, QByteArray("There is no such command of ") + device->type);
    }
    if (put && !request.contentType.isEmpty() &&
        !request.contentType.toLower().startsWith("application/x-www-form-urlencoded"))
        return textAnswer(400, "Parameters come as application/x-www-form-urlencoded");
    const std::optional<Parameters> parameters =
        put ? parseForm(request.body) : std::optional(request.query);
    if (!parameters)
        return textAnswer(400, "The parameters cannot be read");
    return call(*member,
                {.server = server,
                 .device = *device,
                 .view = view,
                 .parameters = *parameters,
                 .put = put,
                 .client = {}},
                request);
}

} // namespace skyhold
