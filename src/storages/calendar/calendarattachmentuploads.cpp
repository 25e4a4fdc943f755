// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarattachmentuploads.h"

#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarattachmentservice.h"

#include <QSet>

#include <algorithm>
#include <iterator>

namespace {

bool settleDeleted(const QString &eventKey, const QSet<QString> &references)
{
    const Lookup<QList<EasAttachmentContainer>> rows =
        EasDatabase::instance()->getCalendarAttachments(eventKey);
    if (!rows)
        return false;
    QList<EasAttachmentContainer> kept;
    std::copy_if(rows->cbegin(), rows->cend(), std::back_inserter(kept),
        [&references](
            const EasAttachmentContainer &row) { return !references.contains(row.fileReference()); });
    return bool(CalendarAttachmentService::processLocallyDeletedAttachments(eventKey, kept));
}

} // namespace

bool CalendarAttachmentUploads::applyAttachments(
    const KCalendarCore::Event::Ptr &event, EasCalendarItem &item)
{
    const auto present = CalendarAttachmentService().handleLocalAttachments(event);
    if (!present)
        return true;
    const Lookup<QList<EasAttachmentContainer>> rows =
        EasDatabase::instance()->getCalendarAttachments(CalendarAttachmentService::eventKey(*event));
    if (!rows)
        return false;
    QSet<QString> known;
    for (const EasAttachmentContainer &row : *rows)
        known.insert(row.contentId());
    QList<EasAttachmentContainer> changes;
    QSet<QString> references;
    for (const EasAttachmentContainer &attachment : *present) {
        references.insert(attachment.fileReference());
        if (attachment.fileReference().isEmpty() && !known.contains(attachment.contentId())) {
            known.insert(attachment.contentId());
            changes.append(attachment);
        }
    }
    for (const EasAttachmentContainer &row : *rows) {
        if (row.fileReference().isEmpty() || references.contains(row.fileReference()))
            continue;
        EasAttachmentContainer deletion;
        deletion.setFileReference(row.fileReference());
        changes.append(deletion);
    }
    if (!changes.isEmpty())
        item.setAttachments(changes);
    return true;
}

bool CalendarAttachmentUploads::settle(const QString &eventKey, const QList<EasAttachmentContainer> &sent)
{
    QList<EasAttachmentContainer> added;
    QSet<QString> deleted;
    for (const EasAttachmentContainer &attachment : sent) {
        if (attachment.fileReference().isEmpty())
            added.append(attachment);
        else
            deleted.insert(attachment.fileReference());
    }
    return (deleted.isEmpty() || settleDeleted(eventKey, deleted))
        && CalendarAttachmentService::processLocallyAddedAttachments(eventKey, added);
}
