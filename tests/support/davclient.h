// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QMap>
#include <QNetworkAccessManager>
#include <QUrl>

#include <optional>

/**
 * Another client of a calendar or an address book, which it sees as CalDAV or CardDAV tells it. Each call
 * waits for its answer.
 */
class DavClient
{
public:
    enum Kind { Calendar, AddressBook };

    DavClient(Kind kind, const QString &host, int port, const QString &user, const QString &password);

    /** The texts of all entries by their address; nothing if the server does not answer. */
    std::optional<QMap<QString, QString>> texts();
    /** Marks of all entries, which differ when one has been written. */
    QMap<QString, QString> marks();
    bool put(const QString &address, const QByteArray &text);
    bool remove(const QString &address);

    /**
     * Waits until the server's clock has left the second in which it was at the call, and the next one: a
     * server that tells changes by whole seconds may miss one that falls into the second of a sync.
     */
    bool leaveThisSecond();

private:
    struct Answer
    {
        int status = 0;
        QByteArray body;
        QByteArray date;
    };

    Answer send(const QByteArray &verb, const QString &address, const QByteArray &body = QByteArray(),
        const QByteArray &type = QByteArray("text/xml"));
    QMap<QString, QString> report(const QString &element);

    QNetworkAccessManager mNetwork;
    const Kind mKind;
    const QUrl mCollection;
    const QByteArray mAuthorization;
};
