// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/override.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace Simulator {

struct HttpRequest
{
    QString verb;
    QByteArray target; ///< path and query as sent
    HttpHeaders headers;
    QByteArray body;
    std::function<bool()> isClientGone; ///< whether nobody waits for the reply any more
};

struct HttpReply
{
    int status = 200;
    HttpHeaders headers;
    QByteArray contentType;
    QByteArray body;
    Transport transport;
    std::function<void()> onSending; ///< runs when the delays are over
    std::optional<int> wait; ///< no reply yet, see CommandReply
};

/**
 * The HTTP and HTTPS side: reads requests, asks the handler, sends its reply with the faults it names.
 *
 * The handler runs in worker threads, several at once. Owned by the ExchangeServer.
 */
class HttpFrontend
{
public:
    using Handler = std::function<HttpReply(const HttpRequest &)>;

    explicit HttpFrontend(const Handler &handler);
    ~HttpFrontend();

    /** With a certificate and key in PEM form it speaks TLS. */
    bool start(quint16 port, const QByteArray &certificate, const QByteArray &key);
    void stop();
    quint16 port() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Simulator
