// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/searchoptions.h"
#include "requests/serversearchrequest.h"

/** Looks for people in the global address list, with their pictures if the options ask for them. Queued and
 * owned by the RequestManager. Main thread only. */
class GalSearchRequest : public ServerSearchRequest
{
    Q_OBJECT

public:
    GalSearchRequest(EasAccountId accountId, quint64 requestId, const QString &queryString = {},
        QObject *parent = nullptr);

    /** Parts of names or addresses. */
    QString queryString() const { return mQueryString; }
    void setQueryString(const QString &text) { mQueryString = text; }
    SearchOptions options() const { return mOptions; }
    void setOptions(const SearchOptions &options) { mOptions = options; }

protected:
    void onCommandFinished(bool success) override;
    QString commandName() const override;
    ServerSearchCommand *createCommand() override;
    bool looksForPeople() const override { return true; }
    const RequestStatusTable &statuses() const override;
    const SearchStatusTable::Row *storeRow(int storeStatus) const override;
    const char *failureText() const override;

private:
    QString mQueryString;
    SearchOptions mOptions;
};
