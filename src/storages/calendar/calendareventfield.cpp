// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventfield.h"

using ExchangeActiveSync::ProtocolVersion;

CalendarEventField CalendarEventField::written(Write how) const
{
    CalendarEventField field(*this);
    field.write = std::move(how);
    return field;
}

CalendarEventField CalendarEventField::checked() const
{
    CalendarEventField field(*this);
    field.isChecked = true;
    return field;
}

CalendarEventField CalendarEventField::readBy(Read how) const
{
    CalendarEventField field(*this);
    field.read = std::move(how);
    return field;
}

CalendarEventField CalendarEventField::inherited(Inherit how) const
{
    CalendarEventField field = ofEachPart();
    field.inherit = std::move(how);
    return field;
}

CalendarEventField CalendarEventField::ofEachPart() const
{
    CalendarEventField field(*this);
    field.isOfExceptions = true;
    return field;
}

CalendarEventField CalendarEventField::cleared(Clear how, ProtocolVersion from) const
{
    CalendarEventField field(*this);
    field.clear = std::move(how);
    field.clearedFrom = from;
    return field;
}
