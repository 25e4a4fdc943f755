// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/enginetestbed.h"
#include "support/imapclient.h"

#include <QByteArray>
#include <QMap>

class QMailMessage;
class RealServer;

/** A device with an account on the real server, and an IMAP client that looks at the same mailbox. */
class InteropBed : public EngineTestBed
{
    Q_OBJECT

public:
    struct Connection
    {
        QString version;
        bool secure = false;
        bool acceptAllCertificates = false;
        bool contacts = false;
        bool calendar = false;
    };

    InteropBed(const RealServer &server, const QString &user, const Connection &connection);

    ImapClient &imap() { return mImap; }

    /** The mailbox as IMAP tells it, in the form of deviceFolders() and deviceState(). */
    QStringList serverFolders() { return mImap.folders(); }
    QStringList serverState();

    /** A message by its folder and its number there, "INBOX/7"; numbers repeat from folder to folder. */
    static QString place(const ImapMessage &message);
    static QString place(const QMailMessage &message);

    /** Everything that the device has stored, the mapping, mail, events and contacts, as one hash for each
     * table. */
    static QMap<QString, QByteArray> storedData();

private:
    ImapClient mImap;
};
