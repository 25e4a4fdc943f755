// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/findcommand.h"

#include "application/base/logging.h"
#include "easitems/algorithms/findresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

QString FindCommand::Options::getRange() const
{
    if (lowRange < 0 && highRange < 0)
        return QString();
    if (lowRange >= 0 && lowRange <= highRange)
        return QStringLiteral("%1-%2").arg(lowRange).arg(highRange);
    qCWarning(eas()) << "Invalid requested range: " << lowRange << "-" << highRange;
    return QString();
}

FindCommand::FindCommand(EasAccountId accountId, QObject *parent, const QString &searchId, const Query &query,
    const Options &options)
    : ServerSearchCommand(accountId, parent)
    , mSearchId(searchId)
    , mQuery(query)
    , mOptions(options)
{
}

QString FindCommand::commandName() const
{
    return ProtocolUtils::CommandFind;
}

BaseProtocolCommand::ExchangeTexts FindCommand::texts() const
{
    return { "Sending find command via POST:", "Received find command reply:", nullptr };
}

bool FindCommand::encodeBody(EasAccount &, QByteArray *body)
{
    WbxmlEncoder encoder;
    encoder.appendElement(Find::Find, true);
    encoder.appendTextElement(Find::SearchId, mSearchId);
    encoder.appendElement(Find::ExecuteSearch, true);
    encodeCriterion(encoder);
    *body = encoder.encoded();
    return true;
}

void FindCommand::encodeCriterion(WbxmlEncoder &encoder) const
{
    if (mQuery.kind == AddressList) {
        encoder.appendElement(Find::GalSearchCriterion, true);
        encoder.appendTextElement(Find::Query, mQuery.freeText);
    } else {
        encoder.appendElement(Find::MailBoxSearchCriterion, true);
        encoder.appendElement(Find::Query, true);
        if (!mQuery.freeText.isEmpty())
            encoder.appendTextElement(Find::FreeText, mQuery.freeText);
        encoder.appendTextElement(AirSync::Class, mQuery.itemClass);
        if (!mQuery.collectionId.isEmpty())
            encoder.appendTextElement(AirSync::CollectionId, mQuery.collectionId);
        encoder.setCurrentNodeToParent();
    }
    encodeOptions(encoder);
    encoder.setCurrentNodeToParent();
}

void FindCommand::encodeOptions(WbxmlEncoder &encoder) const
{
    encoder.appendElement(Find::Options, true);
    const QString range = mOptions.getRange();
    if (!range.isEmpty())
        encoder.appendTextElement(Find::Range, range);
    if (mQuery.kind == Mailbox && mOptions.deepTraversal)
        encoder.appendElement(Find::DeepTraversal);
    if (mOptions.maxSize >= 0 || mOptions.maxPictures >= 0) {
        encoder.appendElement(Find::Picture, true);
        if (mOptions.maxSize >= 0)
            encoder.appendIntElement(Find::MaxSize, uint(mOptions.maxSize));
        if (mOptions.maxPictures >= 0)
            encoder.appendIntElement(Find::MaxPictures, uint(mOptions.maxPictures));
        encoder.setCurrentNodeToParent();
    }
    encoder.setCurrentNodeToParent();
}

bool FindCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    FindResponseParser parser;
    return readReply(parser, body, mOptions.lowRange, mOptions.highRange,
        QStringLiteral("Result of Find request (query string: %1 ):").arg(mQuery.freeText));
}
