// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/meetinganswerlookup.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/emailserverid.h"
#include "protocol/base/protocoltime.h"
#include "storages/calendarstorage.h"
#include "storages/mailstorage.h"

MeetingAnswerLookup::MeetingAnswerLookup(EasAccountId accountId, MailStorage &mails, CalendarStorage &events)
    : mAccountId(accountId)
    , mMails(mails)
    , mEvents(events)
{
}

std::optional<MeetingResponseRequestContainer> MeetingAnswerLookup::container(
    const MeetingAnswer &answer) const
{
    MeetingResponseRequestContainer container;
    container.setUserResponse(answer.userResponse);
    if (answer.isAboutEvent() ? setEvent(answer, container) : setMessage(answer, container))
        return container;
    return std::nullopt;
}

bool MeetingAnswerLookup::setEvent(
    const MeetingAnswer &answer, MeetingResponseRequestContainer &container) const
{
    const Lookup<QString> serverId =
        EasDatabase::instance()->localToServerCalendarId(mAccountId, answer.requestEventId);
    if (!serverId || serverId->isEmpty()) {
        qCWarning(eas()) << "No calendar server-id for:" << answer.requestEventId;
        return false;
    }
    const Lookup<QString> collectionId =
        EasDatabase::instance()->serverCalendarIdToCollectionId(mAccountId, *serverId);
    if (!collectionId || collectionId->isEmpty()) {
        qCWarning(eas()) << "No collection server-id for:" << *serverId;
        return false;
    }
    container.setCollectionId(*collectionId);
    container.setRequestId(*serverId);
    if (answer.instanceId == 0)
        return true;
    container.setInstanceId(mEvents.instanceId(answer.requestEventId, answer.occurrence()));
    if (container.instanceId().isEmpty())
        qCWarning(eas()) << "No occurrence of event" << answer.requestEventId << "at" << answer.occurrence();
    return !container.instanceId().isEmpty();
}

bool MeetingAnswerLookup::setMessage(
    const MeetingAnswer &answer, MeetingResponseRequestContainer &container) const
{
    const QString uid = mMails.serverUidFromMessageId(answer.requestMessageId);
    if (uid.isEmpty()) {
        qCWarning(eas()) << "No server UID for message:" << answer.requestMessageId;
        return false;
    }
    container.setInstanceId(ProtocolTime::toWire(answer.occurrence()));
    const QString localId = QString::number(answer.requestMessageId);
    const Lookup<QMap<QString, QString>> serverIds =
        EasDatabase::instance()->localToServerEmailIds(mAccountId, { localId });
    if (!serverIds)
        return false;
    const KeptEmailId serverId(serverIds->value(localId));
    if (serverId.text().isEmpty()) {
        qCInfo(eas()) << "No server ID in cache for:" << answer.requestMessageId
                      << ", UID should be longId:" << uid;
        container.setLongId(uid);
        return true;
    }
    const Lookup<QString> collectionId =
        EasDatabase::instance()->folderServerIdByEmailServerId(mAccountId, serverId.text());
    if (!collectionId || collectionId->isEmpty()) {
        qCWarning(eas()) << "No collection server-id for:" << serverId.text();
        return false;
    }
    container.setCollectionId(*collectionId);
    container.setRequestId(serverId.onWire().text());
    return true;
}
