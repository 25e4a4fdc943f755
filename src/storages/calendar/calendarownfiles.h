// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/attachmententity.h"

#include <KCalendarCore/Attachment>

#include <QMap>
#include <QString>

/**
 * The attachments of an event that the user made, while a list of the server replaces those of the server.
 * One that the list names by its content has arrived there, and its bytes are those of the server's entry.
 *
 * Made for one list; main thread only.
 */
class CalendarOwnFiles
{
public:
    /** Not every attachment of the device is a file: links and bytes within the event cannot go up. */
    static bool isFile(const KCalendarCore::Attachment &attachment);
    /** @throws std::runtime_error for a file that cannot be read. */
    static QString contentHash(const QString &location, const QString &eventId);

    void add(const KCalendarCore::Attachment &attachment, const QString &eventId);
    /** Gives the bytes of the user's file to the server's entry, if it is the same one. */
    void handOver(const AttachmentEntity &entity, const KCalendarCore::Attachment &attachment);
    /** Those that the server has not told yet. */
    KCalendarCore::Attachment::List notHandedOver() const;

private:
    QMap<QString, KCalendarCore::Attachment> mByHash;
    KCalendarCore::Attachment::List mOthers;
};
