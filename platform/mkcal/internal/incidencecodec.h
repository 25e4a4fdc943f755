// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Incidence>

#include <QByteArray>

namespace mKCal {

/**
 * An incidence as the store keeps it: iCalendar text, and beside it, as JSON, those fields that reading the
 * text again does not give back as they were.
 */
struct EncodedIncidence
{
    QByteArray text;
    QByteArray rest;
};

namespace IncidenceCodec {

/** The text is empty for an incidence that iCalendar cannot express at all. */
EncodedIncidence encode(const KCalendarCore::Incidence::Ptr &incidence);
/** Null for a text that is damaged. */
KCalendarCore::Incidence::Ptr decode(const EncodedIncidence &encoded);

} // namespace IncidenceCodec

} // namespace mKCal
