// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QHash>
#include <QSet>
#include <QString>

class EasCalendarItem;
class EasContactsItem;
class EasEmailItem;

/**
 * What still fits into one Sync of the local changes that wait for the server.
 *
 * Servers refuse requests that are too long, and the device has to hold them as a whole. A store asks for
 * each change before it reads it, and leaves out what does not fit: it goes up with the next Sync of the same
 * request, which is told what has gone before. A value for one Sync. Main thread only.
 */
class UploadBudget
{
public:
    static constexpr int MostChanges = 100;
    /** Of texts, pictures and files; a single change may be longer. */
    static constexpr qint64 MostBytes = 4 * 1024 * 1024;

    /** Turns to another folder, of which these changes have gone up already. */
    void beginFolder(const QSet<QString> &sent);

    /**
     * Whether a change, named by what names it in its store, goes into this Sync. All changes of one item go
     * together.
     */
    bool take(const QString &id);
    /** The name of a deletion, whose item is not in the store any more. */
    static QString deletion(const QString &serverId) { return QLatin1Char('-') + serverId; }
    /** Notes how long a change is that was taken, about; the last word about it counts. */
    void note(const EasEmailItem &item);
    void note(const EasContactsItem &item);
    void note(const EasCalendarItem &item);

    bool isSpent() const { return mChanges >= MostChanges || mBytes >= MostBytes; }
    /** Whether a change of the folder did not fit. */
    bool hasLeftOut() const { return mHasLeftOut; }
    /** The folder's changes that go into this Sync. */
    QSet<QString> taken() const { return mTaken; }

private:
    void setBytes(const QString &id, qint64 bytes);

    QSet<QString> mSent;
    QSet<QString> mTaken;
    QHash<QString, qint64> mBytesTaken;
    int mChanges = 0;
    qint64 mBytes = 0;
    bool mHasLeftOut = false;
};
