// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/findrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "requests/searchstatuses.h"

#include <QUuid>

FindRequest::FindRequest(EasAccountId accountId, quint64 requestId, QObject *parent)
    : ServerSearchRequest(accountId, requestId, parent)
    , mSearchId(QUuid::createUuid().toString(QUuid::WithoutBraces))
{
}

QString FindRequest::commandName() const
{
    return ProtocolUtils::CommandFind;
}

void FindRequest::cancelRequest()
{
    qCInfo(eas()) << "Cancel Search request";
    ServerSearchRequest::cancelRequest();
}

bool FindRequest::isCommandSupported()
{
    // Servers name all their commands, whichever version the account goes by.
    const EasAccount *const easAccount = account();
    if (!easAccount || easAccount->protocolVersion() >= ExchangeActiveSync::ProtocolVersion161)
        return ServerSearchRequest::isCommandSupported();
    qCWarning(eas()) << "Command not supported:" << commandName();
    completeWith(RequestStatusCommandNotSupported);
    return false;
}

ServerSearchCommand *FindRequest::createCommand()
{
    return newCommand<FindCommand>(mSearchId, mQuery, mOptions);
}

bool FindRequest::looksForPeople() const
{
    return mQuery.kind == FindCommand::AddressList;
}

const RequestStatusTable &FindRequest::statuses() const
{
    return SearchStatuses::ofFind;
}

const SearchStatusTable::Row *FindRequest::storeRow(int storeStatus) const
{
    return SearchStatuses::ofFoundStore(storeStatus);
}

bool FindRequest::isOfStore(int status) const
{
    // A refused request and stale folders are told in the place of the command's status.
    return status > Eas::SearchStatusSuccess && SearchStatuses::ofFoundStore(status);
}

void FindRequest::logUnhandledStoreStatus(int) const
{
    qCCritical(eas()) << "Invalid request.";
}

const char *FindRequest::failureText() const
{
    return "Find command failed with status";
}
