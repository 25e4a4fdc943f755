// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/smartmailcommand.h"

#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

#include <QRegularExpression>
#include <QUrl>
#include <QUrlQuery>

using namespace Wbxml;

namespace {

void appendGiven(WbxmlEncoder &encoder, Token tag, const QString &text)
{
    if (!text.isEmpty())
        encoder.appendTextElement(tag, text);
}

void addGiven(QUrlQuery &query, const QString &name, const QString &value)
{
    if (value.isEmpty())
        return;
    // The one server that is known to have percent signs in its identifiers hands them out as they stand in a
    // URL, and does not find one that is encoded once more.
    static const QRegularExpression encodedTwice(QStringLiteral("%25(?=[0-9A-Fa-f]{2})"));
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(value));
    query.addQueryItem(name, QString(encoded).replace(encodedTwice, QStringLiteral("%")));
}

} // namespace

SmartMailCommand::SmartMailCommand(EasAccountId accountId, QObject *parent, quint64 messageId,
    const QByteArray &mime, bool saveInSent, bool replaceMime)
    : ComposeMailCommand(accountId, parent, messageId, saveInSent)
    , mMime(mime)
    , mReplaceMime(replaceMime)
{
}

void SmartMailCommand::setSource(
    const QString &collectionId, const QString &itemId, const QDateTime &instanceId)
{
    mCollectionId = collectionId;
    mItemId = itemId;
    mInstanceId = instanceId;
}

QByteArray SmartMailCommand::mime(EasAccount &) const
{
    if (mMime.isEmpty())
        qCWarning(eas()) << "No MIME";
    return mMime;
}

void SmartMailCommand::encodeOptions(WbxmlEncoder &encoder) const
{
    if (mReplaceMime)
        encoder.appendElement(ComposeMail::ReplaceMime);
    encoder.appendElement(ComposeMail::Source, true);
    appendGiven(encoder, ComposeMail::FolderId, mCollectionId);
    appendGiven(encoder, ComposeMail::ItemId, mItemId);
    if (mInstanceId.isValid())
        encoder.appendTextElement(ComposeMail::InstanceId, mInstanceId.toString(Qt::ISODate));
    appendGiven(encoder, ComposeMail::LongId, mLongId);
    encoder.setCurrentNodeToParent();
}

void SmartMailCommand::configureCommandSpecificQueryValues(QUrlQuery &query)
{
    ComposeMailCommand::configureCommandSpecificQueryValues(query);
    if (usesWbxml())
        return;
    addGiven(query, ProtocolUtils::QueryCollectionId, mCollectionId);
    addGiven(query, ProtocolUtils::QueryItemId, mItemId);
    addGiven(query, ProtocolUtils::QueryLongId, mLongId);
}
