// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/logcollector.h"
#include "support/synctestbed.h"

#include <QtTest>
#include <qmaildisconnected.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <functional>

/** What tests of server statuses share: rows, and a device that missed something. */
namespace StatusScene {

constexpr int Once = 1;
constexpr int ForEver = -1;

inline void columns()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("requests");
}

/**
 * One row: the server's status, the one that the client sees at the end, a text of the log, and how many
 * requests of the command are sent.
 */
inline void row(const char *name, int code, int end, const char *text, int requests)
{
    QTest::newRow(name) << code << end << QString::fromLatin1(text) << requests;
}

inline int count(SyncTestBed &bed, const char *command)
{
    return bed.server().requests(QString::fromLatin1(command)).size();
}

/**
 * Has the server answer a command as an override says, so many times, and runs something that must end, log
 * and send as the row says.
 */
inline void endsAsTheRowSays(SyncTestBed &bed, const char *command, const Simulator::Override &answer,
    int times, const std::function<int()> &run)
{
    QFETCH(int, end);
    QFETCH(QString, text);
    QFETCH(int, requests);
    bed.server().overrideNext(QString::fromLatin1(command), answer, times);
    {
        const LogCollector log;
        QCOMPARE(run(), end);
        QVERIFY2(text.isEmpty() || log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
    }
    QCOMPARE(count(bed, command), requests);
}

/** One message is on both sides, and a second one waits on the server. */
inline bool missesOneMessage(SyncTestBed &bed)
{
    const QString inbox = bed.mailbox().inboxId();
    bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("old")));
    if (bed.sync() != 0)
        return false;
    bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("new")));
    bed.server().clearRequests();
    return true;
}

/** The next sync that the server lets through makes both sides equal. */
inline bool nextSyncRepairs(SyncTestBed &bed)
{
    bed.server().clearScript();
    return bed.sync() == 0 && bed.deviceState() == bed.serverState()
        && bed.deviceFolders() == bed.serverFolders();
}

inline bool markRead(SyncTestBed &bed, const char *subject)
{
    return QMailStore::instance()->updateMessagesMetaData(
        QMailMessageKey::id(bed.deviceMessage(QString::fromLatin1(subject))), QMailMessage::Read, true);
}

inline bool removeOnDevice(SyncTestBed &bed, const char *subject)
{
    return QMailStore::instance()->removeMessage(
        bed.deviceMessage(QString::fromLatin1(subject)), QMailStore::CreateRemovalRecord);
}

inline void moveOnDevice(SyncTestBed &bed, const char *subject, const QString &folder)
{
    QMailDisconnected::moveToFolder(
        QMailMessageIdList { bed.deviceMessage(QString::fromLatin1(subject)) }, bed.deviceFolder(folder));
}

/** Statuses of all commands; a sync whose first Sync is repeated takes so many of them. */
inline void commonSyncRows(int repeated)
{
    const char *noRetry = "server error. We shouldn't retry later. Completing request";
    row("identifiers that are not valid, and it ends", 106, 106, noRetry, 1);
    row("a server error, and it ends", 110, 110, noRetry, 1);
    row("a device identifier that is not valid, and it is made anew", 108, 0,
        "invalid Device ID or Type. Trying to update Device information", repeated);
    row("a device type that is not valid, and it is made anew", 109, 0,
        "invalid Device ID or Type. Trying to update Device information", repeated);
    row("a server error that passes, and it is repeated", 111, 0,
        "we should try to send command again later. Timeout (in mseconds):", repeated);
    row("an exceeded quota, and it ends", 115, -10,
        "The message is too large or the mailbox is over-quota:", 1);
    row("an attachment that is too large, and it ends", 122, -10,
        "The message is too large or the mailbox is over-quota:", 1);
    row("a device that cannot be provisioned, and it ends", 139, 139,
        "Device is not fully Provisionable for account", 1);
    row("a wish to wipe, which nobody ordered, and it is repeated", 140, 0,
        "remote wipe is requested for account", repeated);
    row("a wish for a policy key, and it is repeated with one", 141, 0,
        "server requires policy key to be submitted for", repeated);
    row("a policy, of which there is none, and it is repeated", 142, 0,
        "Provision Policy is in place for account", repeated);
    row("a new policy, of which there is none, and it is repeated", 143, 0,
        "Policy refresh requested for account", repeated);
    row("a policy key that is not valid, and it is repeated", 144, 0, "Invalid policy key for account",
        repeated);
    row("managed devices that are not allowed, and it is repeated", 145, 0,
        "Exterally managed devices are not allowed for account", repeated);
}

} // namespace StatusScene
