// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/bodytable.h"
#include "internal/customfieldtable.h"
#include "internal/mailchanges.h"
#include "internal/maildatabase.h"

#include <qmailmessage.h>
#include <qmailmessageremovalrecord.h>

class MailKeyNode;
class MimeNode;

/**
 * The messages and their removal records. Writing needs a transaction of the caller's; what changed goes into
 * the changes that are passed in.
 */
class MessageTable
{
public:
    explicit MessageTable(MailDatabase &database);

    /** What an object is to be told about itself once the transaction stands. */
    struct Stored
    {
        quint64 id = 0;
        quint64 thread = 0;
        quint64 content = 0;
    };
    static void takeOver(const Stored &stored, QMailMessageMetaData &message);

    /** content is null for metadata alone. */
    bool add(
        const QMailMessageMetaData &message, const MimeNode *content, Stored &stored, MailChanges &changes);
    /** content is null if it stays. An unmodified or unknown message is left alone. */
    bool update(
        const QMailMessageMetaData &message, const MimeNode *content, Stored &stored, MailChanges &changes);
    bool setStatus(const MailKeyNode &key, quint64 mask, bool set, MailChanges &changes);
    bool remove(const MailKeyNode &key, bool createRecords, MailChanges &changes);

    QList<quint64> query(const MailKeyNode &key, uint limit, uint offset);
    int count(const MailKeyNode &key);
    bool load(quint64 id, QMailMessageMetaData &message);
    quint64 idOf(const QString &uid, quint64 account);
    void loadContent(quint64 id, MimeNode &node);
    QByteArray bodyPiece(quint64 body, int piece) { return mBodies.piece(body, piece); }

    QMailMessageRemovalRecordList removalRecords(quint64 account, quint64 folder);
    bool purgeRemovalRecords(quint64 account, const QStringList &uids, MailChanges &changes);

private:
    bool insertContent(const MimeNode &content, Stored &stored, QList<quint64> *bodies);
    bool replaceContent(const MimeNode &content, Stored &stored);
    bool isStored(quint64 id);
    quint64 threadOf(quint64 message);
    bool noteFolderChange(quint64 folder, MailChanges &changes);
    bool removeOne(quint64 id, bool createRecord, MailChanges &changes);

    MailDatabase &mDatabase;
    CustomFieldTable mFields;
    BodyTable mBodies;
};
