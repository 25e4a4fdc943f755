// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/movecontainer.h"

#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

MoveContainer::MoveContainer(QObject *parent)
    : AsProtocolItem(parent)
{
}

MoveContainer::MoveContainer(const QString &sourceMessageId, const QString &sourceFolderId,
    const QString &destinationFolderId, QObject *parent)
    : AsProtocolItem(parent)
    , mSourceMessageId(sourceMessageId)
    , mSourceFolderId(sourceFolderId)
    , mDestinationFolderId(destinationFolderId)
{
}

MoveContainer::MoveContainer(const MoveContainer &other)
    : AsProtocolItem(nullptr)
{
    *this = other;
}

MoveContainer &MoveContainer::operator=(const MoveContainer &other)
{
    mSourceMessageId = other.mSourceMessageId;
    mSourceFolderId = other.mSourceFolderId;
    mDestinationFolderId = other.mDestinationFolderId;
    return *this;
}

void MoveContainer::encode(WbxmlEncoder &encoder) const
{
    encoder.appendElement(Move::Move, true);
    encoder.appendTextElement(Move::SrcMsgId, mSourceMessageId);
    encoder.appendTextElement(Move::SrcFldId, mSourceFolderId);
    encoder.appendTextElement(Move::DstFldId, mDestinationFolderId);
    encoder.setCurrentNodeToParent();
}
