// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/oofresponseparser.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "protocol/wbxml/wbxmltokens.h"

using namespace Wbxml;

namespace {

/** There are three groups of senders; a server that names one again is bearable, one without an end is not.
 */
constexpr int MostMessages = 16;

int toNumber(const QString &text)
{
    int number = 0;
    if (!ParserBase::stringToInt(text, number))
        qCWarning(eas()) << "Cannot convert to int: " << text;
    return number;
}

} // namespace

OofResponseParser::OofResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool OofResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mSettingsState == AfterSettings;
}

void OofResponseParser::parse(const QByteArray &data)
{
    mSettingsState = BeforeSettings;
    mStatus = Eas::SettingsStatusUndefined;
    mHasSettings = false;
    mOofState = 0;
    mStartTime = mEndTime = QDateTime();
    mMessage.clear();
    mMessages.clear();
    WbxmlParserBase::parse(data);
}

void OofResponseParser::takeStatus(int status)
{
    // The command may succeed although its one part failed.
    if (mStatus == Eas::SettingsStatusUndefined || mStatus == Eas::SettingsStatusSuccess)
        mStatus = status;
}

void OofResponseParser::appendMessage()
{
    if (mMessages.size() == MostMessages)
        return refuse("more out-of-office answers than there are groups of senders");
    mMessages.append(mMessage);
}

void OofResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    switch (key(codePage, token)) {
    case Settings::Settings:
        if (mSettingsState == BeforeSettings)
            mSettingsState = InSettings;
        break;
    case Settings::Oof:
        if (mSettingsState == InSettings)
            mSettingsState = InOof;
        break;
    case Settings::Get:
        if (mSettingsState == InOof) {
            mSettingsState = InGet;
            mHasSettings = true;
        }
        break;
    default:
        break;
    }
}

void OofResponseParser::onEndElement(uint codePage, uint token)
{
    switch (key(codePage, token)) {
    case Settings::Settings:
        if (mSettingsState == InSettings)
            mSettingsState = AfterSettings;
        break;
    case Settings::Oof:
        if (mSettingsState == InOof)
            mSettingsState = InSettings;
        break;
    case Settings::Get:
        if (mSettingsState == InGet)
            mSettingsState = InOof;
        break;
    case Settings::OofMessage:
        appendMessage();
        mMessage.clear();
        break;
    case Settings::AppliesToInternal:
        mMessage.setMessageType(OofMessageItem::InternalMessage);
        break;
    case Settings::AppliesToExternalKnown:
        mMessage.setMessageType(OofMessageItem::KnownExternalMessage);
        break;
    case Settings::AppliesToExternalUnknown:
        mMessage.setMessageType(OofMessageItem::UnknownExternalMessage);
        break;
    default:
        break;
    }
    WbxmlParserBase::onEndElement(codePage, token);
}

void OofResponseParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &)
{
    switch (key(codePage, token)) {
    case Settings::Status:
        takeStatus(toStatus(text));
        break;
    case Settings::OofState:
        mOofState = toNumber(text);
        break;
    case Settings::StartTime:
        mStartTime = ExchangeActiveSync::dateTimeFromString(text, nullptr);
        break;
    case Settings::EndTime:
        mEndTime = ExchangeActiveSync::dateTimeFromString(text, nullptr);
        break;
    case Settings::Enabled:
        mMessage.setEnabled(toNumber(text) != 0);
        break;
    case Settings::ReplyMessage:
        mMessage.setReplyMessage(text);
        break;
    case Settings::BodyType:
        mMessage.setBodyType(text);
        break;
    default:
        if (isFirst("content", codePage, token))
            qCWarning(eas()) << "Unexpected page: " << codePage << ", token: " << token
                             << ", content: " << text;
    }
}
