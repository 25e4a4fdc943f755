// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "storages/localquery.h"

#include <KCalendarCore/Event>

#include <QMap>
#include <QSet>
#include <QStringList>

class CalendarFreshUploads;
class CalendarTimestamps;
class UploadBudget;
struct CalendarStoreContext;

/**
 * One search of a calendar folder for what the user changed in it.
 *
 * The store's own lists go by time, and time is not enough: an upload that the server refused, an event that
 * was made in the second of the last search or before a clock was set back, and the deletion of an event that
 * came between a search and its end all fall out of them. So each event of the folder is looked at: it is new
 * if the mapping does not have it in this folder, and edited if the mapping has it in another state. What
 * stands deleted, and what the user moved to another calendar, is a deletion to this folder.
 *
 * The notebook is loaded, and the timestamps are those of it. What does not fit into the budget, if there is
 * one, is left out before it is read. Made for one search.
 */
class CalendarLocalQuery
{
public:
    CalendarLocalQuery(const CalendarStoreContext &context, const CalendarTimestamps &timestamps,
        CalendarFreshUploads &freshUploads, const QString &serverFolderId, const QString &notebookUid,
        UploadBudget *budget);

    /** Asks the store. False if it does not answer. */
    bool ask();
    /** Makes items of the answers. */
    LocalQuery evaluate();

    QList<EasCalendarItem> added() const { return mAdded.values(); }
    QList<EasCalendarItem> updated() const { return mUpdated.values(); }
    QStringList deleted() const { return mDeleted; }

private:
    typedef QMap<QString, EasCalendarItem> Items;

    /** What the mapping says of one event, or of one exception. */
    enum class State { New, Edited, Clean };

    bool readServerIds();
    State classify(const KCalendarCore::Incidence::Ptr &incidence) const;
    void evaluatePresent();
    void evaluateDeleted();
    void evaluateMoved();
    bool isDeletedAnywhere(const QString &uid) const;
    void takeDeleted(const QString &uid);
    void noteUpload(const QString &uid);
    bool isOlderPart(const KCalendarCore::Incidence::Ptr &incidence) const;
    void takeChanged(const KCalendarCore::Incidence::Ptr &incidence, bool isNew);
    bool fits(const QString &uid) const;
    void insertItem(const KCalendarCore::Event::Ptr &event, bool isNew);
    /** A stamp that is older than the series and all of its exceptions. */
    uint stampBefore(const QString &uid) const;
    bool makeItem(const KCalendarCore::Event::Ptr &event, bool withExceptions, EasCalendarItem &item);
    void applyAttachments(const KCalendarCore::Event::Ptr &event, EasCalendarItem &item);
    void processExceptionsChanges(const KCalendarCore::Incidence::List &exceptions, bool deleted);
    bool applyChangedException(const KCalendarCore::Event::Ptr &series,
        const KCalendarCore::Event::Ptr &exception, bool deleted, EasCalendarItem &item);
    void applyToSeries(const KCalendarCore::Event::Ptr &exception, bool deleted);
    void logCounts() const;

    const CalendarStoreContext &mContext;
    const CalendarTimestamps &mTimestamps;
    CalendarFreshUploads &mFreshUploads;
    const QString mServerFolderId;
    const QString mNotebookUid;
    UploadBudget *const mBudget;

    KCalendarCore::Incidence::List mDeletedIncidences;
    /** In every calendar of the device. */
    KCalendarCore::Incidence::List mDeletedAnywhere;
    /** Of the events that the server has in this folder, by their local identifiers. */
    QMap<QString, QString> mServerIds;
    Items mAdded;
    Items mUpdated;
    QStringList mDeleted;
    QStringList mDeletedUids;
    KCalendarCore::Incidence::List mAddedExceptions;
    KCalendarCore::Incidence::List mUpdatedExceptions;
    KCalendarCore::Incidence::List mDeletedExceptions;
    LocalQuery mAnswer = LocalQuery::Answered;
};
