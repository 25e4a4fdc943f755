// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <libical/ical.h>

#include <memory>

/** Frees what the iCalendar library hands out. */
struct ICalDeleter
{
    void operator()(icalcomponent *component) const { icalcomponent_free(component); }
    void operator()(icalproperty *property) const { icalproperty_free(property); }
    /** With the component that it was made of. */
    void operator()(icaltimezone *zone) const { icaltimezone_free(zone, 1); }
};

using ICalComponent = std::unique_ptr<icalcomponent, ICalDeleter>;
using ICalProperty = std::unique_ptr<icalproperty, ICalDeleter>;
using ICalZone = std::unique_ptr<icaltimezone, ICalDeleter>;
