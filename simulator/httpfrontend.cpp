// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/httpfrontend.h"

#include "simulator/connections.h"
#include "simulator/connectionthreads.h"

#include <httplib.h>

#include <algorithm>
#include <thread>

namespace Simulator {
namespace {

const int keepAliveSeconds = 60;
const int gateCheckInterval = 20;
const int endlessChunk = 65536;

HttpRequest fromLibrary(const httplib::Request &request)
{
    HttpRequest result;
    result.verb = QString::fromStdString(request.method);
    result.target = QByteArray::fromStdString(request.target);
    result.body = QByteArray::fromStdString(request.body);
    for (const auto &header : request.headers) {
        // The library adds these two of its own.
        if (header.first != "REMOTE_ADDR" && header.first != "REMOTE_PORT" && header.first != "LOCAL_ADDR"
            && header.first != "LOCAL_PORT")
            result.headers.append(
                { QByteArray::fromStdString(header.first), QByteArray::fromStdString(header.second) });
    }
    return result;
}

std::unique_ptr<httplib::Server> makeServer(const QByteArray &certificate, const QByteArray &key)
{
    if (certificate.isEmpty())
        return std::make_unique<httplib::Server>();
    const auto setUp = [certificate, key](SSL_CTX &context) {
        BIO *certificateBio = BIO_new_mem_buf(certificate.constData(), certificate.size());
        BIO *keyBio = BIO_new_mem_buf(key.constData(), key.size());
        X509 *x509 = PEM_read_bio_X509(certificateBio, nullptr, nullptr, nullptr);
        EVP_PKEY *privateKey = PEM_read_bio_PrivateKey(keyBio, nullptr, nullptr, nullptr);
        const bool done = x509 && privateKey && SSL_CTX_use_certificate(&context, x509) == 1
            && SSL_CTX_use_PrivateKey(&context, privateKey) == 1;
        X509_free(x509);
        EVP_PKEY_free(privateKey);
        BIO_free(certificateBio);
        BIO_free(keyBio);
        return done;
    };
    return std::make_unique<httplib::SSLServer>(setUp);
}

} // namespace

class HttpFrontend::Private
{
public:
    Handler handler;
    std::unique_ptr<httplib::Server> server;
    std::thread listener;
    Gate stopping;
    Gate ended;
    int port = 0;

