// SPDX-License-Identifier: LGPL-2.1-or-later
#include "sqlitestorage.h"

#include "internal/calendardatabase.h"
#include "internal/changequeries.h"
#include "internal/pendingchanges.h"
#include "internal/recurrencekey.h"

#include <QDebug>

namespace mKCal {

using KCalendarCore::Incidence;

class SqliteStorageData
{
public:
    explicit SqliteStorageData(const QString &databaseName)
        : name(databaseName)
    {
    }

    const QString name;
    std::unique_ptr<CalendarDatabase> file; ///< Null while the storage is closed.
};

SqliteStorage::SqliteStorage(
    const ExtendedCalendar::Ptr &cal, const QString &databaseName, bool validateNotebooks)
    : ExtendedStorage(cal, validateNotebooks)
    , d(std::make_unique<SqliteStorageData>(databaseName))
{
}

SqliteStorage::~SqliteStorage() = default;

QString SqliteStorage::databaseName() const
{
    return d->name;
}

bool SqliteStorage::isOpen() const
{
    return d->file != nullptr;
}

bool SqliteStorage::open()
{
    if (isOpen())
        return false;
    d->file = CalendarDatabase::open(d->name);
    if (!d->file)
        return false;
    if (!reloadNotebooks()) {
        d->file.reset();
        return false;
    }
    watchMarker(d->name + QLatin1String(".changed"));
    return true;
}

bool SqliteStorage::close()
{
    d->file.reset();
    return ExtendedStorage::close();
}

bool SqliteStorage::load()
{
    return loadRows(ChangeQueries::all(QString()));
}

bool SqliteStorage::load(const QString &uid, const QDateTime &recurrenceId)
{
    const QStringList keys = RecurrenceKey::candidates(recurrenceId);
    return loadRows({ QStringLiteral("uid = ? AND recurrence IN (?, ?) AND deleted IS NULL"),
        { uid, keys.at(0), keys.at(1) } });
}

bool SqliteStorage::load(const QDate &start, const QDate &end)
{
    // A day more on either side, for zones; a series may have occurrences anywhere.
    const QDate first = start.isValid() ? start.addDays(-1) : QDate(1, 1, 1);
    const QDate last = end.isValid() ? end.addDays(1) : QDate(9999, 12, 31);
    return loadRows({ QStringLiteral("deleted IS NULL AND (last IS NULL OR (last >= ? AND first <= ?))"),
        { QDateTime(first, QTime(0, 0), Qt::UTC).toSecsSinceEpoch(),
            QDateTime(last, QTime(23, 59, 59), Qt::UTC).toSecsSinceEpoch() } });
}

bool SqliteStorage::loadSeries(const QString &uid)
{
    return loadRows({ QStringLiteral("uid = ? AND deleted IS NULL"), { uid } });
}

bool SqliteStorage::loadNotebookIncidences(const QString &notebookUid)
{
    return !notebookUid.isEmpty() && loadRows(ChangeQueries::all(notebookUid));
}

bool SqliteStorage::loadRows(const RowFilter &filter)
{
    if (!isOpen())
        return false;
    const auto wanted = [this](const QString &uid, const QDateTime &recurrenceId) {
        return !calendar()->incidence(uid, recurrenceId) && !pendingChanges().isDeleted(uid, recurrenceId);
    };
    const auto handler = [this](const Incidence::Ptr &incidence, const QString &notebookUid) {
        adopt(incidence, notebookUid);
    };
    const bool done = d->file->incidences.read(filter, handler, wanted);
    notifyFinished(
        !done, done ? QStringLiteral("load completed") : QStringLiteral("errors loading incidences"));
    return done;
}

bool SqliteStorage::save()
{
    return save(MarkDeleted);
}

bool SqliteStorage::save(DeleteAction deleteAction)
{
    if (!isOpen())
        return false;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    PendingChanges &pending = pendingChanges();
    int written = 0;
    const bool added = saveKind(
        pending.added(), written, [this](const Incidence::Ptr &incidence, const QString &notebookUid) {
            return d->file->incidences.insert(incidence, notebookUid);
        });
    const bool changed = saveKind(
        pending.changed(), written, [this](const Incidence::Ptr &incidence, const QString &notebookUid) {
            return d->file->incidences.update(incidence, notebookUid);
        });
    const bool deleted = saveKind(pending.deleted(), written,
        [this, now, deleteAction](const Incidence::Ptr &incidence, const QString &) {
            return deleteAction == PurgeDeleted ? d->file->incidences.erase(incidence)
                                                : d->file->incidences.markDeleted(incidence, now);
        });
    if (written > 0)
        signalCommit();
    const bool done = added && changed && deleted;
    notifyFinished(
        !done, done ? QStringLiteral("save completed") : QStringLiteral("errors saving incidences"));
    return done;
}

bool SqliteStorage::saveKind(QMap<QString, Incidence::Ptr> &incidences, int &written, const RowWriter &write)
{
    for (auto entry = incidences.begin(); entry != incidences.end();) {
        const QString notebookUid = calendar()->notebook(*entry);
        if (isValidNotebook(notebookUid)) {
            ++entry;
            continue;
        }
        qWarning() << "not saved:" << (*entry)->uid() << "of the notebook" << notebookUid;
        entry = incidences.erase(entry);
    }
    if (incidences.isEmpty())
        return true;
    SqliteDatabase::Transaction transaction(d->file->database);
    bool done = transaction.isActive();
    for (const Incidence::Ptr &incidence : qAsConst(incidences))
        done = done && write(incidence, calendar()->notebook(incidence));
    if (!done || !transaction.commit())
        return false; // They stay for the next save.
    written += incidences.size();
    incidences.clear();
    return true;
}

bool SqliteStorage::insertedIncidences(
    Incidence::List *list, const QDateTime &after, const QString &notebookUid)
{
    return after.isValid() && select(list, ChangeQueries::inserted(after, notebookUid));
}

bool SqliteStorage::modifiedIncidences(
    Incidence::List *list, const QDateTime &after, const QString &notebookUid)
{
    return after.isValid() && select(list, ChangeQueries::modified(after, notebookUid));
}

bool SqliteStorage::deletedIncidences(
    Incidence::List *list, const QDateTime &after, const QString &notebookUid)
{
    return select(list, ChangeQueries::deleted(after, notebookUid));
}

bool SqliteStorage::allIncidences(Incidence::List *list, const QString &notebookUid)
{
    return select(list, ChangeQueries::all(notebookUid));
}

bool SqliteStorage::select(Incidence::List *list, const RowFilter &filter)
{
    if (!isOpen() || !list)
        return false;
    const bool done = d->file->incidences.read(
        filter, [list](const Incidence::Ptr &incidence, const QString &) { list->append(incidence); });
    notifyFinished(
        !done, done ? QStringLiteral("select completed") : QStringLiteral("error selecting incidences"));
    return done;
}

QDateTime SqliteStorage::incidenceDeletedDate(const Incidence::Ptr &incidence)
{
    return isOpen() && incidence ? d->file->incidences.deletedDate(incidence) : QDateTime();
}

bool SqliteStorage::purgeDeletedIncidences(const Incidence::List &list, const QString &notebookUid)
{
    Q_UNUSED(notebookUid)
    if (!isOpen())
        return false;
    SqliteDatabase::Transaction transaction(d->file->database);
    bool done = transaction.isActive();
    for (const Incidence::Ptr &incidence : list)
        done = done && incidence && d->file->incidences.eraseDeleted(incidence);
    return done && transaction.commit();
}

bool SqliteStorage::readNotebooks(Notebook::List *notebooks, QString *defaultUid)
{
    return d->file->notebooks.read(notebooks, defaultUid);
}

bool SqliteStorage::insertNotebook(const Notebook::Ptr &notebook)
{
    return d->file->notebooks.write(notebook);
}

bool SqliteStorage::modifyNotebook(const Notebook::Ptr &notebook)
{
    return d->file->notebooks.write(notebook);
}

bool SqliteStorage::eraseNotebook(const Notebook::Ptr &notebook)
{
    SqliteDatabase::Transaction transaction(d->file->database);
    return transaction.isActive() && d->file->notebooks.erase(notebook->uid()) && transaction.commit();
}

bool SqliteStorage::storeDefaultNotebook(const QString &uid)
{
    return d->file->notebooks.setDefault(uid);
}

} // namespace mKCal
