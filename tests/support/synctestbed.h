// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/email.h"
#include "simulator/exchangeserver.h"
#include "support/enginetestbed.h"

#include <QByteArray>
#include <QStringList>

/**
 * A device and a server in one process: the engine on one side, the simulated Exchange on the other.
 *
 * Both sides can be listed in one form, a line a message ("Inbox/Projects|subject|read"), so that a test
 * reads: the server has three messages; sync; both sides are equal.
 */
class SyncTestBed : public EngineTestBed
{
    Q_OBJECT

public:
    /** The server announces these versions, and the device prefers the last one. */
    explicit SyncTestBed(const QStringList &versions = { QStringLiteral("14.1") });

    Simulator::ExchangeServer &server() { return mServer; }
    Simulator::Mailbox &mailbox() { return mServer.mailbox(); }

    /** "folder path|subject|read" of every message, sorted. */
    QStringList serverState();
    QStringList serverFolders();

    /** A plain message for the server. */
    static QByteArray message(const QString &subject, const QString &text = QStringLiteral("Hello"));

private:
    Simulator::ExchangeServer mServer;
};
