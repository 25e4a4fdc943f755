// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/commandscene.h"
#include "client/mailscene.h"
#include "client/outbox.h"
#include "client/stubdaemon.h"

#include <qmailaccount.h>
#include <qmailstore.h>

/** What tests of written mail share: an account with Inbox, Outbox and Drafts, and a daemon that sends as the
 * test wants. */
class WritingScene
{
public:
    WritingScene()
        : mDaemon(std::make_unique<StubDaemon>())
        , mMail(mCommands.accountId())
    {
    }
    Q_DISABLE_COPY(WritingScene)

    /** Once the mail store knows the account. */
    bool addFolders()
    {
        mInbox = mMail.addFolder(QStringLiteral("Inbox"));
        mOutbox = mMail.addFolder(QStringLiteral("Outbox"));
        mDrafts = mMail.addFolder(QStringLiteral("Drafts"));
        return mMail.setStandardFolder(QMailFolder::OutboxFolder, mOutbox)
            && mMail.setStandardFolder(QMailFolder::DraftsFolder, mDrafts);
    }
    bool isReady() const { return mCommands.isReady() && mDaemon->isServing(); }
    bool hasMailAccount() const { return QMailAccount(QMailAccountId(accountId())).id().isValid(); }

    EasAccountId accountId() const { return mCommands.accountId(); }
    QString path(const QString &name) const { return mCommands.path(name); }
    StubDaemon &daemon() { return *mDaemon; }
    void endDaemon() { mDaemon.reset(); }
    const MailScene &mail() const { return mMail; }
    QMailFolderId inbox() const { return mInbox; }
    QMailFolderId outbox() const { return mOutbox; }
    QMailFolderId drafts() const { return mDrafts; }

    /** What the command line shows as waiting. */
    QMailMessageIdList waiting() const { return Outbox(accountId()).messages(); }
    static QMailMessageIdList in(const QMailFolderId &folder)
    {
        return QMailStore::instance()->queryMessages(QMailMessageKey::parentFolderId(folder));
    }
    static QString text(const QMailMessageId &id) { return QString::number(id.toULongLong()); }
    /** One that needs the store no more. */
    static QMailMessage withContent(qulonglong id)
    {
        QMailMessage message { QMailMessageId(id) };
        message.toRfc2822();
        return message;
    }

    /** The daemon ends the sending of each message with this, and leaves the message where it is. */
    void failWith(int status)
    {
        mDaemon->setSender([status](qulonglong) { return status; });
    }
    QString lastCall() const { return mDaemon->calls().value(mDaemon->calls().size() - 1); }
    QString sendCall(const QMailMessageId &id) const
    {
        return QStringLiteral("sendMail %1 %2").arg(accountId()).arg(id.toULongLong());
    }

private:
    CommandScene mCommands;
    std::unique_ptr<StubDaemon> mDaemon;
    MailScene mMail;
    QMailFolderId mInbox;
    QMailFolderId mOutbox;
    QMailFolderId mDrafts;
};
