// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <extendedstorageobserver.h>
#include <mkcalexport.h>

#include <KCalendarCore/MemoryCalendar>

#include <QSharedPointer>
#include <QTimeZone>

namespace mKCal {

/**
 * The part of the store that is in memory: what has been loaded from a storage and what has been added since.
 * A storage that was made for it gathers the changes until they are saved.
 */
class MKCAL_EXPORT ExtendedCalendar : public KCalendarCore::MemoryCalendar, public ExtendedStorageObserver
{
    Q_OBJECT

public:
    typedef QSharedPointer<ExtendedCalendar> Ptr;

    explicit ExtendedCalendar(const QTimeZone &timeZone);
    explicit ExtendedCalendar(const QByteArray &timeZoneId);
    ~ExtendedCalendar() override;

    /**
     * A storage, not yet open, on the file that SQLITESTORAGEDB names, or on the user's calendar without that
     * variable.
     */
    static QSharedPointer<ExtendedStorage> defaultStorage(const ExtendedCalendar::Ptr &calendar);

    /** Into the default notebook. */
    bool addEvent(const KCalendarCore::Event::Ptr &event) override;
    /**
     * False if the calendar holds an event of this uid and recurrence id. A notebook that the storage does
     * not know is accepted, but the event will not be saved.
     */
    bool addEvent(const KCalendarCore::Event::Ptr &event, const QString &notebookUid);
    using KCalendarCore::MemoryCalendar::addIncidence;
    bool addIncidence(const KCalendarCore::Incidence::Ptr &incidence, const QString &notebookUid);
    /** The exceptions of a series that are loaded go with it. */
    bool deleteEvent(const KCalendarCore::Event::Ptr &event) override;
    bool deleteIncidence(const KCalendarCore::Incidence::Ptr &incidence) override;

    /**
     * A copy of the series for the occurrence at a moment, to be added by the caller; null if there is no
     * such occurrence or an exception already stands for it. The zone tells what day a moment belongs to in
     * an all-day series.
     */
    KCalendarCore::Incidence::Ptr dissociateSingleOccurrence(const KCalendarCore::Incidence::Ptr &incidence,
        const QDateTime &dateTime, const QTimeZone &timeZone = QTimeZone());

    /** Empties the memory, not the store. Changes that were not saved are lost. */
    void close() override;

    void storageModified(ExtendedStorage *storage, const QString &info) override;
    void storageProgress(ExtendedStorage *storage, const QString &info) override;
    void storageFinished(ExtendedStorage *storage, bool error, const QString &info) override;

Q_SIGNALS:
    void aboutToClose();
};

} // namespace mKCal
