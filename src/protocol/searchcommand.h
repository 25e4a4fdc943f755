// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/searchoptions.h"
#include "protocol/elements/searchquery.h"
#include "protocol/serversearchcommand.h"

/** One Search of the mailbox or of the global address list. Set it up, then start() it. */
class SearchCommand : public ServerSearchCommand
{
    Q_OBJECT

public:
    explicit SearchCommand(EasAccountId accountId, QObject *parent = nullptr, Type type = Mailbox,
        const SearchQuery &query = {}, const SearchOptions &options = {});

    Type type() const { return mType; }
    void setType(Type type) { mType = type; }
    SearchQuery query() const { return mQuery; }
    void setQuery(const SearchQuery &query) { mQuery = query; }
    SearchOptions options() const { return mOptions; }
    void setOptions(const SearchOptions &options) { mOptions = options; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    Type mType;
    SearchQuery mQuery;
    SearchOptions mOptions;
};
