// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/attachmentrows.h"

#include "application/base/logging.h"
#include "application/mapping/databasecolumns.h"
#include "application/mapping/databasereading.h"
#include "easitems/containers/easattachmentcontainer.h"

using DatabaseColumns::stored;

namespace {

// Some of the texts start with the Cyrillic capital Es; they are searched for as they are.
const StatementFailure CantGetAttachment(
    "Can't execute GET attachment query for event:", "Can't execute PREPARE attachment query for event:");

EasAttachmentContainer attachmentOf(const QString &contentId, const QString &fileReference)
{
    EasAttachmentContainer attachment;
    attachment.setContentId(contentId);
    attachment.setFileReference(fileReference);
    return attachment;
}

template <typename AttachmentOfRow>
Lookup<std::optional<EasAttachmentContainer>> attachmentRow(
    DatabaseStatement &select, const QString &eventId, AttachmentOfRow attachmentOfRow)
{
    return DatabaseReading::value(
        select, CantGetAttachment, std::optional<EasAttachmentContainer>(), attachmentOfRow, eventId);
}

} // namespace

AttachmentRows::AttachmentRows(PreparedStatements &statements)
    : mStatements(statements)
{
}

bool AttachmentRows::add(const QString &eventId, const EasAttachmentContainer &attachment) const
{
    DatabaseStatement insert(
        mStatements, QStringLiteral("INSERT OR IGNORE INTO attachments VALUES (?, ?, ?)"));
    insert.bind(stored(eventId))
        .bind(stored(attachment.contentId()))
        .bind(stored(attachment.fileReference()));
    if (!insert.run())
        return insert.fail(
            { "Сan't EXECUTE add attachment for event:", "Сan't PREPARE add attachment for event:" },
            eventId);
    qCInfo(eas()) << "Successfully added new attachment to database for event: " << eventId
                  << " with contentID:" << attachment.contentId()
                  << ", file reference:" << attachment.fileReference();
    return true;
}

Lookup<std::optional<EasAttachmentContainer>> AttachmentRows::byFileReference(
    const QString &eventId, const QString &fileReference) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT content_id FROM attachments WHERE file_reference=? AND local_id=? LIMIT 1"));
    select.bind(fileReference).bind(eventId);
    return attachmentRow(select, eventId,
        [&fileReference](const DatabaseStatement &row) { return attachmentOf(row.text(0), fileReference); });
}

Lookup<std::optional<EasAttachmentContainer>> AttachmentRows::byContentId(
    const QString &eventId, const QString &contentId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT file_reference FROM attachments WHERE content_id=? AND local_id=? LIMIT 1"));
    select.bind(contentId).bind(eventId);
    return attachmentRow(select, eventId,
        [&contentId](const DatabaseStatement &row) { return attachmentOf(contentId, row.text(0)); });
}

Lookup<QList<EasAttachmentContainer>> AttachmentRows::ofEvent(const QString &eventId) const
{
    DatabaseStatement select(
        mStatements, QStringLiteral("SELECT content_id, file_reference FROM attachments WHERE local_id=?"));
    const StatementFailure failure("Can't execute GET attachments query for event:",
        "Can't execute PREPARE attachments query for event:");
    return DatabaseReading::items(
        select.bind(eventId), failure,
        [](const DatabaseStatement &row) { return attachmentOf(row.text(0), row.text(1)); }, eventId);
}

bool AttachmentRows::updateFileReference(
    const QString &eventId, const EasAttachmentContainer &attachment) const
{
    DatabaseStatement update(mStatements,
        QStringLiteral("UPDATE attachments SET file_reference=? WHERE local_id=? AND content_id=?"));
    update.bind(stored(attachment.fileReference())).bind(eventId).bind(attachment.contentId());
    if (!update.run())
        return update.fail({ "Сan't EXECUTE update attachment query for event:",
                               "Сan't PREPARE update attachment query for event:" },
            eventId);
    qCInfo(eas()) << "Successfully updated attachment for event: " << eventId
                  << " with new contentID:" << attachment.contentId()
                  << " and new refernce ID:" << attachment.fileReference();
    return true;
}

bool AttachmentRows::updateContentId(const QString &eventId, const EasAttachmentContainer &attachment) const
{
    DatabaseStatement update(mStatements,
        QStringLiteral(
            "UPDATE OR IGNORE attachments SET content_id=? WHERE local_id=? AND file_reference=?"));
    update.bind(stored(attachment.contentId())).bind(eventId).bind(attachment.fileReference());
    return update.run() || update.fail("Сan't UPDATE attachment for event:", eventId);
}

bool AttachmentRows::removeByContentId(const QString &eventId, const QString &contentId) const
{
    DatabaseStatement statement(
        mStatements, QStringLiteral("DELETE FROM attachments WHERE local_id=? AND content_id=?"));
    return statement.bind(eventId).bind(contentId).run()
        || statement.fail("Сan't DELETE attachment by contentId for event:", eventId);
}

bool AttachmentRows::removeOfEvent(const QString &eventId) const
{
    DatabaseStatement statement(mStatements, QStringLiteral("DELETE FROM attachments WHERE local_id=?"));
    return statement.bind(eventId).run() || statement.fail("can't remove attachments of event:", eventId);
}

bool AttachmentRows::removeByFileReference(const QString &eventId, const QString &fileReference) const
{
    DatabaseStatement statement(
        mStatements, QStringLiteral("DELETE FROM attachments WHERE local_id=? AND file_reference=?"));
    return statement.bind(eventId).bind(fileReference).run()
        || statement.fail("Сan't DELETE attachment by fileReference for event:", eventId);
}

Lookup<Existence> AttachmentRows::presence(const QString &eventId, const QString &uniqueId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT EXISTS(SELECT 1 FROM attachments WHERE local_id = :localId AND "
                       "(content_id = :uniqueId OR file_reference = :uniqueId))"));
    select.bind(QStringLiteral(":localId"), eventId).bind(QStringLiteral(":uniqueId"), uniqueId);
    const StatementFailure failure(
        "Сan't execute found attachment query for event:", "Сan't prepare found attachment query for event:");
    const auto presenceOf = [](const DatabaseStatement &row) {
        return std::make_optional(row.value(0).toBool() ? Existence::Present : Existence::Missing);
    };
    const auto answer =
        DatabaseReading::value(select, failure, std::optional<Existence>(), presenceOf, eventId);
    if (answer && *answer)
        return **answer;
    // The query has one row whatever the table holds.
    if (answer)
        select.fail("can't retrieve first record from query for event:", eventId);
    return Lookup<Existence>::unread();
}

bool AttachmentRows::removeStrays() const
{
    // The key of an exception is its event's with a separator and a moment behind it.
    const QString moment = QStringLiteral("|yyyy-MM-dd hh:mm:ss");
    DatabaseStatement statement(mStatements,
        QStringLiteral("DELETE FROM attachments WHERE file_reference <> '' "
                       "AND local_id NOT IN (SELECT local_id FROM calendar WHERE local_id IS NOT NULL) "
                       "AND substr(local_id, 1, length(local_id) - %1) "
                       "NOT IN (SELECT local_id FROM calendar WHERE local_id IS NOT NULL)")
            .arg(moment.size()));
    return statement.run() || statement.fail("can't remove attachments of no event", QString());
}
