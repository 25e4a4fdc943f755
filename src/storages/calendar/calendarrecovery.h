// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/calendar/calendartimestamps.h"

#include <KCalendarCore/Event>

#include <QMap>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>

struct CalendarStoreContext;

// The formatter would break the table.
// clang-format off
/**
 * Tells what the device has of an item that a server names, whatever an interrupted run has left behind, by
 * the mapping, the calendar and the marks that events bear of their origin (CalendarOrigin):
 *
 *     row   event                         the user         state
 *     no    not in its folder             -                Unknown
 *     no    in its folder, that origin    -                a stray: each search removes it
 *     yes   in its folder                 has not touched  Stored
 *     yes   in its folder                 has edited       Edited
 *     yes   not there                     has deleted      Deleted
 *     yes   in another calendar           has moved        Moved
 *     yes   not there                     -                Purged
 *
 * A run that ends between the calendar and the mapping leaves strays, and answers come again: what is stored
 * is then written once more, what was purged is made anew, and what the user changed since is left alone.
 * Made for one reply; main thread only.
 */
// clang-format on
class CalendarRecovery
{
public:
    enum class State { Unknown, Stored, Edited, Deleted, Moved, Purged };

    explicit CalendarRecovery(const CalendarStoreContext &context);

    /** Reads the rows of these server identifiers; false if they cannot be read. */
    bool readMapping(const QStringList &serverIds);
    /** Loads a notebook, and what the user has deleted, be it after a move from another one; false, logged,
     * if the store fails. */
    bool load(const QString &notebookUid, const QString &collectionId);

    /** Server to local identifiers of what was read. */
    const QMap<QString, QString> &mapping() const { return mMapping; }
    /** The notebook has to be loaded. Nothing if the store or the mapping does not answer. */
    std::optional<State> stateOf(const QString &serverId, const QString &notebookUid);
    /** What the user has deleted of an event, and the server does not know of yet. */
    KCalendarCore::Incidence::List deletedParts(const QString &localId) const;

    /** Reads a notebook afresh and erases strays from it; the server sends them again. */
    static LocalQuery removeStrays(const CalendarStoreContext &context, const QString &notebookUid);

private:
    bool isDeleted(const QString &localId) const;
    /** Of an event that is in its folder. */
    std::optional<State> editState(const QString &localId, const QString &notebookUid);
    static LocalQuery erase(const CalendarStoreContext &context, const KCalendarCore::Event::List &strays);

    const CalendarStoreContext &mContext;
    QMap<QString, QString> mMapping;
    KCalendarCore::Incidence::List mDeletedBefore;
    /** By notebook, as the store was before the reply. */
    std::map<QString, CalendarTimestamps> mTimestamps;
};
