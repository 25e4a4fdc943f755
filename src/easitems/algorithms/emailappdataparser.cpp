// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/emailappdataparser.h"

#include "easitems/fields/emailfields.h"
#include "easitems/fields/sharedfields.h"

#include <algorithm>
#include <iterator>

using namespace Wbxml;

/** An element that holds others: what it opens, and what is done around them. */
struct EmailAppDataParser::Container
{
    uint key;
    Place place;
    void (EmailAppDataParser::*begin)();
    void (EmailAppDataParser::*end)();
    /** Whether it clears a list or a flag when it comes empty, which is a change. */
    bool clears = false;
};

/** Where a field goes: to what is open around it, and, in a change, under which key it is recorded. */
struct EmailAppDataParser::Member
{
    /** All of these must be open. */
    uint places;
    bool (*receives)(uint key);
    FieldResult (EmailAppDataParser::*take)(uint key, const QString &text, const QByteArray &raw);
    /** 0: the key of the field. */
    uint recorded = 0;
};

EmailAppDataParser::EmailAppDataParser(QObject *parent)
    : AppDataParserBase(parent)
{
}

void EmailAppDataParser::reset()
{
    mOpen = InItem;
    mLastStarted = 0;
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

const EmailAppDataParser::Container *EmailAppDataParser::containerOf(uint key)
{
    using Parser = EmailAppDataParser;
    static const Container containers[] = {
        { AirSyncBase::Body, InBody, &Parser::beginBody, &Parser::endBody },
        { AirSyncBase::BodyPart, InBodyPart, &Parser::beginBodyPart, &Parser::endBodyPart },
        { AirSyncBase::Attachments, InAttachments, &Parser::beginAttachments, &Parser::endAttachments, true },
        { AirSyncBase::Attachment, InAttachment, &Parser::beginAttachment, &Parser::endAttachment },
        { AirSyncBase::Location, InMeetingPlace, &Parser::nothing, &Parser::nothing },
        { Email::Flag, InFlag, &Parser::beginFlag, &Parser::endFlag, true },
        { Email::Categories, InCategories, &Parser::beginCategories, &Parser::endCategories, true },
        { Email::MeetingRequest, InMeetingRequest, &Parser::beginMeetingRequest, &Parser::endMeetingRequest },
        { Email::Recurrences, InRecurrences, &Parser::beginRecurrences, &Parser::endRecurrences },
        { Email::Recurrence, InRecurrence, &Parser::beginRecurrence, &Parser::endRecurrence },
    };
    const auto found = std::find_if(std::begin(containers), std::end(containers),
        [key](const Container &container) { return container.key == key; });
    return found == std::end(containers) ? nullptr : found;
}

namespace {

template <auto Table> bool receives(uint key)
{
    return Table().receives(key);
}

template <const Token &Tag> bool isTag(uint key)
{
    return key == Tag.key();
}

} // namespace

const EmailAppDataParser::Member *EmailAppDataParser::memberOf(uint key) const
{
    using Parser = EmailAppDataParser;
    // RecurrenceId stands in two tables: it belongs to the request as long as there is one.
    static const Member members[] = {
        { InItem, receives<EmailFields::itemFields>, &Parser::take<EmailFields::itemFields, &Parser::mItem> },
        { InMeetingRequest | InMeetingPlace, isTag<AirSyncBase::DisplayName>, &Parser::takeMeetingPlace,
            Email::Location },
        { InMeetingRequest, receives<EmailFields::meetingRequestFields>,
            &Parser::take<EmailFields::meetingRequestFields, &Parser::mMeetingRequest> },
        { InRecurrence, receives<EmailFields::recurrenceFields>,
            &Parser::take<EmailFields::recurrenceFields, &Parser::mRecurrence> },
        { InFlag, receives<EmailFields::flagFields>, &Parser::take<EmailFields::flagFields, &Parser::mFlag> },
        { InCategories, isTag<Email::Category>, &Parser::takeCategory },
        { InBody, receives<EmailFields::bodyFields>, &Parser::take<EmailFields::bodyFields, &Parser::mBody> },
        { InBodyPart, receives<EmailFields::bodyPartFields>,
            &Parser::take<EmailFields::bodyPartFields, &Parser::mBodyPart> },
        { InAttachment, receives<SharedFields::attachmentFields>,
            &Parser::take<SharedFields::attachmentFields, &Parser::mAttachment> },
        { InItem, isTag<AirSyncBase::EstimatedDataSize>, &Parser::dropSize },
    };
    const auto found = std::find_if(std::begin(members), std::end(members), [&](const Member &member) {
        return (mOpen & member.places) == member.places && member.receives(key);
    });
    return found == std::end(members) ? nullptr : found;
}

bool EmailAppDataParser::isKnown(uint key)
{
    return key == Email::Category || EmailFields::itemFields().receives(key)
        || EmailFields::meetingRequestFields().receives(key) || EmailFields::recurrenceFields().receives(key)
        || EmailFields::flagFields().receives(key) || SharedFields::attachmentFields().receives(key)
        || EmailFields::bodyFields().receives(key) || EmailFields::bodyPartFields().receives(key);
}

void EmailAppDataParser::onStartElement(uint page, uint token)
{
    mLastStarted = key(page, token);
    if (const Container *container = containerOf(mLastStarted)) {
        mOpen |= container->place;
        (this->*container->begin)();
    } else if (!isKnown(mLastStarted)) {
        logUnhandledElement(page, token);
    }
}

void EmailAppDataParser::onEndElement(uint page, uint token)
{
    const Container *container = containerOf(key(page, token));
    if (!container) {
        return;
    }
    mOpen &= ~uint(container->place);
    (this->*container->end)();
    if (container->clears && mLastStarted == container->key) {
        recordChange(container->key);
    }
}

void EmailAppDataParser::onContent(uint page, uint token, const QString &text, const QByteArray &raw)
{
    const uint tag = key(page, token);
    const Member *member = memberOf(tag);
    if (!member) {
        logUnhandledField(text, page, token);
    } else if ((this->*member->take)(tag, text, raw) == FieldResult::Stored) {
        recordChange(member->recorded == 0 ? tag : member->recorded);
    }
}

void EmailAppDataParser::recordChange(uint key)
{
    if (mIsChangeItem) {
        mItem.appendChangedField(key);
    }
}

template <auto Table, auto Object>
FieldResult EmailAppDataParser::take(uint key, const QString &text, const QByteArray &raw)
{
    return Table().take(this->*Object, key, text, raw, mMentions);
}

FieldResult EmailAppDataParser::takeCategory(uint, const QString &text, const QByteArray &)
{
    mCategories.append(text);
    return FieldResult::Stored;
}

FieldResult EmailAppDataParser::takeMeetingPlace(uint, const QString &text, const QByteArray &)
{
    mMeetingRequest.setLocation(text);
    return FieldResult::Stored;
}

FieldResult EmailAppDataParser::dropSize(uint key, const QString &text, const QByteArray &raw)
{
    EasBodyContainer nowhere;
    return EmailFields::bodyFields().take(nowhere, key, text, raw, mMentions);
}

void EmailAppDataParser::endBody()
{
    mItem.setBody(mBody);
    mBody.clear();
}

void EmailAppDataParser::endBodyPart()
{
    mItem.setBodyPart(mBodyPart);
    mBodyPart.clear();
}

void EmailAppDataParser::endAttachment()
{
    mAttachments.append(mAttachment);
    mAttachment.clear();
}

void EmailAppDataParser::endAttachments()
{
    mItem.setAttachments(mAttachments);
    mAttachments.clear();
}

void EmailAppDataParser::endFlag()
{
    mItem.setFlag(mFlag);
    mFlag.clear();
}

void EmailAppDataParser::endCategories()
{
    mItem.setCategories(mCategories);
    mCategories.clear();
}

void EmailAppDataParser::endMeetingRequest()
{
    mMeetingRequest.setElementValid(true);
    mItem.setMeetingRequest(mMeetingRequest);
    mMeetingRequest.clear();
}

void EmailAppDataParser::endRecurrence()
{
    mRecurrences.append(mRecurrence);
    mRecurrence.clear();
}

void EmailAppDataParser::endRecurrences()
{
    if (mOpen & InMeetingRequest) {
        mMeetingRequest.setRecurrences(mRecurrences);
    } else {
        mItem.setRecurrences(mRecurrences);
    }
    mRecurrences.clear();
}
