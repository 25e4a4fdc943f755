// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <extendedstorageobserver.h>

/**
 * An observer of the device's calendar store that does not care for progress. Base of who listens to the
 * store; it has to unregister before it goes.
 */
class CalendarStoreObserver : public mKCal::ExtendedStorageObserver
{
public:
    // Later revisions of the store's library do not have it, so that it can override nothing there.
    // NOLINTNEXTLINE(modernize-use-override)
    void storageProgress(mKCal::ExtendedStorage *, const QString &) {}
};
