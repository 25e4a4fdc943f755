// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "support/accountfactory.h"
#include "support/privatebus.h"
#include "support/testclock.h"

#include <QObject>
#include <QStringList>

#include <qmailid.h>

#include <functional>

/**
 * The device's side of a test: the engine with the real account store, sign-on service, databases and mail
 * store, and one account for whatever server the test has.
 *
 * Messages are listed a line each ("Inbox/Projects|subject|read"), so that the other side can be listed in
 * the same form and compared. Make one in each test function; delays between attempts are short. The engine
 * ends with it, and the account and its mail go too.
 */
class EngineTestBed : public QObject
{
    Q_OBJECT

public:
    EngineTestBed();
    ~EngineTestBed() override;

    bool isReady() const { return mAccountId != 0; }
    EasAccountId accountId() const { return mAccountId; }
    AccountFactory &accounts() { return mAccounts; }
    TestClock &clock() { return mClock; }
    /** How long a request may take; a minute at first. */
    void setPatience(int milliseconds) { mPatience = milliseconds; }

    /** Makes the account and starts the engine; false if it cannot. */
    bool start(const AccountOptions &options);

    /** Stores another password once the engine fetches none, as what it began with would be put back. */
    bool changePassword(const QString &password);

    /** Starts a full sync and returns its identifier. */
    qulonglong startSync();
    /** Runs a full sync to its end; the status that a client would see, or -1000 if it never ended. */
    int sync();
    qulonglong startFoldersSync();
    qulonglong startDownloadMessages(const QList<qulonglong> &messageIds, bool attachments);
    qulonglong startDownloadPart(qulonglong messageId, const QString &location);
    qulonglong startSendMail(qulonglong messageId);
    int sendMail(qulonglong messageId);
    int syncFolders(const QStringList &localFolderIds);
    int syncService(int service);
    int foldersSync();
    int downloadMessages(const QList<qulonglong> &messageIds, bool attachments);
    int downloadPart(qulonglong messageId, const QString &location);
    /** The file of an event's attachment, by its URI. */
    int downloadAttachment(const QString &uri);
    /** Waits for the end of a request that was started before. */
    int waitFor(qulonglong requestId);
    int finishedCount(qulonglong requestId) const { return mFinished.count(requestId); }

    /** Ends the engine and starts it anew over the same data, as a restart of the daemon. */
    void restartEngine();
    /** The same with something happening in between, when another process may have the data. */
    void withoutEngine(const std::function<void()> &happening);

    /** "folder path|subject|read" of every message, sorted. */
    QStringList deviceState() const;
    QStringList deviceFolders() const;
    QMailMessageIdList deviceMessages() const;
    QMailMessageId deviceMessage(const QString &subject) const;
    QMailFolderId deviceFolder(const QString &path) const;

    static QString devicePath(QMailFolderId id);
    static QString stateLine(const QString &folder, const QString &subject, bool read);

private:
    void startEngine();
    void stopEngine();
    template <typename Start> int run(Start start);

    // The account library wants a bus before anything of it is made.
    bool mHasBus = PrivateBus::ensure();
    TestClock mClock { TestClock::Hurried };
    AccountFactory mAccounts;
    EasAccountId mAccountId = 0;
    int mPatience = 180000;
    qulonglong mLastRequestId = 0;
    QMultiMap<qulonglong, int> mFinished;
};
