// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Incidence>
#include <notebook.h>

#include <QDateTime>

#include <functional>

class SqliteDatabase;

namespace mKCal {

/** The rows of notebooks. */
class NotebookRows
{
public:
    explicit NotebookRows(SqliteDatabase &database)
        : mDatabase(database)
    {
    }

    bool isEmpty();
    bool read(Notebook::List *notebooks, QString *defaultUid);
    bool write(const Notebook::Ptr &notebook);
    /** With all incidences of the notebook, deleted ones included. */
    bool erase(const QString &uid);
    bool setDefault(const QString &uid);

private:
    SqliteDatabase &mDatabase;
};

/** What to read: a condition on the columns with its values. */
struct RowFilter
{
    QString condition;
    QVariantList values;
};

/** The rows of incidences, deleted ones included. Writing is to be done within a transaction. */
class IncidenceRows
{
public:
    /** Whether an incidence is wanted at all, asked before its text is read. */
    typedef std::function<bool(const QString &uid, const QDateTime &recurrenceId)> Wanted;
    typedef std::function<void(const KCalendarCore::Incidence::Ptr &, const QString &notebookUid)> Handler;

    explicit IncidenceRows(SqliteDatabase &database)
        : mDatabase(database)
    {
    }

    /** Series come before their exceptions. */
    bool read(const RowFilter &filter, const Handler &handler, const Wanted &wanted = Wanted());
    /** Deleted rows of the same uid and recurrence id go. */
    bool insert(const KCalendarCore::Incidence::Ptr &incidence, const QString &notebookUid);
    bool update(const KCalendarCore::Incidence::Ptr &incidence, const QString &notebookUid);
    bool markDeleted(const KCalendarCore::Incidence::Ptr &incidence, const QDateTime &time);
    bool erase(const KCalendarCore::Incidence::Ptr &incidence);
    bool eraseDeleted(const KCalendarCore::Incidence::Ptr &incidence);
    QDateTime deletedDate(const KCalendarCore::Incidence::Ptr &incidence);

private:
    SqliteDatabase &mDatabase;
};

} // namespace mKCal
