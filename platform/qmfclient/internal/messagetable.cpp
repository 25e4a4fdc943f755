// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/messagetable.h"

#include "internal/contentcodec.h"
#include "internal/mailkeycompiler.h"
#include "internal/mailvaluedata.h"

#include <QDateTime>

namespace {

const char contentScheme[] = "mailstore";

QString notNull(const QString &text)
{
    return text.isNull() ? QLatin1String("") : text;
}

QVariant milliseconds(const QMailTimeStamp &time)
{
    return time.isValid() ? QVariant(time.toUTC().toMSecsSinceEpoch()) : QVariant(QVariant::LongLong);
}

QMailTimeStamp timeStamp(const QVariant &milliseconds)
{
    if (milliseconds.isNull())
        return QMailTimeStamp();
    return QMailTimeStamp(QDateTime::fromMSecsSinceEpoch(milliseconds.toLongLong(), Qt::UTC));
}

/** In the order of MessageTable::columnValues(). */
const char columns[] =
    "type, account, folder, previous_folder, restore_folder, thread, in_response_to,"
    " response_type, content_type, server_uid, sender, recipients, subject, date, received,"
    " size, content_size, preview, status";

/** A message that answers none begins a thread, which is known by its number, and need not say so. */
QVariant threadColumn(quint64 thread)
{
    return thread == 0 ? QVariant(QVariant::LongLong) : QVariant(thread);
}

QVariantList columnValues(const QMailMessageMetaData &message, quint64 thread)
{
    const QMailMessageMetaDataData &data = MailValueAccess::data(message);
    const qlonglong status = qlonglong(data.status & ~QMailMessageMetaData::UnloadedData);
    return { int(data.messageType), data.parentAccountId.toULongLong(), data.parentFolderId.toULongLong(),
        data.previousParentFolderId.toULongLong(), data.restoreFolderId.toULongLong(), threadColumn(thread),
        data.inResponseTo.toULongLong(), int(data.responseType), int(data.content), notNull(data.serverUid),
        data.from.toString(), QMailAddress::toStringList(data.recipients).join(QLatin1String(", ")),
        data.subject, milliseconds(data.date), milliseconds(data.receivedDate), data.size, data.contentSize,
        data.preview, status };
}

void readColumns(const QSqlQuery &row, QMailMessageMetaDataData &data)
{
    int i = 0;
    data.messageType = QMailMessageMetaData::MessageType(row.value(i++).toInt());
    data.parentAccountId = QMailAccountId(row.value(i++).toULongLong());
    data.parentFolderId = QMailFolderId(row.value(i++).toULongLong());
    data.previousParentFolderId = QMailFolderId(row.value(i++).toULongLong());
    data.restoreFolderId = QMailFolderId(row.value(i++).toULongLong());
    data.parentThreadId = QMailThreadId(row.value(i++).toULongLong());
    data.inResponseTo = QMailMessageId(row.value(i++).toULongLong());
    data.responseType = QMailMessageMetaData::ResponseType(row.value(i++).toInt());
    data.content = QMailMessageMetaData::ContentType(row.value(i++).toInt());
    data.serverUid = row.value(i++).toString();
    data.from = QMailAddress(row.value(i++).toString());
    data.recipients = QMailAddress::fromStringList(row.value(i++).toString());
    data.subject = row.value(i++).toString();
    data.date = timeStamp(row.value(i++));
    data.receivedDate = timeStamp(row.value(i++));
    data.size = row.value(i++).toUInt();
    data.contentSize = row.value(i++).toUInt();
    data.preview = row.value(i++).toString();
    data.status = row.value(i++).toULongLong() | QMailMessageMetaData::UnloadedData;
    const QVariant content = row.value(i++);
    if (!content.isNull()) {
        data.contentScheme = QLatin1String(contentScheme);
        data.contentIdentifier = content.toString();
    }
}

} // namespace

MessageTable::MessageTable(MailDatabase &database)
    : mDatabase(database)
    , mFields(database, QStringLiteral("message_fields"))
    , mBodies(database)
{
}

