// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

/** A web server that asks for basic credentials and remembers what it was given. */
class ChallengeServer : public QTcpServer
{
    Q_OBJECT

public:
    explicit ChallengeServer(QObject *parent = nullptr);

    QUrl url() const;

    /** "user:password" that is let in; by default every login is refused. */
    QByteArray accepted;
    /** Without it a refusal names no method, so that no answer is possible. */
    bool namesMethod = true;
    /** Requests stay without a reply. */
    bool silent = false;

    /** The plain credentials of every request that carried some, in order. */
    QList<QByteArray> answers;
    QList<QByteArray> verbs;

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket *socket);
    void reply(QTcpSocket *socket, const QByteArray &head);
};
