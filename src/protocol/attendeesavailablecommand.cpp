// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/attendeesavailablecommand.h"

#include "application/base/logging.h"
#include "protocol/base/protocoltime.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

AttendeesAvailableCommand::AttendeesAvailableCommand(
    EasAccountId accountId, QObject *parent, const Options &options)
    : BaseProtocolCommand(accountId, parent)
    , mOptions(options)
{
}

void AttendeesAvailableCommand::start()
{
    if (isRunning()) {
        qCCritical(eas()) << "Cannot begin, probably already in progress";
        return;
    }
    BaseProtocolCommand::start();
}

QString AttendeesAvailableCommand::commandName() const
{
    return ProtocolUtils::CommandAttendeesAvailable;
}

BaseProtocolCommand::ExchangeTexts AttendeesAvailableCommand::texts() const
{
    return { "Sending AttendeesAvailable command via POST:", "Result of AttendeesAvailable request ",
        nullptr };
}

bool AttendeesAvailableCommand::encodeBody(EasAccount &, QByteArray *body)
{
    WbxmlEncoder encoder;
    encoder.appendElement(ResolveRecipients::ResolveRecipients, true);
    for (const QString &email : mOptions.emails)
        encoder.appendTextElement(ResolveRecipients::To, email);
    encoder.appendElement(ResolveRecipients::Options, true);
    encoder.appendElement(ResolveRecipients::Availability, true);
    encoder.appendTextElement(ResolveRecipients::StartTime, ProtocolTime::toWire(mOptions.startTime));
    encoder.appendTextElement(ResolveRecipients::EndTime, ProtocolTime::toWire(mOptions.endTime));
    *body = encoder.encoded();
    return true;
}

bool AttendeesAvailableCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    AttendeesAvailableResponseParser parser;
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse AttendeesAvailable command response";
        return false;
    }
    qCDebug(eas()) << "Status:" << parser.status() << "Response status:" << parser.responseStatus();
    setStatus(parser.status());
    mResponseStatus = parser.responseStatus();
    mAttendees = parser.attendees();
    return true;
}
