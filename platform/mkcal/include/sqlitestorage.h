// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <extendedstorage.h>

#include <QMap>

#include <functional>

namespace mKCal {

struct RowFilter;
class SqliteStorageData;

/** The store in a SQLite file that several processes share. The folder of the file must exist. */
class MKCAL_EXPORT SqliteStorage : public ExtendedStorage
{
    Q_OBJECT

public:
    typedef QSharedPointer<SqliteStorage> Ptr;

    explicit SqliteStorage(
        const ExtendedCalendar::Ptr &cal, const QString &databaseName, bool validateNotebooks = true);
    ~SqliteStorage() override;

    QString databaseName() const;

    bool open() override;
    bool close() override;
    bool load() override;
    bool load(const QString &uid, const QDateTime &recurrenceId = QDateTime()) override;
    bool load(const QDate &start, const QDate &end) override;
    bool loadSeries(const QString &uid) override;
    bool loadNotebookIncidences(const QString &notebookUid) override;
    bool save() override;
    bool save(DeleteAction deleteAction) override;
    bool insertedIncidences(KCalendarCore::Incidence::List *list, const QDateTime &after,
        const QString &notebookUid = QString()) override;
    bool modifiedIncidences(KCalendarCore::Incidence::List *list, const QDateTime &after,
        const QString &notebookUid = QString()) override;
    bool deletedIncidences(KCalendarCore::Incidence::List *list, const QDateTime &after = QDateTime(),
        const QString &notebookUid = QString()) override;
    bool allIncidences(KCalendarCore::Incidence::List *list, const QString &notebookUid = QString()) override;
    QDateTime incidenceDeletedDate(const KCalendarCore::Incidence::Ptr &incidence) override;
    bool purgeDeletedIncidences(
        const KCalendarCore::Incidence::List &list, const QString &notebookUid = QString()) override;

protected:
    bool isOpen() const override;
    bool readNotebooks(Notebook::List *notebooks, QString *defaultUid) override;
    bool insertNotebook(const Notebook::Ptr &notebook) override;
    bool modifyNotebook(const Notebook::Ptr &notebook) override;
    bool eraseNotebook(const Notebook::Ptr &notebook) override;
    bool storeDefaultNotebook(const QString &uid) override;

private:
    typedef std::function<bool(const KCalendarCore::Incidence::Ptr &, const QString &notebookUid)> RowWriter;

    bool loadRows(const RowFilter &filter);
    bool select(KCalendarCore::Incidence::List *list, const RowFilter &filter);
    /** One kind of changes in one transaction; what could not be written stays in the map. */
    bool saveKind(
        QMap<QString, KCalendarCore::Incidence::Ptr> &incidences, int &written, const RowWriter &write);

    const std::unique_ptr<SqliteStorageData> d;
};

} // namespace mKCal
