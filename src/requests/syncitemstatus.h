// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** What the status of one uploaded item means: one table of statuses for each operation that differs. */
namespace SyncItemStatus {

enum class Operation {
    MailChange,
    MailDelete,
    CalendarAdd,
    CalendarChange,
    CalendarDelete,
    ContactAdd,
    ContactChange,
    ContactDelete
};

enum class Outcome {
    Acknowledged, ///< the server has the change
    Unacknowledged, ///< it goes out again
    Failed, ///< refused; reported by its local identifier
    Gone, ///< there is nothing to delete any more: reported as refused, and as good as done
    RetryCollection, ///< the collection must be sent once more
    StorageFull ///< the mailbox is full, nothing more can be done
};

/** Decides, and logs everything but success. */
Outcome outcome(
    Operation operation, uint status, const QString &serverId, const QString &localId = QString());

} // namespace SyncItemStatus
