// SPDX-License-Identifier: LGPL-2.1-or-later
// The part of SyncResponseParser that reads the items inside ApplicationData.
#include "easitems/algorithms/syncresponseparser.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/fields/fieldtable.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QDebug>

using namespace Wbxml;

namespace {

constexpr char NoNumber[] = "Cannot convert to bool: ";

const FieldTable<EasBodyContainer> &looseBodyFields()
{
    using Body = EasBodyContainer;
    using Kind = Fields<Body>;
    static const FieldTable<Body> table {
        Kind::unsignedNumber<&Body::type, &Body::setType>(AirSyncBase::Type, NoNumber),
        Kind::text<&Body::data, &Body::setData>(AirSyncBase::Data),
        Kind::text<&Body::data, &Body::setData>(AirSyncBase::FileReference),
        Kind::text<&Body::data, &Body::setData>(AirSyncBase::ClientId),
        Kind::signedNumber<&Body::estimatedDataSize, &Body::setEstimatedDataSize>(
            AirSyncBase::EstimatedDataSize, NoNumber),
        Kind::flag<&Body::truncated, &Body::setTruncated>(AirSyncBase::Truncated, NoNumber),
        Kind::text<&Body::preview, &Body::setPreview>(AirSyncBase::Preview),
        Kind::signedNumber<&Body::part, &Body::setPart>(AirSyncBase::BodyPart, NoNumber),
    };
    return table;
}

} // namespace

void SyncResponseParser::parseAppData(uint page, uint token, const QString &text, const QByteArray &raw)
{
    if (!setAppDataType(page)) {
        parseBodyFields(page, token, text);
        return;
    }
    if (AppDataParserBase *const parser = appDataParser()) {
        parser->onContent(page, token, text, raw);
    }
}

void SyncResponseParser::parseBodyFields(uint page, uint token, const QString &text)
{
    if (key(page, token) == AirSyncBase::Body) {
        return;
    }
    if (looseBodyFields().take(mBodyContainer, key(page, token), text, {}) == FieldResult::Unknown) {
        qCWarning(eas()) << "unhandled field:" << text << ", codePage" << page << ", token" << token;
    }
}

bool SyncResponseParser::setAppDataType(uint page)
{
    if (mAppDataType != ItemsCommon::None) {
        return true;
    }
    if (page == Contacts::Email1Address.page || page == Contacts2::CustomerId.page) {
        mAppDataType = ItemsCommon::Contact;
    } else if (page == Email::Subject.page || page == Email2::Sender.page) {
        mAppDataType = ItemsCommon::Email;
    } else if (page == Calendar::Subject.page) {
        mAppDataType = ItemsCommon::Calendar;
    } else if (page == AirSyncBase::Body.page || page == ComposeMail::Status.page) {
        if (!mTypeLookedUp)
            lookUpType();
    } else {
        return false;
    }
    return true;
}

void SyncResponseParser::lookUpType()
{
    mTypeLookedUp = true;
    const Lookup<EasDatabase::AppDataType> type = EasDatabase::instance()->getAppDataType(itemServerId());
    if (type)
        mAppDataType = ItemsCommon::ItemDataType(*type);
    else
        mTypeUnread = true;
}

AppDataParserBase *SyncResponseParser::appDataParser()
{
    switch (mAppDataType) {
    case ItemsCommon::Email:
        return &mEmailParser;
    case ItemsCommon::Contact:
        return &mContactsParser;
    case ItemsCommon::Calendar:
        return &mCalendarParser;
    case ItemsCommon::None:
        break;
    }
    return nullptr;
}

QString SyncResponseParser::itemServerId() const
{
    if (mParsePhase == InResponses && mCommandKind == AddKind) {
        return mCurrentAdd.serverId();
    }
    if (mParsePhase == InResponses && mCommandKind == ChangeKind) {
        return mCurrentChange.serverId();
    }
    if (mParsePhase == InResponses && mCommandKind == DeleteKind) {
        return mCurrentDelete.serverId();
    }
    return mCurrentServerId;
}

void SyncResponseParser::appendCurrentCmdToContainer()
{
    switch (mAppDataType) {
    case ItemsCommon::Email:
        appendItem(mEmailParser, mEmailParser.mailItem(), &SyncCollection::appendAddedEmails,
            &SyncCollection::appendChangedEmails, &SyncCollection::appendFetchedEmails);
        break;
    case ItemsCommon::Contact:
        appendItem(mContactsParser, mContactsParser.contactItem(), &SyncCollection::appendAddedContacts,
            &SyncCollection::appendChangedContacts, &SyncCollection::appendFetchedContacts);
        break;
    case ItemsCommon::Calendar:
        appendItem(mCalendarParser, mCalendarParser.calendarItem(), &SyncCollection::appendAddedCalendars,
            &SyncCollection::appendChangedCalendars, &SyncCollection::appendFetchedCalendars);
        break;
    case ItemsCommon::None:
        if ((mCommandKind == DeleteKind || mCommandKind == SoftDeleteKind) && !mCurrentServerId.isEmpty()) {
            mCurrentCollection.appendDeletedIds(mCurrentServerId);
        }
        break;
    }
    mCurrentServerId.clear();
}

template <class Parser, class Item>
void SyncResponseParser::appendItem(
    Parser &parser, Item item, AppendItem<Item> added, AppendItem<Item> changed, AppendItem<Item> fetched)
{
    if (!mBodyContainer.isEmpty()) {
        item.setBody(mBodyContainer);
        mBodyContainer.clear();
    }
    // What a server adds to its answer about an upload is no item of its own.
    const bool isAnswer = mParsePhase == InResponses;
    if (mCommandKind == FetchKind) {
        (mCurrentCollection.*fetched)(item, mCurrentServerId);
    } else if (mCommandKind == AddKind && !isAnswer) {
        (mCurrentCollection.*added)(item, mCurrentServerId);
    } else if (mCommandKind == ChangeKind && !isAnswer) {
        (mCurrentCollection.*changed)(item, mCurrentServerId);
    }
    parser.reset();
}
