// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easattachmentcontainer.h"
#include "easitems/containers/easbodycontainer.h"
#include "easitems/containers/easbodypartcontainer.h"
#include "easitems/containers/easflagcontainer.h"
#include "easitems/containers/easmeetingrequestcontainer.h"
#include "easitems/containers/easrecurrencecontainer.h"
#include "easitems/easgeneralitem.h"
#include "easitems/easitemscommon.h"

#include <QByteArray>
#include <QList>
#include <QMetaType>
#include <QStringList>

/**
 * One mail item: received in a reply, or a local change on its way to the server.
 *
 * A plain value. Texts, dates among them, are kept as they were sent. An item whose reply does not tell
 * whether it has been read counts as read, so that it does not turn up as a new unread message.
 */
class EasEmailItem : public EasGeneralItem
{
    Q_GADGET

public:
    enum EmailImportance : int { LowImportance = 0, NormalImportance = 1, HighImportance = 2 };
    Q_ENUM(EmailImportance)
    enum LastVerbExecutedValues : int {
        UndefinedVerb = -1,
        UnknownVerb = 0,
        ReplyToSenderVerb = 1,
        ReplyToAllVerb = 2,
        ForwardVerb = 3
    };
    Q_ENUM(LastVerbExecutedValues)

    QString recipientsTo() const { return mRecipientsTo; }
    void setRecipientsTo(const QString &recipientsTo) { mRecipientsTo = recipientsTo; }
    QString recipientsCc() const { return mRecipientsCc; }
    void setRecipientsCc(const QString &recipientsCc) { mRecipientsCc = recipientsCc; }
    QString recipientsBcc() const { return mRecipientsBcc; }
    void setRecipientsBcc(const QString &recipientsBcc) { mRecipientsBcc = recipientsBcc; }
    QString fromAddress() const { return mFromAddress; }
    void setFromAddress(const QString &fromAddress) { mFromAddress = fromAddress; }
    QString subject() const { return mSubject; }
    void setSubject(const QString &subject) { mSubject = subject; }
    QString replyTo() const { return mReplyTo; }
    void setReplyTo(const QString &replyTo) { mReplyTo = replyTo; }
    QString dateReceived() const { return mDateReceived; }
    void setDateReceived(const QString &dateReceived) { mDateReceived = dateReceived; }
    QString displayTo() const { return mDisplayTo; }
    void setDisplayTo(const QString &displayTo) { mDisplayTo = displayTo; }
    QString threadTopic() const { return mThreadTopic; }
    void setThreadTopic(const QString &threadTopic) { mThreadTopic = threadTopic; }
    QString messageClass() const { return mMessageClass; }
    void setMessageClass(const QString &messageClass) { mMessageClass = messageClass; }
    QString contentClass() const { return mContentClass; }
    void setContentClass(const QString &contentClass) { mContentClass = contentClass; }
    QString sender() const { return mSender; }
    void setSender(const QString &sender) { mSender = sender; }
    QString callerId() const { return mCallerId; }
    void setCallerId(const QString &callerId) { mCallerId = callerId; }
    QString userNotes() const { return mUserNotes; }
    void setUserNotes(const QString &userNotes) { mUserNotes = userNotes; }
    QString lastVerbExecutedTime() const { return mLastVerbExecutedTime; }
    void setLastVerbExecutedTime(const QString &lastVerbExecutedTime)
    {
        mLastVerbExecutedTime = lastVerbExecutedTime;
    }
    QString accountId() const { return mAccountId; }
    void setAccountId(const QString &accountId) { mAccountId = accountId; }
    QString internetCPID() const { return mInternetCPID; }
    void setInternetCPID(const QString &internetCPID) { mInternetCPID = internetCPID; }
    QByteArray conversationId() const { return mConversationId; }
    void setConversationId(const QByteArray &conversationId) { mConversationId = conversationId; }
    QByteArray conversationIndex() const { return mConversationIndex; }
    void setConversationIndex(const QByteArray &conversationIndex) { mConversationIndex = conversationIndex; }
    QString sourceFolderId() const { return mSourceFolderId; }
    void setSourceFolderId(const QString &sourceFolderId) { mSourceFolderId = sourceFolderId; }
    QString destinationFolderId() const { return mDestinationFolderId; }
    void setDestinationFolderId(const QString &destinationFolderId)
    {
        mDestinationFolderId = destinationFolderId;
    }
    QString previousServerId() const { return mPreviousServerId; }
    void setPreviousServerId(const QString &previousServerId) { mPreviousServerId = previousServerId; }
    QString replyToId() const { return mReplyToId; }
    void setReplyToId(const QString &replyToId) { mReplyToId = replyToId; }
    bool isDraft() const { return mIsDraft; }
    void setIsDraft(bool isDraft) { mIsDraft = isDraft; }
    EmailImportance importance() const { return mImportance; }
    void setImportance(EmailImportance importance) { mImportance = importance; }
    LastVerbExecutedValues lastVerbExecuted() const { return mLastVerbExecuted; }
    void setLastVerbExecuted(LastVerbExecutedValues lastVerbExecuted)
    {
        mLastVerbExecuted = lastVerbExecuted;
    }
    EasItemsCommon::NativeBodyType nativeBodyType() const { return mNativeBodyType; }
    void setNativeBodyType(EasItemsCommon::NativeBodyType nativeBodyType)
    {
        mNativeBodyType = nativeBodyType;
    }
    bool read() const { return mRead; }
    void setRead(bool read) { mRead = read; }
    bool receivedAsBcc() const { return mReceivedAsBcc; }
    void setReceivedAsBcc(bool receivedAsBcc) { mReceivedAsBcc = receivedAsBcc; }
    bool hasAttachments() const { return mHasAttachments; }
    void setHasAttachments(bool hasAttachments) { mHasAttachments = hasAttachments; }
    QList<EasAttachmentContainer> attachments() const { return mAttachments; }
    void setAttachments(const QList<EasAttachmentContainer> &attachments) { mAttachments = attachments; }
    EasBodyContainer body() const { return mBody; }
    void setBody(const EasBodyContainer &body) { mBody = body; }
    EasBodyPartContainer bodyPart() const { return mBodyPart; }
    void setBodyPart(const EasBodyPartContainer &bodyPart) { mBodyPart = bodyPart; }
    EasMeetingRequestContainer meetingRequest() const { return mMeetingRequest; }
    void setMeetingRequest(const EasMeetingRequestContainer &meetingRequest)
    {
        mMeetingRequest = meetingRequest;
    }
    QList<EasRecurrenceContainer> recurrences() const { return mRecurrences; }
    void setRecurrences(const QList<EasRecurrenceContainer> &recurrences) { mRecurrences = recurrences; }
    EasFlagContainer flag() const { return mFlag; }
    void setFlag(const EasFlagContainer &flag) { mFlag = flag; }
    QStringList categories() const { return mCategories; }
    void setCategories(const QStringList &categories) { mCategories = categories; }

