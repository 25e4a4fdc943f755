// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <mkcalexport.h>

#include <QString>

namespace mKCal {

class ExtendedStorage;

/** Hears from a storage that it is registered with; it has to unregister before it goes. */
class MKCAL_EXPORT ExtendedStorageObserver
{
public:
    virtual ~ExtendedStorageObserver() {}

    /**
     * Something in the store has changed, by this process or another. Comes through the event loop; by then
     * the storage has read its notebooks anew and the calendar is empty.
     */
    virtual void storageModified(ExtendedStorage *storage, const QString &info) = 0;
    virtual void storageProgress(ExtendedStorage *storage, const QString &info) = 0;
    /** Before a load, a save or a query returns. */
    virtual void storageFinished(ExtendedStorage *storage, bool error, const QString &info) = 0;
};

} // namespace mKCal
