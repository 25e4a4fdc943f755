// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/synccommandbasic.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmlencoder.h"

#include <QDebug>

using namespace Wbxml;

SyncCommandBasic::SyncCommandBasic(QObject *parent)
    : SyncCommandBase(parent)
{
}

void SyncCommandBasic::encode(WbxmlEncoder &encoder) const
{
    if (type() != DeleteCommand && type() != FetchCommand) {
        qCWarning(eas()) << "Encoding is not implemented for type: " << int(type());
        return;
    }
    const Token element = type() == DeleteCommand ? AirSync::Delete : AirSync::Fetch;
    for (const QString &serverId : mServerIds) {
        encoder.appendElement(element, true);
        encoder.appendTextElement(AirSync::ServerId, serverId);
        encoder.setCurrentNodeToParent();
    }
    for (const auto &instance : mInstanceIds) {
        encoder.appendElement(element, true);
        encoder.appendTextElement(AirSync::ServerId, instance.first);
        encoder.appendTextElement(AirSyncBase::InstanceId, instance.second);
        encoder.setCurrentNodeToParent();
    }
}

void SyncCommandBasic::encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion) const
{
    encode(encoder);
}
