// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easitemscommon.h"

#include <QString>

/**
 * One answer to an invitation, as a MeetingResponse carries it: to the message or event of a collection, or
 * to one that the server knows by a long identifier alone. A plain value.
 */
class MeetingResponseRequestContainer
{
public:
    EasItemsCommon::UserResponseType userResponse() const { return mUserResponse; }
    void setUserResponse(EasItemsCommon::UserResponseType response) { mUserResponse = response; }
    QString collectionId() const { return mCollectionId; }
    void setCollectionId(const QString &id) { mCollectionId = id; }
    QString requestId() const { return mRequestId; }
    void setRequestId(const QString &id) { mRequestId = id; }
    QString longId() const { return mLongId; }
    void setLongId(const QString &id) { mLongId = id; }
    /** The original start of the occurrence that the answer is about, as the protocol writes it; empty for
     * the whole meeting. */
    QString instanceId() const { return mInstanceId; }
    void setInstanceId(const QString &id) { mInstanceId = id; }
    /** Whether the organizer is to hear of the answer by a mail of the server, from 16.0 on. */
    bool isResponseWanted() const { return mIsResponseWanted; }
    void setResponseWanted(bool isWanted) { mIsResponseWanted = isWanted; }

private:
    EasItemsCommon::UserResponseType mUserResponse = EasItemsCommon::UserResponseUndefined;
    QString mCollectionId;
    QString mRequestId;
    QString mLongId;
    QString mInstanceId;
    bool mIsResponseWanted = false;
};
