// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"

#include <KCalendarCore/Event>

#include <QHash>
#include <QSet>
#include <QStringList>

struct CalendarStoreContext;

/**
 * The attachments that go up with local changes.
 *
 * The rows of the mapping are written when a change is found. Until the server has acknowledged it, a
 * repeated search starts from the rows as they were, so that an upload that failed brings the files once
 * more.
 */
class CalendarAttachmentUploads
{
public:
    explicit CalendarAttachmentUploads(const CalendarStoreContext &context);

    /** Up to 14.1 events of a server have no attachments, and nothing is set. */
    void applyAttachments(const KCalendarCore::Event::Ptr &event, EasCalendarItem &item);
    /** The server has taken what went up with these events. */
    void settle(const QStringList &uids);

private:
    /** The rows of one event that the last search has changed. */
    struct Sent
    {
        QString uid;
        QStringList added;
        QList<EasAttachmentContainer> deleted;
    };

    void takeBack(const QString &eventKey);

    const CalendarStoreContext &mContext;
    QHash<QString, Sent> mSent;
    /** Files that the server has, though it has not told their references. */
    QHash<QString, QSet<QString>> mTaken;
};
