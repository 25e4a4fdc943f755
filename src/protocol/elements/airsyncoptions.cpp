// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/airsyncoptions.h"

#include "protocol/elements/airsyncbasepreference.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

AirSyncOptions::AirSyncOptions(QObject *parent)
    : AsProtocolItem(parent)
{
}

QSharedPointer<AirSyncOptions> AirSyncOptions::copy() const
{
    const auto options = QSharedPointer<AirSyncOptions>::create();
    options->mValues = mValues;
    return options;
}

void AirSyncOptions::setBodyPreference(const QList<QSharedPointer<AirSyncBasePreference>> &preferences)
{
    mValues.bodyPreference = preferences;
}

void AirSyncOptions::appendBodyPreference(const QSharedPointer<AirSyncBasePreference> &preference)
{
    mValues.bodyPreference.append(preference);
}

void AirSyncOptions::setBodyPartPreference(const QList<QSharedPointer<AirSyncBasePreference>> &preferences)
{
    mValues.bodyPartPreference = preferences;
}

void AirSyncOptions::appendBodyPartPreference(const QSharedPointer<AirSyncBasePreference> &preference)
{
    mValues.bodyPartPreference.append(preference);
}

void AirSyncOptions::encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    encoder.appendElement(AirSync::Options, true);
    if (mValues.filter != FilterUnset) {
        encoder.appendIntElement(AirSync::FilterType, uint(mValues.filter));
    }
    if (mValues.mimeTruncation != MimeTruncationUnset) {
        encoder.appendIntElement(AirSync::MIMETruncation, uint(mValues.mimeTruncation));
    }
    if (mValues.mimeSupport != MimeSupportUnset) {
        encoder.appendIntElement(AirSync::MIMESupport, uint(mValues.mimeSupport));
    }
    if (version >= ExchangeActiveSync::ProtocolVersion140) {
        if (!mValues.itemClass.isEmpty()) {
            encoder.appendTextElement(AirSync::Class, mValues.itemClass);
        }
        if (mValues.maxItems != 0) {
            encoder.appendIntElement(AirSync::MaxItems, mValues.maxItems);
        }
    }
    if (mValues.conflicts == ClientReplacesServer) {
        encoder.appendIntElement(AirSync::Conflict, uint(mValues.conflicts));
    }
    for (const auto &preference : mValues.bodyPreference) {
        preference->encode(encoder, version);
    }
    for (const auto &preference : mValues.bodyPartPreference) {
        preference->encode(encoder, version);
    }
    if (mValues.rightsManagmentSupport && version >= ExchangeActiveSync::ProtocolVersion141) {
        encoder.appendIntElement(RightsManagement::RightsManagementSupport, 1);
    }
    encoder.setCurrentNodeToParent();
}
