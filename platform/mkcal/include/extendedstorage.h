// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <extendedcalendar.h>
#include <extendedstorageobserver.h>
#include <mkcalexport.h>
#include <notebook.h>

#include <KCalendarCore/CalStorage>

#include <QSharedPointer>

#include <memory>

namespace mKCal {

class PendingChanges;
class StorageData;

/**
 * The store behind a calendar: it loads incidences into the calendar, gathers what happens to them there and
 * writes it at save(). It keeps the notebooks. Nothing works before open(). To be used in one thread, with an
 * event loop for the notices of changes.
 */
class MKCAL_EXPORT ExtendedStorage : public KCalendarCore::CalStorage,
                                     public KCalendarCore::Calendar::CalendarObserver
{
    Q_OBJECT

public:
    enum DeleteAction { MarkDeleted, PurgeDeleted };
    typedef QSharedPointer<ExtendedStorage> Ptr;

    explicit ExtendedStorage(const ExtendedCalendar::Ptr &calendar, bool validateNotebooks = true);
    ~ExtendedStorage() override;

    bool open() override = 0;
    bool close() override;

    /** Each puts into the calendar what is not there yet; what is there stays as it is. */
    bool load() override = 0;
    virtual bool load(const QString &uid, const QDateTime &recurrenceId = QDateTime()) = 0;
    virtual bool load(const QDate &start, const QDate &end) = 0;
    virtual bool loadSeries(const QString &uid) = 0;
    virtual bool loadNotebookIncidences(const QString &notebookUid) = 0;

    /** Incidences of an unknown, read-only or run-time-only notebook are left out, and it is true still. */
    bool save() override = 0;
    virtual bool save(DeleteAction deleteAction) = 0;

    /** Fill the list with objects of their own. Times are compared in whole seconds, and include the second.
     */
    virtual bool insertedIncidences(KCalendarCore::Incidence::List *list, const QDateTime &after,
        const QString &notebookUid = QString()) = 0;
    virtual bool modifiedIncidences(KCalendarCore::Incidence::List *list, const QDateTime &after,
        const QString &notebookUid = QString()) = 0;
    virtual bool deletedIncidences(KCalendarCore::Incidence::List *list, const QDateTime &after = QDateTime(),
        const QString &notebookUid = QString()) = 0;
    virtual bool allIncidences(
        KCalendarCore::Incidence::List *list, const QString &notebookUid = QString()) = 0;
    virtual QDateTime incidenceDeletedDate(const KCalendarCore::Incidence::Ptr &incidence) = 0;
    /** Erases those of the list that are marked as deleted. */
    virtual bool purgeDeletedIncidences(
        const KCalendarCore::Incidence::List &list, const QString &notebookUid = QString()) = 0;

    void registerObserver(ExtendedStorageObserver *observer);
    void unregisterObserver(ExtendedStorageObserver *observer);

    bool addNotebook(const Notebook::Ptr &notebook);
    /** Wants the very object that notebook() returns at this moment. */
    bool updateNotebook(const Notebook::Ptr &notebook);
    /** All incidences of the notebook go with it. */
    bool deleteNotebook(const Notebook::Ptr &notebook);
    Notebook::Ptr notebook(const QString &uid);
    Notebook::List notebooks();
    Notebook::Ptr defaultNotebook();
    bool setDefaultNotebook(const Notebook::Ptr &notebook);
    /** True for a notebook that incidences can be saved into. */
    bool isValidNotebook(const QString &notebookUid);

    void calendarModified(bool modified, KCalendarCore::Calendar *calendar) override;
    void calendarIncidenceAdded(const KCalendarCore::Incidence::Ptr &incidence) override;
    void calendarIncidenceChanged(const KCalendarCore::Incidence::Ptr &incidence) override;
    void calendarIncidenceDeleted(
        const KCalendarCore::Incidence::Ptr &incidence, const KCalendarCore::Calendar *calendar) override;

protected:
    virtual bool isOpen() const = 0;
    virtual bool readNotebooks(Notebook::List *notebooks, QString *defaultUid) = 0;
    virtual bool insertNotebook(const Notebook::Ptr &notebook) = 0;
    virtual bool modifyNotebook(const Notebook::Ptr &notebook) = 0;
    virtual bool eraseNotebook(const Notebook::Ptr &notebook) = 0;
    virtual bool storeDefaultNotebook(const QString &uid) = 0;

    ExtendedCalendar *extendedCalendar() const;
    PendingChanges &pendingChanges();
    /** Puts an incidence that comes from the store into the calendar. */
    void adopt(const KCalendarCore::Incidence::Ptr &incidence, const QString &notebookUid);
    bool reloadNotebooks();
    /** To be called by an implementation: a change was committed; the store was changed by anybody. */
    void watchMarker(const QString &path);
    void signalCommit();
    void notifyFinished(bool error, const QString &info);

private:
    void onMarkerChanged();
    void onCalendarAboutToClose();

    const std::unique_ptr<StorageData> d;
};

} // namespace mKCal
