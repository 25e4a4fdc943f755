// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/databasefixture.h"
#include "support/scriptedmanager.h"
#include "support/scriptedserver.h"
#include "support/stubcalendarstorage.h"
#include "support/stubcontactstorage.h"
#include "support/stubmailstorage.h"
#include "support/testclock.h"

#include <memory>

/**
 * What a request by itself needs around it: a network, a server of prepared answers, a mapping database of
 * its own, and one account with stores that keep what they are told. Timers end at once.
 *
 * Make one in each test function; the engine's singletons are its own while it lives.
 */
class RequestBed
{
public:
    static constexpr EasAccountId Account = 7;
    static constexpr qulonglong Id = 42;

    /** The account's server offers these commands, at version 14.1. */
    explicit RequestBed(const QStringList &commands);
    ~RequestBed();
    Q_DISABLE_COPY(RequestBed)

    /** Whether the network is there; to be waited for. */
    bool isOnline() const;

    /** The server's next answer: a WBXML document. */
    void answer(const QByteArray &body);
    void answerNever();
    /** The bodies of what was sent, as outlines. */
    QStringList sent() const;

    /** Takes the bed away, and tells what of the prepared answers and the requests did not fit; nothing if
     * all did. For cleanup(). */
    static QString end(std::unique_ptr<RequestBed> &bed);

    /** Runs a request to its end; its status, -1000 without an end and -1001 with more than one. */
    static int run(Request &request);

    TestClock clock;
    const DatabaseFixture database { DatabaseFixture::Opened };
    ScriptedServer server;
    ScriptedManager *manager;
    FakeAccount *account;
    const QSharedPointer<StubMailStorage> mail;
    const QSharedPointer<StubCalendarStorage> calendar;
    const QSharedPointer<StubContactStorage> contacts;
};
