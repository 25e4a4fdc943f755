// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/galsearchrequest.h"

#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"
#include "protocol/searchcommand.h"
#include "requests/searchstatuses.h"

GalSearchRequest::GalSearchRequest(
    EasAccountId accountId, quint64 requestId, const QString &queryString, QObject *parent)
    : ServerSearchRequest(accountId, requestId, parent)
    , mQueryString(queryString)
{
}

QString GalSearchRequest::commandName() const
{
    return ProtocolUtils::CommandSearch;
}

ServerSearchCommand *GalSearchRequest::createCommand()
{
    SearchQuery query;
    query.setGalQuery(mQueryString);
    return newCommand<SearchCommand>(SearchCommand::AddressList, query, mOptions);
}

void GalSearchRequest::onCommandFinished(bool success)
{
    qCInfo(eas()) << "Command completed success:" << success;
    if (!currentCommand())
        qCCritical(eas()) << "Search command is null";
    ServerSearchRequest::onCommandFinished(success);
}

const RequestStatusTable &GalSearchRequest::statuses() const
{
    return SearchStatuses::ofSearch;
}

const SearchStatusTable::Row *GalSearchRequest::storeRow(int storeStatus) const
{
    return SearchStatuses::ofAddressList(storeStatus);
}

const char *GalSearchRequest::failureText() const
{
    return "Search command failed with status";
}
