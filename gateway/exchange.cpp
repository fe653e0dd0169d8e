// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/exchange.h"

#include <algorithm>
#include <cstring>

namespace skyhold {

namespace {

constexpr std::size_t kStreamBlock = 4096;

QByteArray header(MHD_Connection* connection, const char* name) {
    return MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
}

MHD_Result addParameter(void* all, MHD_ValueKind, const char* name, const char* value) {
    static_cast<Parameters*>(all)->emplaceBack(QByteArray(name), QByteArray(value));
    return MHD_YES;
}

void addHeaders(MHD_Response* response, const char* type, const QByteArray& tag = {}) {
    struct Line {
        const char* name;
        const char* value;
    };
    // The page has its script, style and pictures from here and from nowhere else, and nobody may
    // put it into a page of theirs.
    static constexpr Line kLines[] = {
        {"Content-Security-Policy",
         "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
         "connect-src 'self'; manifest-src 'self'; base-uri 'none'; form-action 'none'; "
         "frame-ancestors 'none'"},
        {"X-Frame-Options", "DENY"},
        {"X-Content-Type-Options", "nosniff"},
        {"Referrer-Policy", "no-referrer"},
        {"Cross-Origin-Resource-Policy", "same-origin"},
    };
    MHD_add_response_header(response, "Content-Type", type);
    for (const Line& line : kLines)
        MHD_add_response_header(response, line.name, line.value);
    MHD_add_response_header(response, "Cache-Control", tag.isEmpty() ? "no-store" : "no-cache");
    if (!tag.isEmpty())
        MHD_add_response_header(response, "ETag", tag.constData());
}

MHD_Result queue(MHD_Connection* connection, MHD_Response* response, int status) {
    const MHD_Result queued =
        MHD_queue_response(connection, static_cast<unsigned>(status), response);
    MHD_destroy_response(response);
    return queued;
}

} // namespace

void Listener::add(const QByteArray& event) {
    if (event.isEmpty())
        return;
    queue.push_back(event);
    unsent += event.size();
}

std::size_t Listener::take(char* buffer, std::size_t most) {
    if (queue.empty())
        return 0;
    const QByteArray& first = queue.front();
    const std::size_t taken = std::min(static_cast<std::size_t>(first.size() - begun), most);
    std::memcpy(buffer, first.constData() + begun, taken);
    begun += static_cast<qsizetype>(taken);
    unsent -= static_cast<qsizetype>(taken);
    if (begun == first.size()) {
        queue.pop_front();
        begun = 0;
    }
    return taken;
}

void fillRequest(Request& request, MHD_Connection* connection, const char* method,
                 const char* url) {
    request.method = std::strcmp(method, "HEAD") == 0 ? "GET" : method;
    request.path = url;
    MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, &addParameter, &request.query);
    request.host = header(connection, "Host");
    request.origin = header(connection, "Origin");
    request.contentType = header(connection, "Content-Type");
    request.known = header(connection, "If-None-Match");
}

MHD_Result queueAnswer(MHD_Connection* connection, const Answer& answer) {
    MHD_Response* response = MHD_create_response_from_buffer(
        static_cast<std::size_t>(answer.body.size()), const_cast<char*>(answer.body.constData()),
        MHD_RESPMEM_MUST_COPY);
    if (!response)
        return MHD_NO;
    addHeaders(response, answer.type, answer.tag);
    if (!answer.allow.isEmpty())
        MHD_add_response_header(response, "Allow", answer.allow.constData());
    return queue(connection, response, answer.status);
}

MHD_Result queueStream(MHD_Connection* connection, MHD_ContentReaderCallback read, void* data,
                       MHD_ContentReaderFreeCallback end) {
    MHD_Response* response =
        MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, kStreamBlock, read, data, end);
    if (!response) {
        end(data);
        return MHD_NO;
    }
    addHeaders(response, "text/event-stream");
    return queue(connection, response, 200);
}

} // namespace skyhold
