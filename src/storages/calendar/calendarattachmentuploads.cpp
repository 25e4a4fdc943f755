// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarattachmentuploads.h"

#include "application/account/easaccount.h"
#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendarstorecontext.h"

CalendarAttachmentUploads::CalendarAttachmentUploads(const CalendarStoreContext &context)
    : mContext(context)
{
}

void CalendarAttachmentUploads::applyAttachments(
    const KCalendarCore::Event::Ptr &event, EasCalendarItem &item)
{
    if (!mContext.account || mContext.account->protocolVersion() < ExchangeActiveSync::ProtocolVersion160)
        return;
    const QString key = CalendarAttachmentService::eventKey(*event);
    takeBack(key);
    CalendarAttachmentService service;
    const auto present = service.handleLocalAttachments(event);
    if (!present)
        return;
    QList<EasAttachmentContainer> added = *present;
    Sent sent;
    sent.uid = event->uid();
    sent.deleted = CalendarAttachmentService::processLocallyDeletedAttachments(key, added);
    // Without their rows, a run that is interrupted before the answer would leave the server its files.
    EasDatabase *database = EasDatabase::instance();
    for (const EasAttachmentContainer &row : qAsConst(sent.deleted))
        database->addCalendarAttachment(key, row);
    CalendarAttachmentService::processLocallyAddedAttachments(key, added);
    QList<EasAttachmentContainer> changes = added;
    for (const EasAttachmentContainer &attachment : qAsConst(added))
        sent.added.append(attachment.contentId());
    for (const EasAttachmentContainer &row : qAsConst(sent.deleted)) {
        EasAttachmentContainer deletion;
        deletion.setFileReference(row.fileReference());
        changes.append(deletion);
    }
    if (changes.isEmpty())
        return;
    item.setAttachments(changes);
    mSent.insert(key, sent);
}

void CalendarAttachmentUploads::takeBack(const QString &eventKey)
{
    EasDatabase *database = EasDatabase::instance();
    mSent.remove(eventKey);
    const QSet<QString> taken = mTaken.value(eventKey);
    const QList<EasAttachmentContainer> rows = database->getCalendarAttachments(eventKey).valueOr({});
    for (const EasAttachmentContainer &row : rows) {
        // Also what was sent before a restart: without a reference nothing says that it has arrived.
        if (row.fileReference().isEmpty() && !taken.contains(row.contentId()))
            database->deleteCalendarAttachmentByContentId(eventKey, row.contentId());
    }
}

void CalendarAttachmentUploads::settle(const QStringList &uids)
{
    for (auto sent = mSent.begin(); sent != mSent.end();) {
        if (!uids.contains(sent->uid)) {
            ++sent;
            continue;
        }
        for (const QString &contentId : qAsConst(sent->added))
            mTaken[sent.key()].insert(contentId);
        for (const EasAttachmentContainer &row : qAsConst(sent->deleted))
            EasDatabase::instance()->deleteCalendarAttachmentByContentId(sent.key(), row.contentId());
        sent = mSent.erase(sent);
    }
}
