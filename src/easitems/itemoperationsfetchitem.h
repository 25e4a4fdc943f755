// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easemailitem.h"

/** One fetched thing of an ItemOperations reply: a message, or an attachment. A plain value. */
class ItemOperationsFetchItem
{
    Q_GADGET

public:
    EasItemsCommon::ItemDataType getClass() const;
    QString getClassStr() const { return mClass; }
    void setClass(const QString &itemClass) { mClass = itemClass; }
    QString linkId() const { return mLinkId; }
    void setLinkId(const QString &linkId) { mLinkId = linkId; }
    QString collectionId() const { return mCollectionId; }
    void setCollectionId(const QString &collectionId) { mCollectionId = collectionId; }
    QString serverId() const { return mServerId; }
    void setServerId(const QString &serverId) { mServerId = serverId; }
    /** "start-end" of what the data holds of the whole. */
    QString range() const { return mRange; }
    void setRange(const QString &range) { mRange = range; }
    /** Bytes of the whole of which the data is a range; -1 if the server does not say. */
    int total() const { return mTotal; }
    void setTotal(int total) { mTotal = total; }
    /** Base64, as the server sends it. */
    QString data() const { return mData; }
    void setData(const QString &data) { mData = data; }
    QString version() const { return mVersion; }
    void setVersion(const QString &version) { mVersion = version; }
    QString contentType() const { return mContentType; }
    void setContentType(const QString &contentType) { mContentType = contentType; }
    int status() const { return mStatus; }
    void setStatus(int status) { mStatus = status; }
    int part() const { return mPart; }
    void setPart(int part) { mPart = part; }
    QString fileReference() const { return mFileReference; }
    void setFileReference(const QString &fileReference) { mFileReference = fileReference; }
    QString longId() const { return mLongId; }
    void setLongId(const QString &longId) { mLongId = longId; }
    EasEmailItem emailItem() const { return mEmailItem; }
    void setEmailItem(const EasEmailItem &item) { mEmailItem = item; }

    // These reach through to the message
    void setBodyType(EasBodyContainer::BodyType type);
    void setBodyData(const QString &data);
    void setBodyPreview(const QString &preview);
    void setBodyDataSize(int size);
    void setBodyTruncated(bool truncated);
    void setBodyPart(int part);
    void setBodyPartType(EasBodyContainer::BodyType type);
    void setBodyPartData(const QString &data);
    void setBodyPartPreview(const QString &preview);
    void setBodyPartDataSize(int size);
    void setBodyPartTruncated(bool truncated);
    void setBodyPartStatus(EasBodyPartContainer::BodyPartStatus status);
    void appendAttachment(const EasAttachmentContainer &attachment);

    void clear() { *this = ItemOperationsFetchItem(); }

private:
    template <class Change> void changeBody(Change change);
    template <class Change> void changeBodyPart(Change change);

    QString mClass;
    QString mLinkId;
    QString mCollectionId;
    QString mServerId;
    QString mRange;
    int mTotal = -1;
    QString mData;
    QString mVersion;
    QString mContentType;
    int mStatus = 0;
    int mPart = 0;
    QString mFileReference;
    QString mLongId;
    EasEmailItem mEmailItem;
};
