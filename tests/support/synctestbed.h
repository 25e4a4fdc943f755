// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/contactitem.h"
#include "simulator/email.h"
#include "simulator/eventitem.h"
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
    /** With an account of another kind; its server and version are filled in. */
    SyncTestBed(const QStringList &versions, AccountOptions options);
    /** Options of an account that has calendars and contacts besides mail. */
    static AccountOptions everyService();

    Simulator::ExchangeServer &server() { return mServer; }
    Simulator::Mailbox &mailbox() { return mServer.mailbox(); }

    /** "folder path|subject|read" of every message, sorted. */
    QStringList serverState();
    QStringList serverFolders();

    /** Puts an event into the server's calendar, or a contact among its contacts; the server identifier. */
    QString place(const Simulator::Event &event);
    QString place(const Simulator::Contact &contact);
    /** What another client does to one. */
    bool editEvent(const QString &serverId, const std::function<void(Simulator::Event &)> &change);
    bool editContact(const QString &serverId, const std::function<void(Simulator::Contact &)> &change);
    /** As the server has them, in the order in which they came there. */
    QVector<Simulator::Event> serverEvents();
    QVector<Simulator::Contact> serverContacts();
    std::optional<Simulator::Event> serverEvent(const QString &serverId);
    std::optional<Simulator::Contact> serverContact(const QString &serverId);
    QString calendarId() { return mailbox().folderOfType(Simulator::CalendarFolder).id; }
    QString contactsId() { return mailbox().folderOfType(Simulator::ContactsFolder).id; }

    /** A plain message for the server. */
    static QByteArray message(const QString &subject, const QString &text = QStringLiteral("Hello"));

private:
    Simulator::ExchangeServer mServer;
};