    void appendAttachment(const EasAttachmentContainer &attachment) { mAttachments.append(attachment); }

    void clear() { *this = EasEmailItem(); }

private:
    QString mRecipientsTo;
    QString mRecipientsCc;
    QString mRecipientsBcc;
    QString mFromAddress;
    QString mSubject;
    QString mReplyTo;
    QString mDateReceived;
    QString mDisplayTo;
    QString mThreadTopic;
    QString mMessageClass;
    QString mContentClass;
    QString mSender;
    QString mCallerId;
    QString mUserNotes;
    QString mLastVerbExecutedTime;
    QString mAccountId;
    QString mInternetCPID;
    QByteArray mConversationId;
    QByteArray mConversationIndex;
    QString mSourceFolderId;
    QString mDestinationFolderId;
    QString mPreviousServerId;
    QString mReplyToId;
    bool mIsDraft = false;
    EmailImportance mImportance = NormalImportance;
    LastVerbExecutedValues mLastVerbExecuted = UndefinedVerb;
    EasItemsCommon::NativeBodyType mNativeBodyType = EasItemsCommon::NativeBodyTypeUnspecified;
    bool mRead = true;
    bool mReceivedAsBcc = false;
    bool mHasAttachments = false;
    QList<EasAttachmentContainer> mAttachments;
    EasBodyContainer mBody;
    EasBodyPartContainer mBodyPart;
    EasMeetingRequestContainer mMeetingRequest;
    QList<EasRecurrenceContainer> mRecurrences;
    EasFlagContainer mFlag;
    QStringList mCategories;
};
