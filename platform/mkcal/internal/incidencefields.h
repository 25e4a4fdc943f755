// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Incidence>

#include <QJsonValue>

#include <vector>

namespace mKCal {

/** A field that iCalendar does not keep in each of its values, as a JSON value. */
struct IncidenceField
{
    const char *name;
    QJsonValue (*read)(const KCalendarCore::Incidence &incidence);
    void (*write)(KCalendarCore::Incidence &incidence, const QJsonValue &value);
};

/** In the order in which they have to be written. */
const std::vector<IncidenceField> &incidenceFields();

} // namespace mKCal
