#include "http.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <thread>
#include <vector>

#include <microhttpd.h>

#include "bounds.h"
#include "failure.h"

namespace server
{

namespace
{

// What the present request of a connection has come to: marks that the library keeps for it.
char head_seen;
char url_too_long;

void* measure_url(void* /*server*/, const char* url, MHD_Connection* /*connection*/)
{
    return std::string_view(url).size() > longest_url ? &url_too_long : nullptr;
}

MHD_Result handle(void* server, MHD_Connection* connection, const char* path, const char* method, const char* /*version*/,
                  const char* /*upload*/, std::size_t* /*upload_size*/, void** mark)
{
    try
    {
        const Headers headers(connection);
        Answer answer = {};
        if (*mark == &url_too_long)
            answer = refuse(MHD_HTTP_URI_TOO_LONG, "the URL has more than " + std::to_string(longest_url) + " bytes");
        else if (headers.size > longest_headers)
            answer =
                refuse(MHD_HTTP_REQUEST_HEADER_FIELDS_TOO_LARGE, "the header has more than " + std::to_string(longest_headers) + " bytes");
        else if (*mark == nullptr && !headers.has_body)
        {
            // The second call is for the answer. One at the first call ends the connection, which saves reading a body.
            *mark = &head_seen;
            return MHD_YES;
        }
        else
            answer = static_cast<const HttpServer*>(server)->answer(connection, path, method, headers);
        return MHD_queue_response(connection, answer.status, answer.response.get());
    }
    catch (const std::exception&)
    {
        return MHD_NO; // no memory for an answer: the connection is closed
    }
}

MHD_Result take_parameter(void* query, MHD_ValueKind /*kind*/, const char* key, std::size_t key_size, const char* value,
                          std::size_t value_size)
{
    const std::string_view text = value == nullptr ? std::string_view() : std::string_view(value, value_size);
    static_cast<decltype(Request::query)*>(query)->emplace_back(std::string_view(key, key_size), text);
    return MHD_YES;
}

void notify_connection(void* server, MHD_Connection* connection, void** context, MHD_ConnectionNotificationCode what)
{
    Connections& connections = static_cast<HttpServer*>(server)->connections();
    if (what == MHD_CONNECTION_NOTIFY_CLOSED) return connections.close(static_cast<OpenConnection*>(*context));
    const MHD_ConnectionInfo* const info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    *context = connections.open(info->connect_fd);
}

void notify_completed(void* /*server*/, MHD_Connection* connection, void** /*mark*/, MHD_RequestTerminationCode /*how*/)
{
    const MHD_ConnectionInfo* const info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    static_cast<OpenConnection*>(info->socket_context)->since = std::chrono::steady_clock::now();
}

/** Keeps what the library says first, which is why it does not start. What clients do wrong is not worth a line. */
void keep_message(void* kept, const char* format, va_list arguments)
{
    Complaint& complaint = *static_cast<Complaint*>(kept);
    if (complaint.is_made.test_and_set()) return;
    char line[256] = {};
    std::vsnprintf(line, sizeof line, format, arguments);
    complaint.text = line;
    while (complaint.text.ends_with('\n')) complaint.text.pop_back();
}

std::string address_of(MHD_Connection* connection)
{
    return local_address(MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd);
}

unsigned thread_count()
{
    return std::clamp(std::thread::hardware_concurrency(), 2U, 4U);
}

} // namespace

HttpServer::HttpServer(Listening listening, Access access, const Routes& routes)
    : access_(std::move(access)), routes_(routes), complaint_(std::make_unique<Complaint>()), daemon_(nullptr, &MHD_stop_daemon)
{
    std::vector<MHD_OptionItem> options = {
        {MHD_OPTION_CONNECTION_LIMIT, static_cast<intptr_t>(most_connections), nullptr},
        {MHD_OPTION_PER_IP_CONNECTION_LIMIT, static_cast<intptr_t>(most_connections_of_an_address), nullptr},
        {MHD_OPTION_CONNECTION_TIMEOUT, static_cast<intptr_t>(longest_silence.count()), nullptr},
        {MHD_OPTION_CONNECTION_MEMORY_LIMIT, static_cast<intptr_t>(connection_memory), nullptr},
        {MHD_OPTION_STRICT_FOR_CLIENT, 1, nullptr},
        {MHD_OPTION_THREAD_POOL_SIZE, static_cast<intptr_t>(thread_count()), nullptr},
        {MHD_OPTION_THREAD_STACK_SIZE, static_cast<intptr_t>(512 * 1024), nullptr},
        {MHD_OPTION_SIGPIPE_HANDLED_BY_APP, 1, nullptr},
        {MHD_OPTION_LISTEN_SOCKET, listening.descriptor(), nullptr},
        {MHD_OPTION_URI_LOG_CALLBACK, reinterpret_cast<intptr_t>(&measure_url), this},
        {MHD_OPTION_NOTIFY_CONNECTION, reinterpret_cast<intptr_t>(&notify_connection), this},
        {MHD_OPTION_NOTIFY_COMPLETED, reinterpret_cast<intptr_t>(&notify_completed), this},
    };
    unsigned flags = MHD_USE_POLL_INTERNAL_THREAD | MHD_USE_ITC | MHD_USE_ERROR_LOG;
    if (access_.identity)
    {
        flags |= MHD_USE_TLS;
        options.push_back({MHD_OPTION_HTTPS_MEM_KEY, 0, access_.identity->key.data()});
        options.push_back({MHD_OPTION_HTTPS_MEM_CERT, 0, access_.identity->certificate.data()});
        static char priorities[] = "NORMAL:-VERS-ALL:+VERS-TLS1.3:+VERS-TLS1.2";
        options.push_back({MHD_OPTION_HTTPS_PRIORITIES, 0, priorities});
    }
    options.push_back({MHD_OPTION_END, 0, nullptr});
    // The logger comes first: what is said about an option is heard from then on.
    daemon_.reset(MHD_start_daemon(flags, 0, nullptr, nullptr, &handle, this, MHD_OPTION_EXTERNAL_LOGGER, &keep_message, complaint_.get(),
                                   MHD_OPTION_ARRAY, options.data(), MHD_OPTION_END));
    if (!daemon_)
        files::fail_input((access_.identity ? "cannot serve with this certificate and key: " : "cannot serve: ") + complaint_->text);
    listening.release(); // the library's
}

HttpServer::~HttpServer() = default;

Answer HttpServer::answer(MHD_Connection* connection, std::string_view path, std::string_view method, const Headers& headers) const
{
    if (method != MHD_HTTP_METHOD_GET && method != MHD_HTTP_METHOD_HEAD)
        return refuse(MHD_HTTP_METHOD_NOT_ALLOWED, "only GET and HEAD are answered here");
    if (headers.has_body) return refuse(MHD_HTTP_BAD_REQUEST, "a body is not expected");
    if (headers.hosts != 1 || !(access_.hosts.allows(headers.host, {}) || access_.hosts.allows(headers.host, address_of(connection))))
        return refuse(MHD_HTTP_FORBIDDEN,
                      "this server is not addressed by the name " + std::string(headers.host) + "; --host NAME allows one");
    if (access_.token && path != health_path && !access_.token->is_shown(headers.authorization))
        return refuse(MHD_HTTP_UNAUTHORIZED, "the token is expected, as Bearer or as the password of any user");
    Request request = {.path = path,
                       .query = {},
                       .accept = headers.accept,
                       .accept_encoding = headers.accept_encoding,
                       .if_none_match = headers.if_none_match};
    MHD_get_connection_values_n(connection, MHD_GET_ARGUMENT_KIND, &take_parameter, &request.query);
    return routes_.answer(request);
}

} // namespace server
