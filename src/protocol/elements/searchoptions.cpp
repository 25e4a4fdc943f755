// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/searchoptions.h"

#include "protocol/elements/airsyncbasepreference.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

namespace {

void encodeText(WbxmlEncoder &encoder, Token tag, const QString &text)
{
    if (!text.isEmpty())
        encoder.appendTextElement(tag, text);
}

void encodeFlag(WbxmlEncoder &encoder, Token tag, bool isSet)
{
    if (isSet)
        encoder.appendElement(tag);
}

} // namespace

void SearchOptions::appendBodyPreference(const QSharedPointer<AirSyncBasePreference> &preference)
{
    mBodyPreference.append(preference);
}

void SearchOptions::appendBodyPartPreference(const QSharedPointer<AirSyncBasePreference> &preference)
{
    mBodyPartPreference.append(preference);
}

QString SearchOptions::rangeText(int low, int high)
{
    return low >= 0 && low <= high ? QStringLiteral("%1-%2").arg(low).arg(high) : QString();
}

void SearchOptions::encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    const bool knowsPictures = version >= ExchangeActiveSync::ProtocolVersion141;
    encoder.appendElement(Search::Options, true);
    encodeText(encoder, Search::Range, rangeText(mLowIndexRange, mHighIndexRange));
    encodeText(encoder, Search::UserName, mUserName);
    encodeText(encoder, Search::Password, mPassword);
    encodeFlag(encoder, Search::DeepTraversal, mDeepTraversal);
    encodeFlag(encoder, Search::RebuildResults, mRebuildResults);
    if (knowsPictures)
        encodePicture(encoder);
    if (mMimeSupport != MimeSupportUnset)
        encoder.appendIntElement(AirSync::MIMESupport, uint(mMimeSupport));
    for (const auto &preference : mBodyPreference)
        preference->encode(encoder, version);
    for (const auto &preference : mBodyPartPreference)
        preference->encode(encoder, version);
    if (mRightsManagementSupport && knowsPictures)
        encoder.appendIntElement(RightsManagement::RightsManagementSupport, 1);
    encoder.setCurrentNodeToParent();
}

void SearchOptions::encodePicture(WbxmlEncoder &encoder) const
{
    if (mMaxSizePicture < 0 && mMaxPicture < 0)
        return;
    encoder.appendElement(Search::Picture, true);
    if (mMaxSizePicture >= 0)
        encoder.appendIntElement(Search::MaxSize, uint(mMaxSizePicture));
    if (mMaxPicture >= 0)
        encoder.appendIntElement(Search::MaxPictures, uint(mMaxPicture));
    encoder.setCurrentNodeToParent();
}
