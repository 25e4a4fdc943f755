// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "requests/uploadresulthandler.h"

class CalendarStorage;

/** Events of a Sync reply: acknowledged uploads first, then the server's items. */
class CalendarResultHandler : public UploadResultHandler<EasCalendarItem>
{
public:
    using UploadResultHandler::UploadResultHandler;

    bool handle(SyncCollection &collection) override;

protected:
    const Kind &kind() const override;

private:
    bool readRows(const SyncCollection &collection);
    bool collectUploaded(const SyncCollection &collection);
    void returnDeletedOccurrences(const SyncCollection &collection);
    void keepRefusedOccurrences(const SyncCollection &collection);
    bool storeUploaded(CalendarStorage &storage);
    bool storeReceived(CalendarStorage &storage, const SyncCollection &collection);
    bool storeSyncTime(CalendarStorage &storage, const SyncCollection &collection);

    /** By server identifiers, of the events that the collection names. */
    QMap<QString, QString> mLocalIds;
};
