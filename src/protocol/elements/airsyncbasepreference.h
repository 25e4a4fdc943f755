// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "easitems/containers/easbodycontainer.h"
#include "protocol/wbxml/asprotocolitem.h"

/**
 * One form of body that the device accepts. The token says whether it is about whole bodies (BodyPreference)
 * or about the new part of a message in a conversation (BodyPartPreference). Belongs to an AirSyncOptions.
 */
class AirSyncBasePreference : public AsProtocolItem
{
    Q_OBJECT

public:
    explicit AirSyncBasePreference(uint elementToken, QObject *parent = nullptr);

    uint elementToken() const { return mElementToken; }
    int preview() const { return mPreview; }
    void setPreview(int preview) { mPreview = preview; }
    bool allOrNone() const { return mAllOrNone; }
    void setAllOrNone(bool allOrNone) { mAllOrNone = allOrNone; }
    int truncationSize() const { return mTruncationSize; }
    void setTruncationSize(int truncationSize) { mTruncationSize = truncationSize; }
    EasBodyContainer::BodyType type() const { return mType; }
    void setType(EasBodyContainer::BodyType type) { mType = type; }

    /** Whether no type has been set; such a preference is not written. */
    bool isEmpty() const;

    using AsProtocolItem::encode;
    virtual void encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;

private:
    uint mElementToken;
    int mPreview = -1;
    bool mAllOrNone = false;
    int mTruncationSize = -1;
    EasBodyContainer::BodyType mType = EasBodyContainer::UnspecifiedBodyType;
};
