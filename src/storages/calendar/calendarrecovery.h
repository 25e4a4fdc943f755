// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/calendar/calendartimestamps.h"

#include <KCalendarCore/Incidence>

#include <QMap>
#include <QString>

#include <map>

struct CalendarStoreContext;

/**
 * Tells what the device has of an item that a server names, whatever an interrupted run has left behind, by
 * the mapping, the calendar and the marks that events bear of their origin (CalendarOrigin):
 *
 *     row in the mapping   event in its folder        the user                 state
 *     no                   no                         -                        Unknown
 *     no                   yes, with that origin      -                        a stray: removed at each
 * search yes                  yes                        has not touched it       Stored yes yes has edited
 * it            Edited yes                  no                         has deleted it           Deleted yes
 * no, in another calendar    has moved it             Moved yes                  no                         -
 * Purged
 *
 * A run that ends between the calendar and the mapping leaves strays, and answers come again: what is stored
 * is then written once more, what was purged is made anew, and what the user changed since is left alone.
 * Made for one reply; main thread only.
 */
class CalendarRecovery
{
public:
    enum class State { Unknown, Stored, Edited, Deleted, Moved, Purged };

    explicit CalendarRecovery(const CalendarStoreContext &context);

    /** Reads the mapping; false if it cannot be read. */
    bool readMapping();
    /** Loads a notebook, and what the user has deleted, be it after a move from another one; false, logged,
     * if the store fails. */
    bool load(const QString &notebookUid, const QString &collectionId);

    /** Server to local identifiers. */
    const QMap<QString, QString> &mapping() const { return mMapping; }
    /** The notebook has to be loaded. */
    State stateOf(const QString &serverId, const QString &notebookUid);
    /** What the user has deleted of an event, and the server does not know of yet. */
    KCalendarCore::Incidence::List deletedParts(const QString &localId) const;

    /** Reads a notebook afresh and erases strays from it; the server sends them again. */
    static bool removeStrays(const CalendarStoreContext &context, const QString &notebookUid);

private:
    bool isDeleted(const QString &localId) const;
    bool isEdited(const QString &localId, const QString &notebookUid);

    const CalendarStoreContext &mContext;
    QMap<QString, QString> mMapping;
    KCalendarCore::Incidence::List mDeletedBefore;
    /** By notebook, as the store was before the reply. */
    std::map<QString, CalendarTimestamps> mTimestamps;
};
