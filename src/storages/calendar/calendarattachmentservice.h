// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "easitems/containers/attachmententity.h"

#include <extendedcalendar.h>
#include <extendedstorage.h>

#include <KCalendarCore/Event>

#include <QObject>

#include <optional>

/**
 * Keeps three sides of an event's attachments together: the event's own list, the rows of the mapping
 * database, and what goes to and comes from the server.
 *
 * The server's files are references until their bytes are fetched; a file that the user attached is one of
 * the device until the server has told its reference. Rows are keyed by the event, an exception's by it and
 * its occurrence. Without state; made for one use. Main thread only.
 */
class CalendarAttachmentService : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /** The server's list reaches the event; files of the user that it does not know yet stay. */
    void handleRemoteAttachments(
        const KCalendarCore::Event::Ptr &event, const QList<AttachmentEntity> &entities);
    /**
     * Enters those of the received attachments that the event has and the database, for a failure, has not.
     * False if that fails again.
     */
    static bool completeRows(
        const KCalendarCore::Event &event, const QList<EasAttachmentContainer> &received);
    /** The event's list, or nothing if one of its files cannot be read. */
    std::optional<QList<EasAttachmentContainer>> handleLocalAttachments(
        const KCalendarCore::Event::Ptr &event);

    /** Leaves what is to be uploaded, and enters it in the database. False if the database fails. */
    static bool processLocallyAddedAttachments(
        const QString &eventKey, QList<EasAttachmentContainer> &attachments);
    /** Those that the database knows and the list does not hold; they leave the database. */
    static Lookup<QList<EasAttachmentContainer>> processLocallyDeletedAttachments(
        const QString &eventKey, const QList<EasAttachmentContainer> &attachments);

    /** Stores bytes that were fetched for the attachment with this URI, and touches its event. */
    bool saveRemoteAttachment(const QByteArray &data, const QString &uri, mKCal::ExtendedStorage::Ptr storage,
        mKCal::ExtendedCalendar::Ptr calendar);

    /** Removes the rows and the fetched bytes of events that have gone. False if the database fails. */
    static bool forget(const KCalendarCore::Incidence::List &incidences);

    static QString fileReference(const QString &uri);
    static int estimatedDataSize(const QString &uri);
    static QString eventKey(const KCalendarCore::Event &event);

private:
    static bool forgetEvent(const KCalendarCore::Event &event);
};
