// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/challengeserver.h"

#include <QRegularExpression>
#include <QTcpSocket>

ChallengeServer::ChallengeServer(QObject *parent)
    : QTcpServer(parent)
{
    connect(this, &QTcpServer::newConnection, this, &ChallengeServer::onNewConnection);
    listen(QHostAddress::LocalHost);
}

QUrl ChallengeServer::url() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(serverPort()));
}

void ChallengeServer::onNewConnection()
{
    while (QTcpSocket *socket = nextPendingConnection())
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
}

void ChallengeServer::onReadyRead(QTcpSocket *socket)
{
    static const QRegularExpression length(
        QStringLiteral("content-length: *(\\d+)"), QRegularExpression::CaseInsensitiveOption);
    const QByteArray received = socket->peek(socket->bytesAvailable());
    const int headEnd = received.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return;
    const QByteArray head = received.left(headEnd);
    const int size = headEnd + 4 + length.match(QString::fromLatin1(head)).captured(1).toInt();
    if (received.size() < size)
        return;
    socket->read(size);
    reply(socket, head);
}

void ChallengeServer::reply(QTcpSocket *socket, const QByteArray &head)
{
    static const QRegularExpression authorization(
        QStringLiteral("authorization: *basic ([^\\r\\n]*)"), QRegularExpression::CaseInsensitiveOption);
    verbs.append(head.left(head.indexOf(' ')));
    const auto match = authorization.match(QString::fromLatin1(head));
    const QByteArray given = QByteArray::fromBase64(match.captured(1).toLatin1());
    if (match.hasMatch())
        answers.append(given);
    if (silent)
        return;
    if (!accepted.isEmpty() && given == accepted)
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    else if (namesMethod)
        socket->write("HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"mail\"\r\n"
                      "Content-Length: 0\r\n\r\n");
    else
        socket->write("HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n\r\n");
}
