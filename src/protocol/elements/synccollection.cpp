// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/synccollection.h"

#include "protocol/base/protocolutils.h"
#include "protocol/elements/airsyncoptions.h"
#include "protocol/elements/synccommandbase.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

SyncCollection::SyncCollection(QObject *parent)
    : AsProtocolItem(parent)
{
}

SyncCollection::SyncCollection(const SyncCollection &other)
    : AsProtocolItem(nullptr)
    , mValues(other.mValues)
    , mOptions(other.mOptions ? other.mOptions->copy() : nullptr)
{
}

SyncCollection &SyncCollection::operator=(const SyncCollection &other)
{
    if (this != &other) {
        mValues = other.mValues;
        mOptions = other.mOptions ? other.mOptions->copy() : nullptr;
    }
    return *this;
}

SyncCollection::~SyncCollection() = default;

void SyncCollection::clear()
{
    mValues = Values();
    mOptions.clear();
}

void SyncCollection::setOptions(AirSyncOptions *options)
{
    if (options == mOptions.data()) {
        return;
    }
    if (options) {
        options->setParent(nullptr);
    }
    mOptions.reset(options);
}

void SyncCollection::appendCommand(SyncCommandBase *command)
{
    command->setParent(nullptr);
    mValues.commands.append(QSharedPointer<SyncCommandBase>(command));
}

void SyncCollection::appendCommands(const QList<QSharedPointer<SyncCommandBase>> &commands)
{
    mValues.commands.append(commands);
}

bool SyncCollection::isInitial() const
{
    return mValues.syncKey.isEmpty() || mValues.syncKey == ProtocolUtils::InitialSyncKey;
}

void SyncCollection::encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    const bool initial = isInitial();
    encoder.appendElement(AirSync::Collection, true);
    encoder.appendTextElement(AirSync::SyncKey, mValues.syncKey);
    encoder.appendTextElement(AirSync::CollectionId, mValues.id);
    if (mValues.windowSize != 0 && !initial) {
        encoder.appendIntElement(AirSync::WindowSize, mValues.windowSize);
    }
    // An initial Sync carries nothing more, but servers of 12.0 need the class from the first exchange on.
    const auto lastWithClass =
        initial ? ExchangeActiveSync::ProtocolVersion120 : ExchangeActiveSync::ProtocolVersion121;
    if (!mValues.itemClass.isEmpty() && version <= lastWithClass) {
        encoder.appendTextElement(AirSync::Class, mValues.itemClass);
    }
    if (!mValues.deletesAsMoves && !initial) {
        encoder.appendIntElement(AirSync::DeletesAsMoves, 0);
    }
    encoder.appendTextElement(
        AirSync::GetChanges, mValues.getChanges ? QStringLiteral("1") : QStringLiteral("0"));
    if (!initial) {
        encodeBeyondInitial(encoder, version);
    }
    encoder.setCurrentNodeToParent();
}

void SyncCollection::encodeBeyondInitial(
    WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    if (mValues.conversationMode && version >= ExchangeActiveSync::ProtocolVersion140) {
        encoder.appendElement(AirSync::ConversationMode);
    }
    if (mOptions) {
        mOptions->encode(encoder, version);
    }
    if (!mValues.commands.isEmpty()) {
        encoder.appendElement(AirSync::Commands, true);
        for (const auto &command : mValues.commands) {
            command->encode(encoder, version);
        }
        encoder.setCurrentNodeToParent();
    }
}

template <class Item> void SyncCollection::append(QList<Item> &list, Item item, const QString &serverId) const
{
    item.setServerId(serverId);
    item.setCollectionId(mValues.id);
    list.append(item);
}

void SyncCollection::appendAddedEmails(const EasEmailItem &item, const QString &serverId)
{
    append(mValues.addedEmails, item, serverId);
}

void SyncCollection::appendChangedEmails(const EasEmailItem &item, const QString &serverId)
{
    EasEmailItem changed = item;
    changed.appendChangedField(AirSync::CollectionId);
    changed.appendChangedField(AirSync::ServerId);
    append(mValues.changedEmails, changed, serverId);
}

void SyncCollection::appendFetchedEmails(const EasEmailItem &item, const QString &serverId)
{
    append(mValues.fetchedEmails, item, serverId);
}

void SyncCollection::appendAddedCalendars(const EasCalendarItem &item, const QString &serverId)
{
    EasCalendarItem added = item;
    added.setCreatedTimestamp(mValues.queryTime - 1);
    append(mValues.addedCalendarItems, added, serverId);
}

void SyncCollection::appendChangedCalendars(const EasCalendarItem &item, const QString &serverId)
{
    append(mValues.changedCalendarItems, item, serverId);
}

void SyncCollection::appendFetchedCalendars(const EasCalendarItem &item, const QString &serverId)
{
    append(mValues.fetchedCalendars, item, serverId);
}

void SyncCollection::appendAddedContacts(const EasContactsItem &item, const QString &serverId)
{
    append(mValues.addedContacts, item, serverId);
}

void SyncCollection::appendChangedContacts(const EasContactsItem &item, const QString &serverId)
{
    append(mValues.changedContacts, item, serverId);
}

void SyncCollection::appendFetchedContacts(const EasContactsItem &item, const QString &serverId)
{
    append(mValues.fetchedContacts, item, serverId);
}

void SyncCollection::appendDeletedIds(const QString &serverId)
{
    mValues.deletedIds.append(serverId);
}

void SyncCollection::appendAirSyncResponseAddedItem(const AirSyncResponseAddItem &item)
{
    mValues.addResponses.append(item);
}

void SyncCollection::appendAirSyncResponseChangedItem(const AirSyncResponseChangeItem &item)
{
    mValues.changeResponses.append(item);
}

void SyncCollection::appendAirSyncResponseDeletedItem(const AirSyncResponseDeleteItem &item)
{
    mValues.deleteResponses.append(item);
}
