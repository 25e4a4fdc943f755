// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/pingcommand.h"

#include "application/base/logging.h"
#include "easitems/algorithms/pingresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

namespace {
/** Seconds for the way there and back. */
constexpr int Grace = 60;
} // namespace

PingCommand::PingCommand(EasAccountId accountId, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
{
}

QString PingCommand::commandName() const
{
    return ProtocolUtils::CommandPing;
}

BaseProtocolCommand::ExchangeTexts PingCommand::texts() const
{
    return { "Sending ping command via POST:", "Received ping command reply:", nullptr };
}

int PingCommand::longestWait() const
{
    // Without an interval of ours the server goes by one that it knows, which may be the longest there is.
    const int heartbeat = mHeartbeatInterval > 0 ? mHeartbeatInterval : ProtocolUtils::LongestHeartbeat;
    return (heartbeat + Grace) * 1000;
}

bool PingCommand::encodeBody(EasAccount &, QByteArray *body)
{
    WbxmlEncoder encoder;
    encoder.appendElement(Ping::Ping, true);
    if (mHeartbeatInterval > 0)
        encoder.appendTextElement(Ping::HeartbeatInterval, QString::number(mHeartbeatInterval));
    if (mFolders.isEmpty()) {
        qCWarning(eas()) << "mFolders is empty !";
    } else {
        encoder.appendElement(Ping::Folders, true);
        for (const PingFolderItem &folder : qAsConst(mFolders))
            folder.encode(encoder);
        encoder.setCurrentNodeToParent();
    }
    *body = encoder.encoded();
    return true;
}

bool PingCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    PingResponseParser parser;
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse ping command response";
        return false;
    }
    qCDebug(eas()) << "state =" << parser.state() << "status = " << parser.status()
                   << "maxFolders = " << parser.maxFolders() << "folders =" << parser.folders()
                   << "mHeartbeatInterval = " << parser.heartbeatInterval();
    setStatus(parser.status());
    mMaxFolders = parser.maxFolders();
    mHeartbeatInterval = parser.heartbeatInterval();
    mResponseFolders = parser.folders();
    return true;
}
