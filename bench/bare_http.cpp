// SPDX-License-Identifier: GPL-3.0-or-later
// The peer of what bench/gateway.py measures: the same HTTP library with a fixed answer as long as
// that of `issafe`. Prints its port.
#include <microhttpd.h>

#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

char answer[] = "{\"Value\":false,\"ClientTransactionID\":0,\"ServerTransactionID\":100000,"
                "\"ErrorNumber\":0,\"ErrorMessage\":\"\"}";

constexpr char kHeaders[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
    "manifest-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none' "
    "Content-Security-Policy X-Frame-Options: DENY X-Content-Type-Options: nosniff "
    "Referrer-Policy: no-referrer Cross-Origin-Resource-Policy: same-origin "
    "Cache-Control: no-store";

MHD_Result serve(void*, MHD_Connection* connection, const char*, const char*, const char*,
                 const char*, std::size_t*, void** context) {
    // An answer before the end of the request would end the connection.
    if (!*context) {
        *context = answer;
        return MHD_YES;
    }
    MHD_Response* response =
        MHD_create_response_from_buffer(std::strlen(answer), answer, MHD_RESPMEM_PERSISTENT);
    MHD_add_response_header(response, "Content-Type", "application/json");
    MHD_add_response_header(response, "X-Headers", kHeaders); // as many bytes as the gateway's own
    const MHD_Result queued = MHD_queue_response(connection, 200, response);
    MHD_destroy_response(response);
    return queued;
}

} // namespace

int main() {
    MHD_Daemon* daemon =
        MHD_start_daemon(MHD_USE_EPOLL_INTERNAL_THREAD, 0, nullptr, nullptr, &serve, nullptr,
                         MHD_OPTION_CONNECTION_LIMIT, 768U, MHD_OPTION_END);
    if (!daemon)
        return 1;
    std::printf("%u\n", MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_BIND_PORT)->port);
    std::fflush(stdout);
    ::pause();
}
