// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/airsyncbasepreference.h"

#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

namespace {

/** Servers refuse a longer preview. */
constexpr uint PreviewLimit = 256;

} // namespace

AirSyncBasePreference::AirSyncBasePreference(uint elementToken, QObject *parent)
    : AsProtocolItem(parent)
    , mElementToken(elementToken)
{
}

bool AirSyncBasePreference::isEmpty() const
{
    return mType <= 0;
}

void AirSyncBasePreference::encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    const bool isWholeBody = mElementToken == AirSyncBase::BodyPreference.token;
    if (isEmpty() || (!isWholeBody && version < ExchangeActiveSync::ProtocolVersion141)) {
        return;
    }
    encoder.appendElement(isWholeBody ? AirSyncBase::BodyPreference : AirSyncBase::BodyPartPreference, true);
    encoder.appendIntElement(AirSyncBase::Type, uint(mType));
    if (version >= ExchangeActiveSync::ProtocolVersion140 && uint(mPreview) < PreviewLimit) {
        encoder.appendIntElement(AirSyncBase::Preview, uint(mPreview));
    }
    if (mTruncationSize >= 0) {
        if (mAllOrNone) {
            encoder.appendIntElement(AirSyncBase::AllOrNone, 1);
        }
        encoder.appendIntElement(AirSyncBase::TruncationSize, uint(mTruncationSize));
    }
    encoder.setCurrentNodeToParent();
}
