// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/calendarrows.h"
#include "support/sqlitedatabase.h"

#include <memory>

namespace mKCal {

/** The database of a calendar store with what its tables hold. */
class CalendarDatabase
{
public:
    /** Null, with a log line, when it cannot be opened. A new one has the notebook "Default". */
    static std::unique_ptr<CalendarDatabase> open(const QString &path);

    SqliteDatabase database;
    NotebookRows notebooks;
    IncidenceRows incidences;

private:
    CalendarDatabase();
    bool makeDefaultNotebook();
};

} // namespace mKCal
