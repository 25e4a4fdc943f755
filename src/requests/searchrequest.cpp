// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/searchrequest.h"

#include "protocol/base/protocolutils.h"
#include "protocol/searchcommand.h"
#include "requests/searchstatuses.h"

SearchRequest::SearchRequest(EasAccountId accountId, quint64 requestId, const SearchQuery &query,
    const SearchOptions &options, QObject *parent)
    : ServerSearchRequest(accountId, requestId, parent)
    , mQuery(query)
    , mOptions(options)
{
}

QString SearchRequest::commandName() const
{
    return ProtocolUtils::CommandSearch;
}

ServerSearchCommand *SearchRequest::createCommand()
{
    return newCommand<SearchCommand>(SearchCommand::Mailbox, mQuery, mOptions);
}

const RequestStatusTable &SearchRequest::statuses() const
{
    return SearchStatuses::ofSearch;
}

const SearchStatusTable::Row *SearchRequest::storeRow(int storeStatus) const
{
    return SearchStatuses::ofMailbox(storeStatus);
}

const char *SearchRequest::failureText() const
{
    return "Search command failed with status";
}
