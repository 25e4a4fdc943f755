// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/findcommand.h"
#include "requests/serversearchrequest.h"

/**
 * Looks for mail or people with Find, from protocol 16.1 on; with an older one it ends as not supported.
 * Queued and owned by the RequestManager. Main thread only.
 */
class FindRequest : public ServerSearchRequest
{
    Q_OBJECT

public:
    FindRequest(EasAccountId accountId, quint64 requestId, QObject *parent = nullptr);

    /** Tells this search from others; a fresh one at first, and the same for each repetition. */
    QString searchId() const { return mSearchId; }
    void setSearchId(const QString &searchId) { mSearchId = searchId; }
    FindCommand::Query query() const { return mQuery; }
    void setQuery(const FindCommand::Query &query) { mQuery = query; }
    FindCommand::Options options() const { return mOptions; }
    void setOptions(const FindCommand::Options &options) { mOptions = options; }

protected:
    void cancelRequest() override;
    bool isCommandSupported() override;
    QString commandName() const override;
    ServerSearchCommand *createCommand() override;
    bool looksForPeople() const override;
    const RequestStatusTable &statuses() const override;
    const SearchStatusTable::Row *storeRow(int storeStatus) const override;
    bool isOfStore(int status) const override;
    void logUnhandledStoreStatus(int storeStatus) const override;
    const char *failureText() const override;

private:
    QString mSearchId;
    FindCommand::Query mQuery;
    FindCommand::Options mOptions;
};
