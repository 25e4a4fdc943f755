// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/calendarappdataparser.h"

#include "application/base/clock.h"
#include "common/exchangeactivesync.h"
#include "easitems/fields/calendarfields.h"

using namespace Wbxml;

CalendarAppDataParser::CalendarAppDataParser(QObject *parent)
    : AppDataParserBase(parent)
{
}

void CalendarAppDataParser::reset()
{
    mState = AtItem;
    mItem.clear();
    mRecurrence.clear();
    mAttachment.clear();
    mAttachments.clear();
    mException.clear();
    mExceptions.clear();
    mAttendee.clear();
    mAttendees.clear();
    mCategories.clear();
}

EasCalendarItem &CalendarAppDataParser::levelItem()
{
    return mState == InExceptions ? mException : mItem;
}

bool CalendarAppDataParser::inAttachments() const
{
    return mState == InAttachments || mState == InExceptionAttachments;
}

void CalendarAppDataParser::onStartElement(uint page, uint token)
{
    switch (key(page, token)) {
    case Calendar::Attendees:
        mAttendees.clear();
        break;
    case Calendar::Attendee:
        mAttendee.clear();
        break;
    case Calendar::Categories:
        mCategories.clear();
        break;
    case Calendar::Exceptions:
        mState = InExceptions;
        mExceptions.clear();
        break;
    case Calendar::Exception:
        mException.clear();
        break;
    case Calendar::Recurrence:
        mRecurrence.clear();
        break;
    case AirSyncBase::Attachment:
        mAttachment.clear();
        break;
    case AirSyncBase::Attachments:
        mState = mState == InExceptions ? InExceptionAttachments : InAttachments;
        mAttachments.clear();
        break;
    case AirSyncBase::Location:
        mState = mState == InExceptions ? InExceptionLocation : InLocation;
        break;
    case Calendar::Location:
        if (mState == InExceptions) {
            mException.setLocation(QString());
        }
        break;
    case Calendar::Subject:
        if (mState == InExceptions) {
            mException.setSubject(QString());
        }
        break;
    default:
        if (!isKnown(key(page, token))) {
            logUnhandledElement(page, token);
        }
    }
}

void CalendarAppDataParser::onEndElement(uint page, uint token)
{
    switch (key(page, token)) {
    case Calendar::Attendees:
        levelItem().setAttendees(mAttendees);
        mAttendees.clear();
        break;
    case Calendar::Attendee:
        mAttendees.append(mAttendee);
        break;
    case Calendar::Categories:
        levelItem().setCategories(mCategories);
        mCategories.clear();
        break;
    case Calendar::Exceptions:
        mItem.setExceptions(mExceptions);
        mExceptions.clear();
        mState = AtItem;
        break;
    case Calendar::Exception:
        mExceptions.append(mException);
        break;
    case Calendar::Recurrence:
        mItem.setRecurrence(mRecurrence);
        break;
    case AirSyncBase::Attachment:
        mAttachments.append(mAttachment);
        mAttachment.clear();
        break;
    case AirSyncBase::Attachments:
        endAttachments();
        break;
    case AirSyncBase::Location:
        mState = mState == InExceptionLocation ? InExceptions : AtItem;
        break;
    default:
        break;
    }
}

void CalendarAppDataParser::endAttachments()
{
    if (mState == InExceptionAttachments) {
        mException.setAttachments(mAttachments);
        mState = InExceptions;
    } else {
        mItem.setAttachments(mAttachments);
        mState = AtItem;
    }
    mAttachments.clear();
}

void CalendarAppDataParser::onContent(uint page, uint token, const QString &text, const QByteArray &raw)
{
    if (store(key(page, token), text, raw) == FieldResult::Unknown) {
        logUnhandledField(text, page, token);
    }
}

FieldResult CalendarAppDataParser::store(uint key, const QString &text, const QByteArray &raw)
{
    if (key == Calendar::Category) {
        mCategories.append(text);
        return FieldResult::Stored;
    }
    if (key == AirSyncBase::DisplayName) {
        return storeDisplayName(text);
    }
    if (key == MeetingResponse::ProposedStartTime || key == MeetingResponse::ProposedEndTime) {
        storeProposedTime(key, text);
    }
    if (CalendarFields::itemFields().receives(key)) {
        return CalendarFields::itemFields().take(levelItem(), key, text, raw, mMentions);
    }
    if (CalendarFields::seriesFields().receives(key)) {
        return CalendarFields::seriesFields().take(mItem, key, text, raw, mMentions);
    }
    if (CalendarFields::exceptionFields().receives(key)) {
        return CalendarFields::exceptionFields().take(mException, key, text, raw, mMentions);
    }
    if (CalendarFields::recurrenceFields().receives(key)) {
        return CalendarFields::recurrenceFields().take(mRecurrence, key, text, raw, mMentions);
    }
    if (CalendarFields::attendeeFields().receives(key)) {
        return CalendarFields::attendeeFields().take(mAttendee, key, text, raw, mMentions);
    }
    const bool isBodySize = key == AirSyncBase::EstimatedDataSize && !inAttachments();
    if (CalendarFields::attachmentFields().receives(key) && !isBodySize) {
        return CalendarFields::attachmentFields().take(mAttachment, key, text, raw, mMentions);
    }
    return storeOfBody(key, text, raw);
}

FieldResult CalendarAppDataParser::storeDisplayName(const QString &text)
{
    switch (mState) {
    case InLocation:
        mItem.setLocation(text);
        break;
    case InExceptionLocation:
        mException.setLocation(text);
        break;
    case InAttachments:
    case InExceptionAttachments:
        mAttachment.setDisplayName(text);
        break;
    default:
        break;
    }
    return FieldResult::Stored;
}

FieldResult CalendarAppDataParser::storeOfBody(uint key, const QString &text, const QByteArray &raw)
{
    EasBodyContainer body = levelItem().body();
    const FieldResult result = CalendarFields::bodyFields().take(body, key, text, raw, mMentions);
    if (result == FieldResult::Stored) {
        levelItem().setBody(body);
    }
    return result;
}

void CalendarAppDataParser::storeProposedTime(uint key, const QString &text)
{
    const QTimeZone zone = Clock::instance().timeZone();
    const QDateTime time = ExchangeActiveSync::dateTimeFromString(text, &zone);
    if (key == MeetingResponse::ProposedStartTime) {
        mAttendee.setProposedStartTime(time);
    } else {
        mAttendee.setProposedEndTime(time);
    }
}

bool CalendarAppDataParser::isKnown(uint key)
{
    return key == Calendar::Category || key == AirSyncBase::Body || key == AirSyncBase::DisplayName
        || CalendarFields::itemFields().receives(key) || CalendarFields::seriesFields().receives(key)
        || CalendarFields::exceptionFields().receives(key) || CalendarFields::recurrenceFields().receives(key)
        || CalendarFields::attendeeFields().receives(key) || CalendarFields::attachmentFields().receives(key)
        || CalendarFields::bodyFields().receives(key);
}
