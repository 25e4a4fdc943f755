// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/syncitemparser.h"

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

void SyncItemParser::beginReply()
{
    mTypeUnread = false;
    mMentions.clear();
    for (AppDataParserBase *parser :
        { static_cast<AppDataParserBase *>(&mEmailParser), static_cast<AppDataParserBase *>(&mCalendarParser),
            static_cast<AppDataParserBase *>(&mContactsParser) })
        parser->beginReply();
}

void SyncItemParser::setChangeItem(bool isChange)
{
    mEmailParser.setChangeItem(isChange);
}

void SyncItemParser::begin()
{
    mTypeLookedUp = false;
    mBodyContainer.clear();
}

void SyncItemParser::onStartElement(uint page, uint token, const QString &serverId)
{
    // An element may be all that an item has, such as the empty flag that takes a flag away, so that it tells
    // the class already before any text does.
    setAppDataType(page, serverId);
    if (AppDataParserBase *const parser = appDataParser())
        parser->onStartElement(page, token);
}

void SyncItemParser::onEndElement(uint page, uint token)
{
    if (AppDataParserBase *const parser = appDataParser())
        parser->onEndElement(page, token);
}

void SyncItemParser::onContent(
    uint page, uint token, const QString &text, const QByteArray &raw, const QString &serverId)
{
    if (!setAppDataType(page, serverId))
        return bodyContent(page, token, text);
    if (AppDataParserBase *const parser = appDataParser())
        parser->onContent(page, token, text, raw);
}

void SyncItemParser::bodyContent(uint page, uint token, const QString &text)
{
    if (key(page, token) == AirSyncBase::Body)
        return;
    const uint tag = key(page, token);
    if (looseBodyFields().take(mBodyContainer, tag, text, {}, mMentions) == FieldResult::Unknown
        && mMentions.isFirst("field", tag))
        qCWarning(eas()) << "unhandled field:" << text << ", codePage" << page << ", token" << token;
}

bool SyncItemParser::setAppDataType(uint page, const QString &serverId)
{
    if (mAppDataType != ItemsCommon::None)
        return true;
    if (page == Contacts::Email1Address.page || page == Contacts2::CustomerId.page) {
        mAppDataType = ItemsCommon::Contact;
    } else if (page == Email::Subject.page || page == Email2::Sender.page) {
        mAppDataType = ItemsCommon::Email;
    } else if (page == Calendar::Subject.page) {
        mAppDataType = ItemsCommon::Calendar;
    } else if (page == AirSyncBase::Body.page || page == ComposeMail::Status.page) {
        if (!mTypeLookedUp)
            lookUpType(serverId);
    } else {
        return false;
    }
    return true;
}

void SyncItemParser::lookUpType(const QString &serverId)
{
    mTypeLookedUp = true;
    const Lookup<EasDatabase::AppDataType> type = EasDatabase::instance()->getAppDataType(serverId);
    if (type)
        mAppDataType = ItemsCommon::ItemDataType(*type);
    else
        mTypeUnread = true;
}

AppDataParserBase *SyncItemParser::appDataParser()
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

void SyncItemParser::end(SyncCollection &collection, Use use, const QString &serverId)
{
    switch (mAppDataType) {
    case ItemsCommon::Email:
        append<EasEmailItem>(collection, use, serverId, mEmailParser.mailItem(),
            { &SyncCollection::appendAddedEmails, &SyncCollection::appendChangedEmails,
                &SyncCollection::appendFetchedEmails });
        mEmailParser.reset();
        break;
    case ItemsCommon::Contact:
        append<EasContactsItem>(collection, use, serverId, mContactsParser.contactItem(),
            { &SyncCollection::appendAddedContacts, &SyncCollection::appendChangedContacts,
                &SyncCollection::appendFetchedContacts });
        mContactsParser.reset();
        break;
    case ItemsCommon::Calendar:
        append<EasCalendarItem>(collection, use, serverId, mCalendarParser.calendarItem(),
            { &SyncCollection::appendAddedCalendars, &SyncCollection::appendChangedCalendars,
                &SyncCollection::appendFetchedCalendars });
        mCalendarParser.reset();
        break;
    case ItemsCommon::None:
        return;
    }
    mAppDataType = ItemsCommon::None;
}

template <class Item>
void SyncItemParser::append(SyncCollection &collection, Use use, const QString &serverId, Item item,
    const Destinations<Item> &destinations)
{
    if (!mBodyContainer.isEmpty()) {
        item.setBody(mBodyContainer);
        mBodyContainer.clear();
    }
    switch (use) {
    case Use::Added:
        return (collection.*destinations.added)(item, serverId);
    case Use::Changed:
        return (collection.*destinations.changed)(item, serverId);
    case Use::Fetched:
        return (collection.*destinations.fetched)(item, serverId);
    case Use::Ignored:
        return;
    }
}
