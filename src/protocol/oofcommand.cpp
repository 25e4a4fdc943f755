// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/oofcommand.h"

#include "application/base/logging.h"
#include "easitems/algorithms/oofresponseparser.h"
#include "protocol/base/protocoltime.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

namespace {

const QString TextBody = QStringLiteral("Text");

enum OofState { Off = 0, On = 1, OnForATime = 2 };

Token wrapperOf(int messageType)
{
    switch (messageType) {
    case OofMessageItem::KnownExternalMessage:
        return Settings::AppliesToExternalKnown;
    case OofMessageItem::UnknownExternalMessage:
        return Settings::AppliesToExternalUnknown;
    default:
        return Settings::AppliesToInternal;
    }
}

OofMessageItem message(OofMessageItem::MessageType type, bool enabled, const QString &text)
{
    OofMessageItem item;
    item.setMessageType(type);
    item.setEnabled(enabled);
    item.setReplyMessage(text);
    item.setBodyType(TextBody);
    return item;
}

void encodeMessage(WbxmlEncoder &encoder, const OofMessageItem &item)
{
    encoder.appendElement(Settings::OofMessage, true);
    encoder.appendElement(wrapperOf(item.messageType()));
    encoder.appendTextElement(Settings::Enabled, item.enabled() ? QStringLiteral("1") : QStringLiteral("0"));
    if (item.enabled()) {
        encoder.appendTextElement(Settings::ReplyMessage, item.replyMessage());
        encoder.appendTextElement(Settings::BodyType, item.bodyType());
    }
    encoder.setCurrentNodeToParent();
}

void takeMessage(EasOofContainer &state, const OofMessageItem &item)
{
    switch (item.messageType()) {
    case OofMessageItem::InternalMessage:
        state.setInternalMessageEnabled(item.enabled());
        state.setInternalMessage(item.replyMessage());
        break;
    case OofMessageItem::KnownExternalMessage:
        if (!item.enabled())
            break;
        state.setExternalMessageEnabled(true);
        if (state.externalMessage().isEmpty())
            state.setExternalMessage(item.replyMessage());
        break;
    case OofMessageItem::UnknownExternalMessage:
        if (!item.enabled())
            break;
        state.setExternalMessageEnabled(true);
        state.setExternalMessageToAnyone(true);
        state.setExternalMessage(item.replyMessage());
        break;
    default:
        qCWarning(eas()) << "We received unexpected type of OoF message";
    }
}

} // namespace

OofCommand::OofCommand(EasAccountId accountId, QObject *parent, Action action)
    : BaseProtocolCommand(accountId, parent)
    , mAction(action)
{
}

QString OofCommand::commandName() const
{
    return ProtocolUtils::CommandSettings;
}

BaseProtocolCommand::ExchangeTexts OofCommand::texts() const
{
    return { "Sending OOF command via POST:", "Received OOF response command reply:", nullptr };
}

bool OofCommand::encodeBody(EasAccount &, QByteArray *body)
{
    WbxmlEncoder encoder;
    encoder.appendElement(Settings::Settings, true);
    encoder.appendElement(Settings::Oof, true);
    if (mAction == Get)
        encodeGet(encoder);
    else
        encodeSet(encoder);
    *body = encoder.encoded();
    return true;
}

void OofCommand::encodeGet(WbxmlEncoder &encoder)
{
    encoder.appendElement(Settings::Get, true);
    encoder.appendTextElement(Settings::BodyType, TextBody);
}

void OofCommand::encodeSet(WbxmlEncoder &encoder) const
{
    const bool isExternal = mOofState.externalMessageEnabled();
    encoder.appendElement(Settings::Set, true);
    encodeState(encoder);
    encodeMessage(encoder,
        message(OofMessageItem::InternalMessage, mOofState.oofEnabled(), mOofState.internalMessage()));
    encodeMessage(
        encoder, message(OofMessageItem::KnownExternalMessage, isExternal, mOofState.externalMessage()));
    encodeMessage(encoder,
        message(OofMessageItem::UnknownExternalMessage, isExternal && mOofState.externalMessageToAnyone(),
            mOofState.externalMessage()));
}

void OofCommand::encodeState(WbxmlEncoder &encoder) const
{
    if (!mOofState.oofEnabled() || !mOofState.timeRangeEnabled()) {
        encoder.appendIntElement(Settings::OofState, mOofState.oofEnabled() ? On : Off);
        return;
    }
    encoder.appendIntElement(Settings::OofState, OnForATime);
    encoder.appendTextElement(Settings::StartTime, ProtocolTime::toWire(mOofState.startTime()));
    encoder.appendTextElement(Settings::EndTime, ProtocolTime::toWire(mOofState.endTime()));
}

bool OofCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    OofResponseParser parser;
    parser.parse(body);
    // A success without settings would read as a mailbox whose owner is there.
    const bool isComplete = mAction == Set || parser.hasSettings();
    if (!parser.ready() || (parser.status() == Eas::SettingsStatusSuccess && !isComplete)) {
        qCWarning(eas()) << "Failed to parse OOF command response!";
        return false;
    }
    qCDebug(eas()) << "Successfully parsed OOF command response!";
    setStatus(parser.status());
    if (mAction == Get)
        takeSettings(parser);
    return true;
}

void OofCommand::takeSettings(const OofResponseParser &parser)
{
    EasOofContainer state;
    state.setOofEnabled(parser.getOofState() != Off);
    state.setTimeRangeEnabled(parser.getOofState() == OnForATime);
    state.setStartTime(parser.getOofStartTime());
    state.setEndTime(parser.getOofEndTime());
    for (const OofMessageItem &item : parser.getOofResponseMessages())
        takeMessage(state, item);
    mOofState = state;
}