bool MessageTable::isStored(quint64 id)
{
    return id != 0 && mDatabase.has(QStringLiteral("SELECT 1 FROM messages WHERE id = ?"), { id });
}

quint64 MessageTable::threadOf(quint64 message)
{
    const QString sql = QStringLiteral("SELECT COALESCE(thread, id) FROM messages WHERE id = ?");
    return message == 0 ? 0 : mDatabase.value(sql, { message }).value_or(QVariant()).toULongLong();
}

void MessageTable::takeOver(const Stored &stored, QMailMessageMetaData &message)
{
    if (stored.id != 0)
        message.setId(QMailMessageId(stored.id));
    QMailMessageMetaDataData &data = MailValueAccess::data(message);
    if (stored.thread != 0)
        data.parentThreadId = QMailThreadId(stored.thread);
    if (stored.content != 0) {
        data.contentScheme = QLatin1String(contentScheme);
        data.contentIdentifier = QString::number(stored.content);
    }
    data.modified = false;
    data.fields.touched = false;
}

bool MessageTable::add(
    const QMailMessageMetaData &message, const MimeNode *content, Stored &stored, MailChanges &changes)
{
    const QMailMessageMetaDataData &data = MailValueAccess::data(message);
    if (!data.parentAccountId.isValid() || !data.parentFolderId.isValid()
        || isStored(data.id.toULongLong())) {
        mDatabase.setLastError(QMailStore::ConstraintFailure);
        return false;
    }
    static const QString insert =
        QStringLiteral("INSERT INTO messages (%1, content) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?,"
                       " ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
            .arg(QLatin1String(columns));
    QList<quint64> bodies;
    if (content && !insertContent(*content, stored, &bodies))
        return false;
    stored.thread = data.parentThreadId.isValid() ? data.parentThreadId.toULongLong()
                                                  : threadOf(data.inResponseTo.toULongLong());
    const QVariant contentId = content ? QVariant(stored.content) : QVariant(QVariant::LongLong);
    if (!mDatabase.run(insert, columnValues(message, stored.thread) << contentId))
        return false;
    stored.id = mDatabase.lastInsertId();
    if (stored.thread == 0)
        stored.thread = stored.id;
    if (!mFields.save(stored.id, data.fields, true)
        || (!bodies.isEmpty() && !mBodies.assign(stored.id, bodies)))
        return false;
    changes.add(MailChanges::MessagesAdded, stored.id);
    return noteFolderChange(data.parentFolderId.toULongLong(), changes);
}

bool MessageTable::update(
    const QMailMessageMetaData &message, const MimeNode *content, Stored &stored, MailChanges &changes)
{
    const QMailMessageMetaDataData &data = MailValueAccess::data(message);
    const quint64 id = data.id.toULongLong();
    if (id == 0) {
        mDatabase.setLastError(QMailStore::ConstraintFailure);
        return false;
    }
    if ((!data.modified && !data.fields.touched && !content) || !isStored(id))
        return true;
    const auto oldFolder =
        mDatabase.value(QStringLiteral("SELECT folder FROM messages WHERE id = ?"), { id });
    if (!oldFolder)
        return false;
    stored.id = id;
    if (data.modified) {
        static const QString update =
            QStringLiteral("UPDATE messages SET %1 = ? WHERE id = ?")
                .arg(QString(QLatin1String(columns)).replace(QLatin1String(","), QLatin1String(" = ?,")));
        if (!mDatabase.run(update, columnValues(message, data.parentThreadId.toULongLong()) << id))
            return false;
    }
    if (!mFields.save(id, data.fields, false) || (content && !replaceContent(*content, stored)))
        return false;
    changes.add(MailChanges::MessagesUpdated, id);
    if (content)
        changes.add(MailChanges::MessageContentsModified, id);
    return noteFolderChange(oldFolder->toULongLong(), changes)
        && noteFolderChange(data.parentFolderId.toULongLong(), changes);
}

bool MessageTable::insertContent(const MimeNode &content, Stored &stored, QList<quint64> *bodies)
{
    StoredContent encoded;
    const KeepBody keep = [&](const BodyOctets &octets) {
        return mBodies.keep(octets, stored.id);
    };
    if (!encodeContent(content, keep, &encoded))
        return false;
    *bodies = encoded.bodies;
    if (!mDatabase.run(QStringLiteral("INSERT INTO contents (format, data) VALUES (?, ?)"),
            { encoded.format, encoded.data }))
        return false;
    stored.content = mDatabase.lastInsertId();
    return true;
}

bool MessageTable::replaceContent(const MimeNode &content, Stored &stored)
{
    QList<quint64> bodies;
    return mDatabase.run(
               QStringLiteral("DELETE FROM contents WHERE id = (SELECT content FROM messages WHERE id = ?)"),
               { stored.id })
        && insertContent(content, stored, &bodies) && mBodies.assign(stored.id, bodies)
        && mDatabase.run(
            QStringLiteral("UPDATE messages SET content = ? WHERE id = ?"), { stored.content, stored.id });
}

bool MessageTable::noteFolderChange(quint64 folder, MailChanges &changes)
{
    if (changes.contains(MailChanges::FolderContentsModified, folder))
        return true;
    changes.add(MailChanges::FolderContentsModified,
        mDatabase.numbers(
            QStringLiteral("WITH RECURSIVE above(id, parent) AS (SELECT id, parent FROM folders WHERE id = ?"
                           " UNION SELECT folders.id, folders.parent FROM folders JOIN above"
                           " ON folders.id = above.parent) SELECT id FROM above"),
            { folder }));
    return mDatabase.lastError() == QMailStore::NoError;
}

bool MessageTable::setStatus(const MailKeyNode &key, quint64 mask, bool set, MailChanges &changes)
{
    const qlonglong bits = qlonglong(mask & ~QMailMessageMetaData::UnloadedData);
    const CompiledKey compiled = compileMessageKey(key);
    // Only those that it changes anything for.
    const QString missing = QLatin1String(set ? "(status & ?) <> ?" : "(status & ?) <> 0");
    QVariantList values { bits };
    if (set)
        values.append(bits);
    QList<quint64> folders;
    QList<quint64> ids;
    const QString select =
        QStringLiteral("SELECT id, folder FROM messages WHERE %1 AND %2").arg(missing, compiled.condition);
    if (!mDatabase.select(select, values + compiled.values, [&](const QSqlQuery &row) {
            ids.append(row.value(0).toULongLong());
            folders.append(row.value(1).toULongLong());
        }))
        return false;
    const QString update = set ? QStringLiteral("UPDATE messages SET status = status | ? WHERE id = ?")
                               : QStringLiteral("UPDATE messages SET status = status & ~? WHERE id = ?");
    for (const quint64 id : qAsConst(ids)) {
        if (!mDatabase.run(update, { bits, id }))
            return false;
    }
    changes.add(MailChanges::MessagesUpdated, ids);
    for (const quint64 folder : qAsConst(folders)) {
        if (!noteFolderChange(folder, changes))
            return false;
    }
    return true;
}

bool MessageTable::remove(const MailKeyNode &key, bool createRecords, MailChanges &changes)
{
    const QList<quint64> ids = query(key, 0, 0);
    if (mDatabase.lastError() != QMailStore::NoError)
        return false;
    for (const quint64 id : ids) {
        if (!removeOne(id, createRecords, changes))
            return false;
    }
    return true;
}

bool MessageTable::removeOne(quint64 id, bool createRecord, MailChanges &changes)
{
    quint64 account = 0;
    quint64 folder = 0;
    QString uid;
    const bool known =
        mDatabase.select(QStringLiteral("SELECT account, folder, server_uid FROM messages WHERE id = ?"),
            { id }, [&](const QSqlQuery &row) {
                account = row.value(0).toULongLong();
                folder = row.value(1).toULongLong();
                uid = row.value(2).toString();
            });
    if (!known)
        return false;
    if (createRecord) {
        if (!mDatabase.run(
                QStringLiteral("INSERT INTO removal_records (account, folder, server_uid) VALUES (?, ?, ?)"),
                { account, folder, notNull(uid) }))
            return false;
        changes.add(MailChanges::RemovalRecordsAdded, account);
    }
    changes.add(MailChanges::MessagesRemoved, id);
    return mFields.remove(id)
        && mDatabase.run(
            QStringLiteral("DELETE FROM contents WHERE id = (SELECT content FROM messages WHERE id = ?)"),
            { id })
        && mDatabase.run(QStringLiteral("DELETE FROM messages WHERE id = ?"), { id })
        && noteFolderChange(folder, changes);
}

QList<quint64> MessageTable::query(const MailKeyNode &key, uint limit, uint offset)
{
    const CompiledKey compiled = compileMessageKey(key);
    return mDatabase.numbers(QStringLiteral("SELECT id FROM messages WHERE %1 ORDER BY %2 LIMIT ? OFFSET ?")
                                 .arg(compiled.condition, compiled.order),
        compiled.values + QVariantList { limit == 0 ? -1 : qlonglong(limit), offset });
}

int MessageTable::count(const MailKeyNode &key)
{
    const CompiledKey compiled = compileMessageKey(key);
    return mDatabase
        .value(
            QStringLiteral("SELECT COUNT(*) FROM messages WHERE %1").arg(compiled.condition), compiled.values)
        .value_or(QVariant())
        .toInt();
}

bool MessageTable::load(quint64 id, QMailMessageMetaData &message)
{
    static const QString select =
        QStringLiteral("SELECT %1, content FROM messages WHERE id = ?").arg(QLatin1String(columns));
    bool found = false;
    QMailMessageMetaDataData &data = MailValueAccess::data(message);
    mDatabase.select(select, { id }, [&](const QSqlQuery &row) {
        readColumns(row, data);
        found = true;
    });
    if (!found) {
        if (mDatabase.lastError() == QMailStore::NoError)
            mDatabase.setLastError(QMailStore::InvalidId);
        return false;
    }
    data.id = QMailMessageId(id);
    if (!data.parentThreadId.isValid())
        data.parentThreadId = QMailThreadId(id);
    data.fields.values = mFields.load(id);
    return true;
}

quint64 MessageTable::idOf(const QString &uid, quint64 account)
{
    if (uid.isEmpty())
        return 0;
    return mDatabase
        .value(QStringLiteral(
                   "SELECT id FROM messages WHERE account = ? AND server_uid = ? AND server_uid <> ''"),
            { account, uid })
        .value_or(QVariant())
        .toULongLong();
}

void MessageTable::loadContent(quint64 id, MimeNode &node)
{
    StoredContent content;
    mDatabase.select(QStringLiteral("SELECT contents.format, contents.data FROM messages"
                                    " JOIN contents ON contents.id = messages.content WHERE messages.id = ?"),
        { id }, [&content](const QSqlQuery &row) {
            content.format = row.value(0).toInt();
            content.data = row.value(1).toByteArray();
        });
    if (!content.data.isEmpty())
        decodeContent(content, node);
}

QMailMessageRemovalRecordList MessageTable::removalRecords(quint64 account, quint64 folder)
{
    QMailMessageRemovalRecordList records;
    mDatabase.select(QStringLiteral("SELECT server_uid, folder FROM removal_records WHERE account = ?"
                                    " AND (? = 0 OR folder = ?) ORDER BY rowid"),
        { account, folder, folder }, [&](const QSqlQuery &row) {
            records.append(QMailMessageRemovalRecord(
                QMailAccountId(account), row.value(0).toString(), QMailFolderId(row.value(1).toULongLong())));
        });
    return records;
}

bool MessageTable::purgeRemovalRecords(quint64 account, const QStringList &uids, MailChanges &changes)
{
    int purged = 0;
    if (uids.isEmpty()) {
        if (!mDatabase.run(QStringLiteral("DELETE FROM removal_records WHERE account = ?"), { account }))
            return false;
        purged = mDatabase.changedRows();
    }
    for (const QString &uid : uids) {
        if (!mDatabase.run(QStringLiteral("DELETE FROM removal_records WHERE account = ? AND server_uid = ?"),
                { account, notNull(uid) }))
            return false;
        purged += mDatabase.changedRows();
    }
    if (purged > 0)
        changes.add(MailChanges::RemovalRecordsRemoved, account);
    return true;
}
