// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/searchoptions.h"
#include "protocol/elements/searchquery.h"
#include "requests/serversearchrequest.h"

/** Looks for mail in the server's mailbox. Queued and owned by the RequestManager. Main thread only. */
class SearchRequest : public ServerSearchRequest
{
    Q_OBJECT

public:
    SearchRequest(EasAccountId accountId, quint64 requestId, const SearchQuery &query = {},
        const SearchOptions &options = {}, QObject *parent = nullptr);

    SearchQuery query() const { return mQuery; }
    void setQuery(const SearchQuery &query) { mQuery = query; }
    SearchOptions options() const { return mOptions; }
    void setOptions(const SearchOptions &options) { mOptions = options; }

protected:
    QString commandName() const override;
    ServerSearchCommand *createCommand() override;
    bool looksForPeople() const override { return false; }
    const RequestStatusTable &statuses() const override;
    const SearchStatusTable::Row *storeRow(int storeStatus) const override;
    const char *failureText() const override;

private:
    SearchQuery mQuery;
    SearchOptions mOptions;
};
