// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarattachmentservice.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarownfiles.h"

#include <attachmentinfo.h>
#include <attachmentmanager.h>

#include <QFile>
#include <QUrl>

#include <stdexcept>

using KCalendarCore::Attachment;
using KCalendarCore::Event;
using mKCal::AttachmentInfo;
using mKCal::AttachmentManager;

namespace {

const QString fileReferenceKey = QStringLiteral("eas_attachment_file_reference");
const QString eventIdKey = QStringLiteral("eas_attachment_event_id");
const QString occurrenceIdKey = QStringLiteral("eas_attachment_occurrence_id");
const QString methodKey = QStringLiteral("eas_attachment_method");
const QLatin1Char occurrenceSeparator('|');

QString referenceOf(const Attachment &attachment)
{
    return AttachmentInfo::extractServiceProperty(attachment.uri(), fileReferenceKey);
}

/** Empty for an event that is no exception. */
QString occurrenceId(const Event &event)
{
    const QDateTime moment = event.recurrenceId();
    // A day is in clock time and the same everywhere; the text of a moment must not depend on the zone it was
    // given in. Whether the exception itself lasts whole days does not matter: an edit can change that.
    return (moment.timeSpec() == Qt::LocalTime ? moment : moment.toUTC())
        .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

/** An exception may still have what it inherited of its series, whose bytes are not its own. */
void removeBytes(const Event &event, const Attachment &attachment)
{
    const AttachmentInfo info(attachment);
    if (info.extractServiceProperty(eventIdKey) != event.uid()
        || info.extractServiceProperty(occurrenceIdKey) != occurrenceId(event))
        return;
    const QUrl location(info.contentLocation());
    if (location.isLocalFile() && !QFile::remove(location.toLocalFile()))
        qCWarning(eas()) << "cannot remove" << location;
}

/** Within an event a file without a content identifier is told by its reference. */
AttachmentEntity identified(AttachmentEntity entity)
{
    if (entity.contentId().isEmpty())
        entity.setContentId(entity.fileReference());
    return entity;
}

Attachment toAttachment(const Event &event, const AttachmentEntity &entity)
{
    AttachmentManager manager;
    manager.setFileName(entity.displayName());
    manager.setEstimatedSize(entity.estimatedDataSize());
    manager.setServiceProperty(fileReferenceKey, entity.fileReference());
    manager.setServiceProperty(eventIdKey, event.uid());
    if (event.hasRecurrenceId())
        manager.setServiceProperty(occurrenceIdKey, occurrenceId(event));
    manager.setServiceProperty(methodKey, QString::number(entity.method()));
    Attachment attachment = manager.attachment();
    attachment.setShowInline(entity.isInline());
    return attachment;
}

} // namespace

QString CalendarAttachmentService::eventKey(const Event &event)
{
    return event.hasRecurrenceId() ? event.uid() + occurrenceSeparator + occurrenceId(event) : event.uid();
}

QString CalendarAttachmentService::fileReference(const QString &uri)
{
    return AttachmentInfo::extractServiceProperty(uri, fileReferenceKey);
}

int CalendarAttachmentService::estimatedDataSize(const QString &uri)
{
    return int(AttachmentInfo(uri).fileSize());
}

void CalendarAttachmentService::handleRemoteAttachments(
    const Event::Ptr &event, const QList<AttachmentEntity> &entities)
{
    qCDebug(eas()) << "Handling new attachments for event with ID:" << event->uid()
                   << "and attachments count:" << entities.size();
    EasDatabase *database = EasDatabase::instance();
    const QString key = eventKey(*event);
    QStringList references;
    for (const AttachmentEntity &entity : entities)
        references.append(entity.fileReference());

    CalendarOwnFiles own;
    const Attachment::List present = event->attachments();
    for (const Attachment &attachment : present) {
        const QString reference = referenceOf(attachment);
        if (reference.isEmpty()) {
            own.add(attachment, event->uid());
        } else if (!references.contains(reference)) {
            database->deleteCalendarAttachmentByFileReference(key, reference);
            removeBytes(*event, attachment);
        }
    }
    event->clearAttachments();
    qCDebug(eas()).noquote()
        << QStringLiteral("Cleared all attachments for event with ID: %1.").arg(event->uid());

    for (const AttachmentEntity &received : entities) {
        const AttachmentEntity entity = identified(received);
        const Attachment attachment = toAttachment(*event, entity);
        event->addAttachment(attachment);
        own.handOver(entity, attachment);
        // Each leaves the rows alone that the other is for; a row that cannot be looked up gets both.
        const Lookup<Existence> row = database->isCalendarAttachmentExists(key, entity.contentId());
        if (!row || *row == Existence::Missing)
            database->addCalendarAttachment(key, entity);
        if (!row || *row == Existence::Present) {
            qCDebug(eas()) << "Updating old attachment with file reference" << entity.fileReference();
            database->updateCalendarAttachmentFileRefernce(key, entity);
        }
    }
    // What the server has not told yet is still on its way there.
    const Attachment::List unknown = own.notHandedOver();
    for (const Attachment &attachment : unknown)
        event->addAttachment(attachment);
}

bool CalendarAttachmentService::completeRows(
    const Event &event, const QList<EasAttachmentContainer> &received)
{
    EasDatabase *database = EasDatabase::instance();
    const QString key = eventKey(event);
    QStringList present;
    const Attachment::List attachments = event.attachments();
    for (const Attachment &attachment : attachments) {
        // What an exception has inherited of its series stands in the rows of that.
        if (AttachmentInfo::extractServiceProperty(attachment.uri(), occurrenceIdKey) == occurrenceId(event))
            present.append(referenceOf(attachment));
    }
    for (const EasAttachmentContainer &container : received) {
        if (!present.contains(container.fileReference()))
            continue;
        const Lookup<Existence> row = database->isCalendarAttachmentExists(key, container.fileReference());
        if (!row)
            return false;
        if (*row == Existence::Missing
            && !database->addCalendarAttachment(key, identified(AttachmentEntity(container))))
            return false;
    }
    return true;
}

std::optional<QList<EasAttachmentContainer>> CalendarAttachmentService::handleLocalAttachments(
    const Event::Ptr &event)
{
    const Attachment::List attachments = event->attachments();
    qCDebug(eas()).noquote() << QStringLiteral(
        "Handling local attachments for event with ID: %1 and attachments count: %2")
                                    .arg(event->uid())
                                    .arg(attachments.size());
    const QString key = eventKey(*event);
    QList<EasAttachmentContainer> containers;
    try {
        for (const Attachment &attachment : attachments) {
            const AttachmentInfo info(attachment);
            EasAttachmentContainer container;
            container.setDisplayName(info.fileName());
            container.setEstimatedDataSize(int(info.fileSize()));
            container.setContentLocation(info.contentLocation());
            container.setFileReference(referenceOf(attachment));
            container.setMethod(
                EasAttachmentContainer::Method(info.extractServiceProperty(methodKey).toInt()));
            if (!container.fileReference().isEmpty()) {
                const auto row =
                    EasDatabase::instance()->getAttachmentByFileReference(key, container.fileReference());
                if (!row)
                    return std::nullopt;
                if (*row)
                    container.setContentId((*row)->contentId());
            } else if (CalendarOwnFiles::isFile(attachment)) {
                container.setContentId(
                    CalendarOwnFiles::contentHash(container.contentLocation(), event->uid()));
                container.setClientId(container.contentId());
                container.setMethod(EasAttachmentContainer::NormalAttachmentMethod);
            } else {
                qCDebug(eas()) << "an attachment that is no file stays on the device" << event->uid();
                continue;
            }
            containers.append(container);
        }
    } catch (const std::runtime_error &error) {
        qCCritical(eas()).noquote() << QStringLiteral(
            "Failed to handle local attachments for event with ID: %1. Error: %2")
                                           .arg(event->uid(), QString::fromUtf8(error.what()));
        return std::nullopt;
    }
    return containers;
}

bool CalendarAttachmentService::processLocallyAddedAttachments(
    const QString &eventKey, QList<EasAttachmentContainer> &attachments)
{
    EasDatabase *database = EasDatabase::instance();
    QList<EasAttachmentContainer> added;
    for (const EasAttachmentContainer &attachment : qAsConst(attachments)) {
        const QString contentId = attachment.contentId();
        if (!attachment.fileReference().isEmpty()) {
            qCDebug(eas()).noquote() << QStringLiteral(
                "Skipping attachment with file reference: %1 for event with ID: %2 cause it's already added.")
                                            .arg(attachment.fileReference(), eventKey);
        } else if (contentId.isEmpty()) {
            qCWarning(eas()).noquote()
                << QStringLiteral("Failed to process one calendar attachment, for event with ID: %1 cause "
                                  "it's contentID is empty!")
                       .arg(eventKey);
        } else {
            const Lookup<Existence> row = database->isCalendarAttachmentExists(eventKey, contentId);
            if (!row)
                return false;
            if (*row == Existence::Present) {
                qCDebug(eas()) << "Attachment for event:" << eventKey << "and attachemnt, content ID"
                               << contentId << "already exists. Skipping it.";
                continue;
            }
            qCDebug(eas()) << "Preparing new attachment for the 'new attachment' request."
                           << "For event:" << eventKey << "and attachemnt, content ID" << contentId;
            if (!database->addCalendarAttachment(eventKey, attachment))
                return false;
            added.append(attachment);
        }
    }
    attachments = added;
    return true;
}

Lookup<QList<EasAttachmentContainer>> CalendarAttachmentService::processLocallyDeletedAttachments(
    const QString &eventKey, const QList<EasAttachmentContainer> &attachments)
{
    EasDatabase *database = EasDatabase::instance();
    QStringList references;
    for (const EasAttachmentContainer &attachment : attachments)
        references.append(attachment.fileReference());
    QList<EasAttachmentContainer> deleted;
    const Lookup<QList<EasAttachmentContainer>> rows = database->getCalendarAttachments(eventKey);
    if (!rows)
        return rows;
    for (const EasAttachmentContainer &row : *rows) {
        if (row.fileReference().isEmpty()) {
            qCDebug(eas()) << "Failed find if attachment should be deleted, cause fileReference is empty for "
                              "contentId:"
                           << row.contentId() << "and event with ID:" << eventKey;
            continue;
        }
        if (references.contains(row.fileReference()))
            continue;
        qCDebug(eas()) << "Preparing deleted attachment by user for the 'delete attachment' request."
                       << "For event:" << eventKey
                       << "and attachemnt with file refernce:" << row.fileReference() << ", content ID"
                       << row.contentId();
        if (!database->deleteCalendarAttachmentByContentId(eventKey, row.contentId()))
            return Lookup<QList<EasAttachmentContainer>>::unread();
        deleted.append(row);
    }
    return deleted;
}

bool CalendarAttachmentService::saveRemoteAttachment(const QByteArray &data, const QString &uri,
    mKCal::ExtendedStorage::Ptr storage, mKCal::ExtendedCalendar::Ptr calendar)
{
    if (!storage) {
        qCCritical(eas()) << "MkCal Storage is null!";
        return false;
    }
    if (!calendar) {
        qCCritical(eas()) << "MkCal Calendar is null!";
        return false;
    }
    const QString eventId = AttachmentInfo::extractServiceProperty(uri, eventIdKey);
    const QString occurrence = AttachmentInfo::extractServiceProperty(uri, occurrenceIdKey);
    calendar->close();
    if (eventId.isEmpty() || !storage->loadSeries(eventId)) {
        qCWarning(eas()).noquote() << QStringLiteral(
            "Failed to load event with ID: %1 and reccurence ID: %2.")
                                          .arg(eventId, occurrence);
        return false;
    }
    qCDebug(eas()) << "Saving remote attachment for event with ID:" << eventId << "and URI:" << uri;
    Event::Ptr event = calendar->event(eventId);
    if (event && !occurrence.isEmpty()) {
        const Event::List exceptions = calendar->eventInstances(event);
        event.clear();
        for (const Event::Ptr &exception : exceptions) {
            if (occurrenceId(*exception) == occurrence)
                event = exception;
        }
    }
    if (!event) {
        qCWarning(eas()).noquote() << QStringLiteral("Failed to find event with ID: %1.").arg(eventId);
        return false;
    }
    const Attachment::List attachments = event->attachments();
    for (const Attachment &attachment : attachments) {
        QString error;
        if (attachment.uri() != uri)
            continue;
        if (!AttachmentManager(attachment).saveData(data, &error)) {
            qCWarning(eas()).noquote()
                << QStringLiteral("Failed to save remote attachment with uri: %1. Error: %2").arg(uri, error);
            return false;
        }
        // Those who show the event have to hear of it, and the server has not to.
        const QDateTime modified = event->lastModified();
        event->startUpdates();
        event->endUpdates();
        event->setLastModified(modified);
        return storage->save();
    }
    qCWarning(eas()).noquote() << QStringLiteral("Failed to save remote attachment with uri: %1. Error: %2")
                                      .arg(uri, QStringLiteral("the event has no such attachment"));
    return false;
}

bool CalendarAttachmentService::forget(const KCalendarCore::Incidence::List &incidences)
{
    bool forgotten = true;
    for (const KCalendarCore::Incidence::Ptr &incidence : incidences) {
        if (incidence->type() == KCalendarCore::Incidence::TypeEvent)
            forgotten = forgetEvent(*incidence.staticCast<Event>()) && forgotten;
    }
    return forgotten;
}

bool CalendarAttachmentService::forgetEvent(const Event &event)
{
    const bool forgotten = EasDatabase::instance()->deleteCalendarAttachments(eventKey(event));
    const Attachment::List attachments = event.attachments();
    for (const Attachment &attachment : attachments) {
        if (!referenceOf(attachment).isEmpty())
            removeBytes(event, attachment);
    }
    return forgotten;
}
