// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncitemstatus.h"

#include "application/base/logging.h"
#include "protocol/base/eas.h"

#include <algorithm>
#include <iterator>

namespace SyncItemStatus {
namespace {

enum class Family { Mail, Calendar, Contact };

struct OperationName
{
    Operation operation;
    Family family;
    const char *failure;
};

constexpr OperationName operationNames[] = {
    { Operation::MailChange, Family::Mail, nullptr },
    { Operation::MailDelete, Family::Mail, nullptr },
    { Operation::CalendarAdd, Family::Calendar, "Adding calendar item failed, status:" },
    { Operation::CalendarChange, Family::Calendar, "Updating calendar item failed, status:" },
    { Operation::CalendarDelete, Family::Calendar, "Deleting calendar item failed, status:" },
    { Operation::ContactAdd, Family::Contact, "Adding contact item failed, status:" },
    { Operation::ContactChange, Family::Contact, "Updating contact item failed, status:" },
    { Operation::ContactDelete, Family::Contact, "Deleting contact item failed, status:" },
};

constexpr char ProtocolErrorText[] = "protocol error for item";
constexpr char ConversionErrorText[] = "server-client conversation error for item:";
constexpr char ConflictText[] = "client-server conflict. Server wins for item:";
constexpr char ContactConflictText[] = "client-server conflict. Server wins";
constexpr char NotFoundText[] = "object not found error for item:";
constexpr char CannotCompleteText[] = "sync command can't be completed for item:";
constexpr char NotCompleteText[] = "Sync command request is not complete for item:";

struct MailRow
{
    uint status;
    const char *text;
    Outcome change;
    Outcome remove;
};

constexpr MailRow mailRows[] = {
    { Eas::SyncStatusProtocolError, ProtocolErrorText, Outcome::Unacknowledged, Outcome::Unacknowledged },
    { Eas::SyncStatusClientServerError, ConversionErrorText, Outcome::Unacknowledged, Outcome::Acknowledged },
    { Eas::SyncStatusClientServerMatching, ConflictText, Outcome::Unacknowledged, Outcome::Unacknowledged },
    { Eas::SyncStatusObjectNotFound, NotFoundText, Outcome::Unacknowledged, Outcome::Acknowledged },
    { Eas::SyncStatusCannotComplete, CannotCompleteText, Outcome::StorageFull, Outcome::StorageFull },
    { Eas::SyncStatusRequestNotComplete, NotCompleteText, Outcome::RetryCollection,
        Outcome::RetryCollection },
};

constexpr uint failingStatuses[] = { Eas::SyncStatusProtocolError, Eas::SyncStatusClientServerError,
    Eas::SyncStatusClientServerMatching, Eas::SyncStatusObjectNotFound, Eas::SyncStatusRequestNotComplete };

Outcome mailOutcome(Operation operation, uint status, const QString &serverId)
{
    for (const MailRow &row : mailRows) {
        if (row.status == status) {
            qCWarning(eas()) << row.text << serverId;
            return operation == Operation::MailChange ? row.change : row.remove;
        }
    }
    qCWarning(eas()) << "unhandled item status" << status;
    return Outcome::Unacknowledged;
}

Outcome itemOutcome(const OperationName &name, uint status, const QString &serverId, const QString &localId)
{
    const bool conflict = status == Eas::SyncStatusClientServerMatching;
    if (conflict && name.operation == Operation::ContactChange) {
        qCWarning(eas()) << ContactConflictText;
        return Outcome::Acknowledged;
    }
    if (status == Eas::SyncStatusCannotComplete) {
        qCWarning(eas()) << CannotCompleteText << serverId;
        return Outcome::StorageFull;
    }
    const bool unhandledConflict = conflict && name.operation == Operation::ContactAdd;
    const bool fails = std::find(std::begin(failingStatuses), std::end(failingStatuses), status)
        != std::end(failingStatuses);
    if (fails && !unhandledConflict) {
        qCWarning(eas()) << name.failure << status << ", server ID:" << serverId << ", local ID:" << localId;
        return Outcome::Failed;
    }
    qCWarning(eas()) << "Unhandled item status" << status << "for item" << serverId;
    return Outcome::Unacknowledged;
}

} // namespace

Outcome outcome(Operation operation, uint status, const QString &serverId, const QString &localId)
{
    if (status == Eas::SyncStatusUndefined || status == Eas::SyncStatusSuccess)
        return Outcome::Acknowledged;
    const auto name = std::find_if(std::begin(operationNames), std::end(operationNames),
        [operation](const OperationName &row) { return row.operation == operation; });
    return name->family == Family::Mail ? mailOutcome(operation, status, serverId)
                                        : itemOutcome(*name, status, serverId, localId);
}

} // namespace SyncItemStatus
