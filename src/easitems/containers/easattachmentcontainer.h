// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/** One attachment of a message or an event: what the server tells of it, not its bytes. A plain value. */
class EasAttachmentContainer
{
    Q_GADGET

public:
    enum Method : int {
        UnspecifiedMethod = 0,
        NormalAttachmentMethod = 1,
        EmbeddedMessageMethod = 5,
        AttachOLEMethod = 6
    };
    Q_ENUM(Method)

    QString displayName() const { return mDisplayName; }
    void setDisplayName(const QString &displayName) { mDisplayName = displayName; }
    QString fileReference() const { return mFileReference; }
    void setFileReference(const QString &fileReference) { mFileReference = fileReference; }
    QString clientId() const { return mClientId; }
    void setClientId(const QString &clientId) { mClientId = clientId; }
    QString contentId() const { return mContentId; }
    void setContentId(const QString &contentId) { mContentId = contentId; }
    QString contentLocation() const { return mContentLocation; }
    void setContentLocation(const QString &contentLocation) { mContentLocation = contentLocation; }
    Method method() const { return mMethod; }
    void setMethod(Method method) { mMethod = method; }
    int estimatedDataSize() const { return mEstimatedDataSize; }
    void setEstimatedDataSize(int estimatedDataSize) { mEstimatedDataSize = estimatedDataSize; }
    bool isInline() const { return mIsInline; }
    void setIsInline(bool isInline) { mIsInline = isInline; }
    int attachmentDuration() const { return mAttachmentDuration; }
    void setAttachmentDuration(int attachmentDuration) { mAttachmentDuration = attachmentDuration; }
    int attachmentOrder() const { return mAttachmentOrder; }
    void setAttachmentOrder(int attachmentOrder) { mAttachmentOrder = attachmentOrder; }

    void clear() { *this = EasAttachmentContainer(); }

private:
    QString mDisplayName;
    QString mFileReference;
    QString mClientId;
    QString mContentId;
    QString mContentLocation;
    Method mMethod = UnspecifiedMethod;
    int mEstimatedDataSize = 0;
    bool mIsInline = false;
    int mAttachmentDuration = 0;
    int mAttachmentOrder = 0;
};
