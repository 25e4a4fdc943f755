// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <qmailfolder.h>
#include <qmailmessage.h>

/** Folders and messages of an account in the mail store, as the engine would have put them there. */
class MailScene
{
public:
    explicit MailScene(EasAccountId accountId)
        : mAccountId(accountId)
    {
    }

    QMailFolderId addFolder(const QString &name, const QMailFolderId &parent = {}) const;
    bool setStandardFolder(QMailFolder::StandardFolder kind, const QMailFolderId &folder) const;
    /** A text message with two attachments, of which the second is not on the device. */
    QMailMessageId addMessage(const QMailFolderId &folder, const QString &subject,
        const QString &from = QStringLiteral("Bob <bob@example.com>"),
        const QDateTime &date = QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC)) const;
    /** What a download does. */
    static bool fillSecondPart(const QMailMessageId &id, const QByteArray &data);
    /** The messages that the store keeps a record of removal for. */
    QStringList removalRecords() const;

private:
    EasAccountId mAccountId;
};
