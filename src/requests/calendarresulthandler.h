// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "requests/syncresulthandler.h"

class CalendarStorage;

/** Events of a Sync reply: acknowledged uploads first, then the server's items. */
class CalendarResultHandler : public SyncResultHandler
{
public:
    using SyncResultHandler::SyncResultHandler;

    bool handle(SyncCollection &collection) override;

private:
    void collectSent(const SyncCollection &collection);
    bool collectUploaded(const SyncCollection &collection);
    bool collectUploadedAdds(const SyncCollection &collection);
    bool storeUploaded(CalendarStorage &storage);
    bool storeReceived(CalendarStorage &storage, SyncCollection &collection);
    void storeSyncTime(CalendarStorage &storage, const SyncCollection &collection);

    QList<EasCalendarItem> mSentAdded;
    QList<EasCalendarItem> mSentChanged;
    QStringList mSentDeleted;
    QList<EasCalendarItem> mUploadedAdded;
    QList<EasCalendarItem> mUploadedChanged;
    QList<QString> mUploadedDeleted;
};
