// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/moveitemscommand.h"

#include "application/base/logging.h"
#include "easitems/algorithms/moveitemsresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

#include <QDebug>

using namespace Wbxml;

MoveItemsCommand::MoveItemsCommand(EasAccountId accountId, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
{
}

QString MoveItemsCommand::commandName() const
{
    return ProtocolUtils::CommandMoveItems;
}

BaseProtocolCommand::ExchangeTexts MoveItemsCommand::texts() const
{
    return { "Sending move items command via POST:", "Received move items command reply:",
        "Move items command response was error!" };
}

bool MoveItemsCommand::encodeBody(EasAccount &, QByteArray *body)
{
    if (mMoveItems.isEmpty()) {
        qCWarning(eas()) << "MoveItems is empty, cannot begin";
        return false;
    }
    WbxmlEncoder encoder;
    encoder.appendElement(Move::MoveItems, true);
    for (const MoveContainer &item : mMoveItems) {
        item.encode(encoder);
    }
    *body = encoder.encoded();
    return true;
}

bool MoveItemsCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    mMoveItemsResponses.clear();
    MoveItemsResponseParser parser;
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse move items command response";
        return false;
    }
    qCDebug(eas()) << "Successfully parsed move items command response";
    setStatus(parser.status());
    mMoveItemsResponses = parser.responses();
    return true;
}
