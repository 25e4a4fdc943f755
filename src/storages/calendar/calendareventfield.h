// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "easitems/eascalendaritem.h"

#include <KCalendarCore/Event>

#include <QTimeZone>

#include <functional>

/** An item on its way into an event. */
struct CalendarFieldWriting
{
    const KCalendarCore::Event::Ptr &event;
    const EasCalendarItem &item;
    /** That of the item; an exception has that of its series. */
    const QTimeZone &zone;
};

/** An event on its way into an item. */
struct CalendarFieldReading
{
    KCalendarCore::Event &event;
    /** Of an exception; any other event stands for itself. */
    const KCalendarCore::Event &series;
    ExchangeActiveSync::ProtocolVersion version;
    EasCalendarItem &item;
};

/** All that is known of one field of an item in the device's calendar. */
struct CalendarEventField
{
    using Parameter = EasCalendarItem::CalendarItemParameter;
    using Write = std::function<bool(const CalendarFieldWriting &)>;
    using Read = std::function<void(const CalendarFieldReading &)>;
    using Inherit = std::function<void(const KCalendarCore::Event &series, KCalendarCore::Event &exception)>;
    using Clear = std::function<void(EasCalendarItem &)>;

    explicit CalendarEventField(Parameter parameter)
        : parameter(parameter)
    {
    }

    /** From the server into the event; false, logged, if the value makes no sense. */
    CalendarEventField written(Write how) const;
    /** An item can be refused for the field, or a refusal of another depends on it. */
    CalendarEventField checked() const;
    /** From the event to the server. */
    CalendarEventField readBy(Read how) const;
    /** Exceptions have the field, and take it over from their series if they do not bring it. */
    CalendarEventField inherited(Inherit how) const;
    /** Exceptions have the field, each its own. */
    CalendarEventField ofEachPart() const;
    /** Servers leave the field out where it has no value; before this version they never have it. */
    CalendarEventField cleared(Clear how,
        ExchangeActiveSync::ProtocolVersion from = ExchangeActiveSync::ProtocolVersionUnknown) const;

    Parameter parameter;
    Write write;
    Read read;
    Inherit inherit;
    Clear clear;
    ExchangeActiveSync::ProtocolVersion clearedFrom = ExchangeActiveSync::ProtocolVersionUnknown;
    bool isChecked = false;
    bool isOfExceptions = false;
};
