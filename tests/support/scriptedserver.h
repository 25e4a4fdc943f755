// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPair>
#include <QTcpServer>

class QTcpSocket;

/** What a server answers to one HTTP request. */
struct ScriptedAnswer
{
    int status = 200;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;
    /** Sent as it is, in place of a head and a body; the line stays open after it. */
    QByteArray raw;
    /** Sent after that over and over, until the client has enough. */
    QByteArray endless;
    bool hang = false;
    bool drop = false;
};

struct ReceivedRequest
{
    QByteArray verb;
    QByteArray target;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;

    QByteArray header(const QByteArray &name) const;
    bool hasHeader(const QByteArray &name) const;
};

/**
 * An HTTP server on every loopback address that gives prepared answers, in order, to whatever comes, and
 * keeps what came. A request more than the answers is answered with 500 and makes unexpected() rise.
 */
class ScriptedServer : public QObject
{
    Q_OBJECT

public:
    explicit ScriptedServer(QObject *parent = nullptr);
    ~ScriptedServer() override;

    quint16 port() const;
    void answer(const ScriptedAnswer &answer);
    QList<ReceivedRequest> requests() const { return mRequests; }
    int unexpected() const { return mUnexpected; }
    int unusedAnswers() const { return mAnswers.size(); }

Q_SIGNALS:
    void received();

private:
    void onConnection();
    void read(QTcpSocket *socket, QByteArray &buffer);
    void reply(QTcpSocket *socket);
    static void writeEndlessly(QTcpSocket *socket, const QByteArray &bytes);

    QTcpServer mServer;
    QList<ScriptedAnswer> mAnswers;
    QList<ReceivedRequest> mRequests;
    int mUnexpected = 0;
};
