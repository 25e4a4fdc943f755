// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/scriptedserver.h"

#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace {

auto findHeader(const QList<QPair<QByteArray, QByteArray>> &headers, const QByteArray &name)
{
    return std::find_if(headers.cbegin(), headers.cend(),
        [&name](const auto &header) { return header.first.compare(name, Qt::CaseInsensitive) == 0; });
}

ReceivedRequest parseHead(const QByteArray &head)
{
    ReceivedRequest request;
    QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.takeFirst().trimmed().split(' ');
    request.verb = first.value(0);
    request.target = first.value(1);
    for (const QByteArray &line : qAsConst(lines)) {
        const int colon = line.indexOf(':');
        if (colon > 0)
            request.headers.append({ line.left(colon), line.mid(colon + 1).trimmed() });
    }
    return request;
}

} // namespace

QByteArray ReceivedRequest::header(const QByteArray &name) const
{
    const auto header = findHeader(headers, name);
    return header != headers.cend() ? header->second : QByteArray();
}

bool ReceivedRequest::hasHeader(const QByteArray &name) const
{
    return findHeader(headers, name) != headers.cend();
}

ScriptedServer::ScriptedServer(QObject *parent)
    : QObject(parent)
{
    connect(&mServer, &QTcpServer::newConnection, this, &ScriptedServer::onConnection);
    if (!mServer.listen(QHostAddress::AnyIPv4))
        qFatal("the test server cannot listen");
}

ScriptedServer::~ScriptedServer() = default;

quint16 ScriptedServer::port() const
{
    return mServer.serverPort();
}

void ScriptedServer::answer(const ScriptedAnswer &answer)
{
    mAnswers.append(answer);
}

void ScriptedServer::onConnection()
{
    QTcpSocket *const socket = mServer.nextPendingConnection();
    const auto buffer = std::make_shared<QByteArray>();
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, buffer] { read(socket, *buffer); });
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
}

void ScriptedServer::read(QTcpSocket *socket, QByteArray &buffer)
{
    buffer += socket->readAll();
    const int end = buffer.indexOf("\r\n\r\n");
    if (end < 0)
        return;
    ReceivedRequest request = parseHead(buffer.left(end));
    const int length = request.header("Content-Length").toInt();
    if (buffer.size() < end + 4 + length)
        return;
    request.body = buffer.mid(end + 4, length);
    buffer.remove(0, end + 4 + length);
    mRequests.append(request);
    reply(socket);
    Q_EMIT received();
}

void ScriptedServer::reply(QTcpSocket *socket)
{
    ScriptedAnswer answer;
    if (mAnswers.isEmpty()) {
        ++mUnexpected;
        answer.status = 500;
    } else {
        answer = mAnswers.takeFirst();
    }
    if (answer.hang)
        return;
    if (answer.drop) {
        socket->abort();
        return;
    }
    if (!answer.raw.isEmpty()) {
        socket->write(answer.raw);
        if (!answer.endless.isEmpty())
            writeEndlessly(socket, answer.endless);
        return;
    }
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status)
        + " Answer\r\nContent-Length: " + QByteArray::number(answer.body.size()) + "\r\n";
    for (const auto &header : qAsConst(answer.headers))
        head += header.first + ": " + header.second + "\r\n";
    socket->write(head + "\r\n" + answer.body);
}

void ScriptedServer::writeEndlessly(QTcpSocket *socket, const QByteArray &bytes)
{
    // At a pace at which the client does not fall behind.
    auto *const pace = new QTimer(socket);
    connect(pace, &QTimer::timeout, socket, [socket, bytes] {
        if (socket->bytesToWrite() == 0)
            socket->write(bytes);
    });
    pace->start(1);
}