    void answer(const httplib::Request &request, httplib::Response &response);
    bool holdBack(const Transport &transport);
    void send(const HttpReply &reply, httplib::Response &response);
    bool write(const HttpReply &reply, qint64 announced, httplib::DataSink &sink);
    bool drip(const char *data, qint64 size, int bytesPerSecond, httplib::DataSink &sink);
};

void HttpFrontend::Private::answer(const httplib::Request &request, httplib::Response &response)
{
    HttpRequest asked = fromLibrary(request);
    asked.isClientGone = [this, peer = request.remote_port] {
        return isPeerGone(port, peer);
    };
    const HttpReply reply = handler(asked);
    if (!holdBack(reply.transport)) {
        // Nothing can be written to a connection that is shut down, so the client gets not one byte.
        shutDownConnections(port, request.remote_port);
        return;
    }
    if (reply.onSending)
        reply.onSending();
    send(reply, response);
}

/** False if the connection is to be dropped without an answer. */
bool HttpFrontend::Private::holdBack(const Transport &transport)
{
    if (transport.hang && stopping.wait())
        return false;
    if (transport.delay > 0 && stopping.wait(transport.delay))
        return false;
    while (transport.gate && !transport.gate->wait(gateCheckInterval)) {
        if (stopping.wait(0))
            return false;
    }
    return !transport.dropSilently;
}

void HttpFrontend::Private::send(const HttpReply &reply, httplib::Response &response)
{
    response.status = reply.status;
    for (const auto &header : reply.headers)
        response.headers.emplace(header.first.toStdString(), header.second.toStdString());
    const std::string type = reply.contentType.toStdString();
    if (reply.transport.endless) {
        response.set_chunked_content_provider(type, [this, reply](size_t, httplib::DataSink &sink) {
            const QByteArray pattern = reply.body.isEmpty() ? QByteArray(1, '\0') : reply.body;
            const QByteArray chunk = pattern.repeated(endlessChunk / pattern.size() + 1);
            if (reply.transport.bytesPerSecond > 0)
                return drip(chunk.constData(), chunk.size(), reply.transport.bytesPerSecond, sink);
            return !stopping.wait(10) && sink.write(chunk.constData(), size_t(chunk.size()));
        });
        return;
    }
    qint64 announced = reply.transport.announcedLength.value_or(reply.body.size());
    if (reply.transport.drop)
        announced = std::max<qint64>(announced, 1);
    if (announced <= 0) {
        response.set_content(std::string(), type);
        return;
    }
    response.set_content_provider(
        size_t(announced), type, [this, reply, announced](size_t, size_t, httplib::DataSink &sink) {
            return write(reply, announced, sink);
        });
}

/** Writes the whole body at once; false ends the connection. */
bool HttpFrontend::Private::write(const HttpReply &reply, qint64 announced, httplib::DataSink &sink)
{
    const Transport &transport = reply.transport;
    if (transport.drop)
        return false;
    const qint64 size = std::min<qint64>(transport.truncateAt.value_or(reply.body.size()), reply.body.size());
    const bool sent = transport.bytesPerSecond > 0
        ? drip(reply.body.constData(), size, transport.bytesPerSecond, sink)
        : size == 0 || sink.write(reply.body.constData(), size_t(size));
    // Ending the connection is also what keeps surplus bytes from being read as the next answer.
    return sent && size == announced;
}

bool HttpFrontend::Private::drip(const char *data, qint64 size, int bytesPerSecond, httplib::DataSink &sink)
{
    const int perStep = std::max(1, bytesPerSecond / 10);
    const int interval = std::max(1, 1000 * perStep / bytesPerSecond);
    for (qint64 sent = 0; sent < size; sent += perStep) {
        if (stopping.wait(interval) || !sink.is_writable())
            return false;
        if (!sink.write(data + sent, size_t(std::min<qint64>(perStep, size - sent))))
            return false;
    }
    return true;
}

HttpFrontend::HttpFrontend(const Handler &handler)
    : d(new Private)
{
    d->handler = handler;
}

HttpFrontend::~HttpFrontend()
{
    stop();
}

bool HttpFrontend::start(quint16 port, const QByteArray &certificate, const QByteArray &key)
{
    d->server = makeServer(certificate, key);
    if (!d->server->is_valid())
        return false;
    d->server->new_task_queue = [] {
        return new ConnectionThreads;
    };
    d->server->set_tcp_nodelay(true);
    d->server->set_keep_alive_max_count(100000);
    d->server->set_keep_alive_timeout(keepAliveSeconds);
    d->server->set_read_timeout(keepAliveSeconds);
    d->server->set_write_timeout(keepAliveSeconds);
    d->server->set_socket_options(allowReuse);
    const auto handler = [this](const httplib::Request &request, httplib::Response &response) {
        d->answer(request, response);
    };
    d->server->set_pre_routing_handler([this](const httplib::Request &request, httplib::Response &) {
        acknowledgeAtOnce(d->port, request.remote_port);
        return httplib::Server::HandlerResponse::Unhandled;
    });
    d->server->Options(".*", handler).Get(".*", handler).Post(".*", handler);
    if (port == 0)
        d->port = d->server->bind_to_any_port("127.0.0.1");
    else
        d->port = d->server->bind_to_port("127.0.0.1", port) ? port : -1;
    if (d->port <= 0)
        return false;
    d->listener = std::thread([this] {
        d->server->listen_after_bind();
        d->ended.open();
    });
    while (!d->server->is_running())
        std::this_thread::yield();
    return true;
}

void HttpFrontend::stop()
{
    if (!d->listener.joinable())
        return;
    d->stopping.open();
    d->server->stop();
    // Idle connections would keep their threads until the keep-alive time is over. One that is just being
    // accepted can slip through the first round.
    do
        shutDownConnections(d->port);
    while (!d->ended.wait(gateCheckInterval));
    d->listener.join();
    d->server.reset();
}

quint16 HttpFrontend::port() const
{
    return quint16(d->port);
}

} // namespace Simulator
