// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/searchcommand.h"

#include "application/account/easaccount.h"
#include "easitems/algorithms/searchresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

namespace {

const QLatin1String storageAddressList("GAL");

} // namespace

SearchCommand::SearchCommand(EasAccountId accountId, QObject *parent, Type type, const SearchQuery &query,
    const SearchOptions &options)
    : ServerSearchCommand(accountId, parent)
    , mType(type)
    , mQuery(query)
    , mOptions(options)
{
}

QString SearchCommand::commandName() const
{
    return ProtocolUtils::CommandSearch;
}

BaseProtocolCommand::ExchangeTexts SearchCommand::texts() const
{
    return { "Sending search command via POST:", "Received search command reply:", nullptr };
}

bool SearchCommand::encodeBody(EasAccount &account, QByteArray *body)
{
    WbxmlEncoder encoder;
    encoder.appendElement(Search::Search, true);
    encoder.appendElement(Search::Store, true);
    encoder.appendTextElement(
        Search::Name, mType == AddressList ? storageAddressList : ProtocolUtils::StorageMailbox);
    mQuery.encode(encoder);
    mOptions.encode(encoder, account.protocolVersion());
    *body = encoder.encoded();
    return true;
}

bool SearchCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    SearchResponseParser parser;
    const QString title = QStringLiteral("Result of Search request (free text: %1 query text: %2 ):");
    return readReply(parser, body, mOptions.lowIndexRange(), mOptions.highIndexRange(),
        title.arg(mQuery.freeText(), mQuery.galQuery()));
}
