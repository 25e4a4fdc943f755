// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/emailappdataparser.h"

#include "easitems/fields/emailfields.h"
#include "easitems/fields/sharedfields.h"

using namespace Wbxml;

EmailAppDataParser::EmailAppDataParser(QObject *parent)
    : AppDataParserBase(parent)
{
}

void EmailAppDataParser::reset()
{
    mFieldContext = NoContext;
    mInMeetingRequest = false;
    mInMeetingLocation = false;
    mItem.clear();
    mBody.clear();
    mBodyPart.clear();
    mAttachment.clear();
    mFlag.clear();
    mMeetingRequest.clear();
    mRecurrence.clear();
    mCategories.clear();
    mRecurrences.clear();
    mAttachments.clear();
}

void EmailAppDataParser::onStartElement(uint page, uint token)
{
    switch (key(page, token)) {
    case AirSyncBase::Body:
        mBody.clear();
        mFieldContext = InBody;
        break;
    case AirSyncBase::Attachment:
        mAttachment.clear();
        mFieldContext = InAttachment;
        break;
    case AirSyncBase::BodyPart:
        mBodyPart.clear();
        mFieldContext = InBodyPart;
        break;
    case AirSyncBase::Location:
        mInMeetingLocation = mInMeetingRequest;
        break;
    case Email::Categories:
        mCategories.clear();
        break;
    case Email::MeetingRequest:
        mMeetingRequest.clear();
        mInMeetingRequest = true;
        break;
    case Email::Recurrences:
        mRecurrences.clear();
        break;
    case Email::Recurrence:
        mRecurrence.clear();
        break;
    case Email::Flag:
        mFlag.clear();
        break;
    default:
        if (!isKnown(key(page, token))) {
            logUnhandledElement(page, token);
        }
    }
}

void EmailAppDataParser::onEndElement(uint page, uint token)
{
    switch (key(page, token)) {
    case AirSyncBase::Body:
        mItem.setBody(mBody);
        mBody.clear();
        mFieldContext = NoContext;
        break;
    case AirSyncBase::BodyPart:
        mItem.setBodyPart(mBodyPart);
        mBodyPart.clear();
        mFieldContext = NoContext;
        break;
    case AirSyncBase::Attachment:
        mAttachments.append(mAttachment);
        mAttachment.clear();
        mFieldContext = NoContext;
        break;
    case AirSyncBase::Attachments:
        mItem.setAttachments(mAttachments);
        mAttachments.clear();
        break;
    case AirSyncBase::Location:
        mInMeetingLocation = false;
        break;
    case Email::Categories:
        mItem.setCategories(mCategories);
        mCategories.clear();
        break;
    case Email::MeetingRequest:
        mMeetingRequest.setElementValid(true);
        mItem.setMeetingRequest(mMeetingRequest);
        mMeetingRequest.clear();
        mInMeetingRequest = false;
        break;
    case Email::Recurrence:
        mRecurrences.append(mRecurrence);
        mRecurrence.clear();
        break;
    case Email::Recurrences:
        endRecurrences();
        break;
    case Email::Flag:
        mItem.setFlag(mFlag);
        mFlag.clear();
        break;
    default:
        break;
    }
}

void EmailAppDataParser::endRecurrences()
{
    if (mInMeetingRequest) {
        mMeetingRequest.setRecurrences(mRecurrences);
    } else {
        mItem.setRecurrences(mRecurrences);
    }
    mRecurrences.clear();
}

void EmailAppDataParser::onContent(uint page, uint token, const QString &text, const QByteArray &raw)
{
    const uint tag = key(page, token);
    switch (store(tag, text, raw)) {
    case FieldResult::Stored:
        if (mIsChangeItem) {
            mItem.appendChangedField(tag);
        }
        break;
    case FieldResult::Refused:
        break;
    case FieldResult::Unknown:
        logUnhandledField(text, page, token);
        break;
    }
}

FieldResult EmailAppDataParser::store(uint key, const QString &text, const QByteArray &raw)
{
    if (key == Email::Category) {
        mCategories.append(text);
        return FieldResult::Stored;
    }
    FieldResult result = EmailFields::itemFields().take(mItem, key, text, raw);
    if (result == FieldResult::Unknown) {
        result = storeOfMeeting(key, text, raw);
    }
    if (result == FieldResult::Unknown) {
        result = EmailFields::flagFields().take(mFlag, key, text, raw);
    }
    if (result == FieldResult::Unknown) {
        result = storeByContext(key, text, raw);
    }
    return result;
}

FieldResult EmailAppDataParser::storeOfMeeting(uint key, const QString &text, const QByteArray &raw)
{
    if (mInMeetingLocation && key == AirSyncBase::DisplayName) {
        mMeetingRequest.setLocation(text);
        return FieldResult::Stored;
    }
    // RecurrenceId stands in both tables: it belongs to the request as long as there is one.
    const bool ofRequest = EmailFields::meetingRequestFields().receives(key)
        && (mInMeetingRequest || !EmailFields::recurrenceFields().receives(key));
    return ofRequest ? EmailFields::meetingRequestFields().take(mMeetingRequest, key, text, raw)
                     : EmailFields::recurrenceFields().take(mRecurrence, key, text, raw);
}

FieldResult EmailAppDataParser::storeByContext(uint key, const QString &text, const QByteArray &raw)
{
    if (mFieldContext == InBody && EmailFields::bodyFields().receives(key)) {
        return EmailFields::bodyFields().take(mBody, key, text, raw);
    }
    if (mFieldContext == InBodyPart && EmailFields::bodyPartFields().receives(key)) {
        return EmailFields::bodyPartFields().take(mBodyPart, key, text, raw);
    }
    const bool isSize = key == AirSyncBase::EstimatedDataSize;
    if (SharedFields::attachmentFields().receives(key) && (mFieldContext == InAttachment || !isSize)) {
        return SharedFields::attachmentFields().take(mAttachment, key, text, raw);
    }
    // Known, but in a place where nothing holds it.
    EasBodyPartContainer nowhere;
    return EmailFields::bodyPartFields().take(nowhere, key, text, raw);
}

bool EmailAppDataParser::isKnown(uint key)
{
    return key == Email::Category || key == AirSyncBase::Attachments
        || EmailFields::itemFields().receives(key) || EmailFields::meetingRequestFields().receives(key)
        || EmailFields::recurrenceFields().receives(key) || EmailFields::flagFields().receives(key)
        || SharedFields::attachmentFields().receives(key) || EmailFields::bodyPartFields().receives(key);
}
