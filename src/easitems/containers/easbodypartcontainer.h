// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easbodycontainer.h"

/** The part of a conversation's body that is new in one message. A plain value. */
class EasBodyPartContainer
{
    Q_GADGET

public:
    enum BodyPartStatus : int { BodyPartStatusSuccess = 1, BodyPartStatusTooLong = 176 };
    Q_ENUM(BodyPartStatus)

    BodyPartStatus status() const { return mStatus; }
    void setStatus(BodyPartStatus status) { mStatus = status; }
    EasBodyContainer::BodyType type() const { return mType; }
    void setType(EasBodyContainer::BodyType type) { mType = type; }
    int estimatedDataSize() const { return mEstimatedDataSize; }
    void setEstimatedDataSize(int estimatedDataSize) { mEstimatedDataSize = estimatedDataSize; }
    bool truncated() const { return mTruncated; }
    void setTruncated(bool truncated) { mTruncated = truncated; }
    QString data() const { return mData; }
    void setData(const QString &data) { mData = data; }
    QString preview() const { return mPreview; }
    void setPreview(const QString &preview) { mPreview = preview; }

    void clear() { *this = EasBodyPartContainer(); }

private:
    BodyPartStatus mStatus = BodyPartStatusSuccess;
    EasBodyContainer::BodyType mType = EasBodyContainer::PlainTextBodyType;
    int mEstimatedDataSize = 0;
    bool mTruncated = false;
    QString mData;
    QString mPreview;
};
