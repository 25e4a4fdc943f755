// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/attendeesavailableresponseparser.h"

#include "application/base/logging.h"

using namespace Wbxml;

namespace {

constexpr int Success = 1;

constexpr int MostRows = 1000;
/** Characters; for more a client has to ask again. */
constexpr int LongestStatus = 32 * 1024;
/** Characters; of an address and of a name. */
constexpr int LongestText = 1024;

QString withinBounds(const QString &text)
{
    return text.size() > LongestText ? QString() : text;
}

} // namespace

AttendeesAvailableResponseParser::AttendeesAvailableResponseParser(QObject *parent)
    : WbxmlParserBase(parent)
{
}

bool AttendeesAvailableResponseParser::ready() const
{
    return WbxmlParserBase::ready() && mHasEnded;
}

void AttendeesAvailableResponseParser::parse(const QByteArray &data)
{
    mHasEnded = false;
    mStatus = mResponseStatus = mAvailabilityStatus = 0;
    mAskedFor.clear();
    mHasRecipient = false;
    mCurrent = AttendeeData();
    mAttendees.clear();
    mIndexes.clear();
    WbxmlParserBase::parse(data);
}

const AttendeesAvailableResponseParser::AttendeeData *AttendeesAvailableResponseParser::findAttendee(
    const QString &email) const
{
    const auto found = mIndexes.constFind(email.toLower());
    return found == mIndexes.cend() ? nullptr : &mAttendees.at(*found);
}

bool AttendeesAvailableResponseParser::isIn(Token parent) const
{
    constexpr int WithParent = 2;
    if (mElementStack.size() < WithParent)
        return false;
    const TokenId outer = mElementStack.at(mElementStack.size() - WithParent);
    return key(outer.codePage, outer.token) == parent;
}

void AttendeesAvailableResponseParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    switch (key(codePage, token)) {
    case ResolveRecipients::Response:
        mAskedFor.clear();
        mHasRecipient = false;
        break;
    case ResolveRecipients::Recipient:
        mCurrent = AttendeeData();
        mAvailabilityStatus = 0;
        mHasRecipient = true;
        break;
    case ResolveRecipients::ResolveRecipients:
    case ResolveRecipients::Status:
    case ResolveRecipients::To:
    case ResolveRecipients::RecipientCount:
    case ResolveRecipients::Type:
    case ResolveRecipients::DisplayName:
    case ResolveRecipients::EmailAddress:
    case ResolveRecipients::Availability:
    case ResolveRecipients::MergedFreeBusy:
        break;
    default:
        if (isFirst("element", codePage, token))
            qCWarning(eas()) << "Unexpected element, page: " << codePage << " and token: " << token;
    }
}

void AttendeesAvailableResponseParser::onEndElement(uint codePage, uint token)
{
    switch (key(codePage, token)) {
    case ResolveRecipients::Recipient:
        endRecipient();
        break;
    case ResolveRecipients::Response:
        endResponse();
        break;
    case ResolveRecipients::ResolveRecipients:
        mHasEnded = true;
        break;
    default:
        break;
    }
    WbxmlParserBase::onEndElement(codePage, token);
}

void AttendeesAvailableResponseParser::onContent(
    uint codePage, uint token, const QString &text, const QByteArray &)
{
    switch (key(codePage, token)) {
    case ResolveRecipients::Status:
        onStatus(toStatus(text, "Cannot convert to uint: "));
        break;
    case ResolveRecipients::To:
        mAskedFor = withinBounds(text);
        break;
    case ResolveRecipients::EmailAddress:
        mCurrent.email = withinBounds(text);
        break;
    case ResolveRecipients::DisplayName:
        mCurrent.name = text.left(LongestText);
        break;
    case ResolveRecipients::MergedFreeBusy:
        if (text.size() <= LongestStatus)
            mCurrent.status = text;
        else if (isFirst("size", codePage, token))
            qCWarning(eas()) << "Left out an availability of" << text.size() << "characters";
        break;
    case ResolveRecipients::Type:
    case ResolveRecipients::RecipientCount:
        break;
    default:
        if (isFirst("content", codePage, token))
            qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                             << ", token: " << token;
    }
}

void AttendeesAvailableResponseParser::onStatus(int status)
{
    if (isIn(ResolveRecipients::ResolveRecipients))
        mStatus = status;
    else if (isIn(ResolveRecipients::Response))
        takeResponseStatus(status);
    else if (isIn(ResolveRecipients::Availability))
        mAvailabilityStatus = status;
}

void AttendeesAvailableResponseParser::takeResponseStatus(int status)
{
    if (mResponseStatus == 0 || status == Success)
        mResponseStatus = status;
}

void AttendeesAvailableResponseParser::endRecipient()
{
    if (mAvailabilityStatus != Success)
        mCurrent.status.clear();
    append(mCurrent);
    mCurrent = AttendeeData();
}

void AttendeesAvailableResponseParser::endResponse()
{
    if (!mHasRecipient)
        append({ mAskedFor, QString(), QString() });
}

void AttendeesAvailableResponseParser::append(const AttendeeData &attendee)
{
    if (attendee.email.isEmpty() || findAttendee(attendee.email))
        return;
    if (mAttendees.size() == MostRows)
        return refuse("more recipients than anybody asks for");
    mIndexes.insert(attendee.email.toLower(), mAttendees.size());
    mAttendees.append(attendee);
}
