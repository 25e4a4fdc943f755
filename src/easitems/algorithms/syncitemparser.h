// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/calendarappdataparser.h"
#include "easitems/algorithms/contactsappdataparser.h"
#include "easitems/algorithms/emailappdataparser.h"
#include "easitems/itemscommon.h"
#include "protocol/elements/synccollection.h"

/**
 * Reads the data of one item after the other, whatever its class.
 *
 * A reply does not always say of which class an item is. The code page of its first field tells, and where
 * that is one which all classes use, the mapping database is asked. Owned by the parser of a reply. Main
 * thread only.
 */
class SyncItemParser
{
public:
    /** What a reply says about the item. */
    enum class Use { Added, Changed, Fetched, Ignored };

    /** A reply begins. */
    void beginReply();
    /** Whether the next items are changes of items that the device has. */
    void setChangeItem(bool isChange);
    /** The data of an item begins. */
    void begin();
    /** The data has ended: the item goes into the collection, and the next one starts empty. */
    void end(SyncCollection &collection, Use use, const QString &serverId);

    // The parts of the data; `serverId` names the item that they belong to.
    void onStartElement(uint page, uint token, const QString &serverId);
    void onEndElement(uint page, uint token);
    void onContent(
        uint page, uint token, const QString &text, const QByteArray &raw, const QString &serverId);

    /** Whether the class of an item could not be looked up, so that its data was left out. */
    bool typeUnread() const { return mTypeUnread; }

private:
    void bodyContent(uint page, uint token, const QString &text);
    bool setAppDataType(uint page, const QString &serverId);
    void lookUpType(const QString &serverId);
    AppDataParserBase *appDataParser();
    template <class Item> using AppendItem = void (SyncCollection::*)(const Item &, const QString &);
    template <class Item> struct Destinations
    {
        AppendItem<Item> added;
        AppendItem<Item> changed;
        AppendItem<Item> fetched;
    };
    template <class Item>
    void append(SyncCollection &collection, Use use, const QString &serverId, Item item,
        const Destinations<Item> &destinations);

    ItemsCommon::ItemDataType mAppDataType = ItemsCommon::None;
    bool mTypeLookedUp = false;
    bool mTypeUnread = false;
    EasBodyContainer mBodyContainer;
    Mentions mMentions;
    EmailAppDataParser mEmailParser;
    CalendarAppDataParser mCalendarParser;
    ContactsAppDataParser mContactsParser;
};
