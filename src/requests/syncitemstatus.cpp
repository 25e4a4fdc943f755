// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncitemstatus.h"

#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "requests/statustable.h"

namespace SyncItemStatus {
namespace {

using Statuses = StatusTable<Outcome>;

constexpr char ProtocolErrorText[] = "protocol error for item %1";
constexpr char ConversionErrorText[] = "server-client conversation error for item: %1";
constexpr char ConflictText[] = "client-server conflict. Server wins for item: %1";
constexpr char ContactConflictText[] = "client-server conflict. Server wins";
constexpr char NotFoundText[] = "object not found error for item: %1";
constexpr char CannotCompleteText[] = "sync command can't be completed for item: %1";
constexpr char NotCompleteText[] = "Sync command request is not complete for item: %1";

constexpr Statuses::Row mailChangeRows[] = {
    { Eas::SyncStatusProtocolError, QtWarningMsg, ProtocolErrorText, Outcome::Unacknowledged },
    { Eas::SyncStatusClientServerError, QtWarningMsg, ConversionErrorText, Outcome::Unacknowledged },
    { Eas::SyncStatusClientServerMatching, QtWarningMsg, ConflictText, Outcome::Unacknowledged },
    { Eas::SyncStatusObjectNotFound, QtWarningMsg, NotFoundText, Outcome::Unacknowledged },
    { Eas::SyncStatusCannotComplete, QtWarningMsg, CannotCompleteText, Outcome::StorageFull },
    { Eas::SyncStatusRequestNotComplete, QtWarningMsg, NotCompleteText, Outcome::RetryCollection },
};

constexpr Statuses::Row mailDeleteRows[] = {
    { Eas::SyncStatusProtocolError, QtWarningMsg, ProtocolErrorText, Outcome::Unacknowledged },
    { Eas::SyncStatusClientServerError, QtWarningMsg, ConversionErrorText, Outcome::Acknowledged },
    { Eas::SyncStatusClientServerMatching, QtWarningMsg, ConflictText, Outcome::Unacknowledged },
    { Eas::SyncStatusObjectNotFound, QtWarningMsg, NotFoundText, Outcome::Acknowledged },
    { Eas::SyncStatusCannotComplete, QtWarningMsg, CannotCompleteText, Outcome::StorageFull },
    { Eas::SyncStatusRequestNotComplete, QtWarningMsg, NotCompleteText, Outcome::RetryCollection },
};

// Of events and contacts; what a failure is called in the log goes by the operation.

constexpr Statuses::Row changeRows[] = {
    { Eas::SyncStatusProtocolError, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusClientServerError, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusClientServerMatching, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusObjectNotFound, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusCannotComplete, QtWarningMsg, CannotCompleteText, Outcome::StorageFull },
    { Eas::SyncStatusRequestNotComplete, QtWarningMsg, nullptr, Outcome::Failed },
};

constexpr Statuses::Row deleteRows[] = {
    { Eas::SyncStatusProtocolError, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusClientServerError, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusClientServerMatching, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusObjectNotFound, QtWarningMsg, nullptr, Outcome::Gone },
    { Eas::SyncStatusCannotComplete, QtWarningMsg, CannotCompleteText, Outcome::StorageFull },
    { Eas::SyncStatusRequestNotComplete, QtWarningMsg, nullptr, Outcome::Failed },
};

constexpr Statuses::Row contactAddRows[] = {
    { Eas::SyncStatusProtocolError, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusClientServerError, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusObjectNotFound, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusCannotComplete, QtWarningMsg, CannotCompleteText, Outcome::StorageFull },
    { Eas::SyncStatusRequestNotComplete, QtWarningMsg, nullptr, Outcome::Failed },
};

constexpr Statuses::Row contactChangeRows[] = {
    { Eas::SyncStatusProtocolError, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusClientServerError, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusClientServerMatching, QtWarningMsg, ContactConflictText, Outcome::Acknowledged },
    { Eas::SyncStatusObjectNotFound, QtWarningMsg, nullptr, Outcome::Failed },
    { Eas::SyncStatusCannotComplete, QtWarningMsg, CannotCompleteText, Outcome::StorageFull },
    { Eas::SyncStatusRequestNotComplete, QtWarningMsg, nullptr, Outcome::Failed },
};

struct OperationRow
{
    Operation operation;
    Statuses statuses;
    /** Null for mail, whose statuses have texts of their own. */
    const char *failure;
    const char *unhandled;
};

constexpr char UnhandledMailText[] = "unhandled item status";
constexpr char UnhandledText[] = "Unhandled item status";

constexpr OperationRow operations[] = {
    { Operation::MailChange, Statuses(mailChangeRows), nullptr, UnhandledMailText },
    { Operation::MailDelete, Statuses(mailDeleteRows), nullptr, UnhandledMailText },
    { Operation::CalendarAdd, Statuses(changeRows), "Adding calendar item failed, status:", UnhandledText },
    { Operation::CalendarChange, Statuses(changeRows),
        "Updating calendar item failed, status:", UnhandledText },
    { Operation::CalendarDelete, Statuses(deleteRows),
        "Deleting calendar item failed, status:", UnhandledText },
    { Operation::ContactAdd, Statuses(contactAddRows), "Adding contact item failed, status:", UnhandledText },
    { Operation::ContactChange, Statuses(contactChangeRows),
        "Updating contact item failed, status:", UnhandledText },
    { Operation::ContactDelete, Statuses(deleteRows),
        "Deleting contact item failed, status:", UnhandledText },
};

constexpr bool namesEachStatusOnce()
{
    for (const OperationRow &row : operations) {
        if (!row.statuses.namesEachStatusOnce())
            return false;
    }
    return true;
}
static_assert(namesEachStatusOnce());

constexpr bool standInTheirOrder()
{
    int number = 0;
    for (const OperationRow &row : operations) {
        if (int(row.operation) != number++)
            return false;
    }
    return true;
}
static_assert(standInTheirOrder(), "an operation is found by its number");

} // namespace

Outcome outcome(Operation operation, uint status, const QString &serverId, const QString &localId)
{
    if (status == Eas::SyncStatusUndefined || status == Eas::SyncStatusSuccess)
        return Outcome::Acknowledged;
    const OperationRow &kind = operations[int(operation)];
    const Statuses::Row *row = kind.statuses.find(int(status));
    if (!row) {
        qCWarning(eas()) << kind.unhandled << status << "for item" << serverId;
        return Outcome::Unacknowledged;
    }
    logStatusText(row->level, row->text, serverId);
    if (row->verb == Outcome::Failed || row->verb == Outcome::Gone)
        qCWarning(eas()) << kind.failure << status << ", server ID:" << serverId << ", local ID:" << localId;
    return row->verb;
}

} // namespace SyncItemStatus
