// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/fetchitemcommand.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/algorithms/itemoperationsresponseparser.h"
#include "easitems/emailserverid.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/multipartreply.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "storages/mailstorage.h"

#include <QDebug>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>

using namespace Wbxml;

namespace {

// What the first byte of each document says; a reply in parts begins with their number, which is even.
constexpr char WbxmlVersion13 = 3;

/** Of a Content-Type without its parameters. */
QString mediaType(const QNetworkReply *reply)
{
    const QString contentType = reply->header(QNetworkRequest::ContentTypeHeader).toString();
    return contentType.section(QLatin1Char(';'), 0, 0).trimmed().toLower();
}

} // namespace

FetchItemCommand::FetchItemCommand(EasAccountId accountId, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
{
}

void FetchItemCommand::setRange(int rangeStart, int rangeEnd)
{
    mRangeStart = rangeStart;
    mRangeEnd = rangeEnd;
}

QString FetchItemCommand::rangeString() const
{
    if (mRangeStart < 0 || mRangeStart > mRangeEnd) {
        return {};
    }
    return QStringLiteral("%1-%2").arg(mRangeStart).arg(mRangeEnd);
}

void FetchItemCommand::setLocalIds(const QList<quint64> &localIds)
{
    mLocalIds = localIds;
    mLocalIdsByLongId.clear();
    EasAccount *const commandAccount = account();
    const QSharedPointer<MailStorage> storage =
        commandAccount ? commandAccount->mailStorage() : QSharedPointer<MailStorage>();
    if (!storage) {
        return;
    }
    for (const quint64 localId : localIds) {
        mLocalIdsByLongId.insert(storage->serverUidFromMessageId(localId), localId);
    }
}

quint64 FetchItemCommand::getLocalIdByLongId(const QString &longId) const
{
    return mLocalIdsByLongId.value(longId, 0);
}

QString FetchItemCommand::commandName() const
{
    return ProtocolUtils::CommandItemOperations;
}

BaseProtocolCommand::ExchangeTexts FetchItemCommand::texts() const
{
    return { "Sending fetch item command via POST:", "Received fetch item command reply:", nullptr };
}

bool FetchItemCommand::prepareRequest(QNetworkRequest &request)
{
    request.setRawHeader(ProtocolUtils::HeaderConnection, ProtocolUtils::KeepAlive);
    if (mAcceptMultipart) {
        request.setRawHeader(
            ProtocolUtils::HeaderAsAcceptMultiPart, QString(ProtocolUtils::TrueValue).toLatin1());
    }
    return true;
}

bool FetchItemCommand::encodeBody(EasAccount &account, QByteArray *body)
{
    if (account.protocolVersion() < ExchangeActiveSync::ProtocolVersion120) {
        qCWarning(eas()) << "Fetch is not supported on protocols < 12.0";
        return false;
    }
    WbxmlEncoder encoder;
    encoder.appendElement(ItemOperations::ItemOperations, true);
    if (!mFileReference.isEmpty()) {
        encodeFileReference(encoder);
    } else if (!encodeMessages(account, encoder)) {
        return false;
    }
    *body = encoder.encoded();
    return true;
}

void FetchItemCommand::encodeFileReference(WbxmlEncoder &encoder) const
{
    encoder.appendElement(ItemOperations::Fetch, true);
    encoder.appendTextElement(ItemOperations::Store, mStore);
    encoder.appendTextElement(AirSyncBase::FileReference, mFileReference);
    if (!rangeString().isEmpty()) {
        encoder.appendElement(ItemOperations::Options, true);
        encoder.appendTextElement(ItemOperations::Range, rangeString());
        encoder.setCurrentNodeToParent();
    }
    encoder.setCurrentNodeToParent();
}

Lookup<QString> FetchItemCommand::collectionIdOf(
    MailStorage &storage, quint64 localId, const QString &serverId) const
{
    const Lookup<QString> synchronised =
        EasDatabase::instance()->collectionServerIdFromEmailItemId(accountId(), serverId);
    return synchronised && synchronised->isEmpty() ? storage.collectionIdOfResult(localId) : synchronised;
}

bool FetchItemCommand::encodeMessages(EasAccount &account, WbxmlEncoder &encoder) const
{
    const QSharedPointer<MailStorage> storage = account.mailStorage();
    if (!storage) {
        qCWarning(eas()) << "MailStorage is null";
        return false;
    }
    for (const quint64 localId : mLocalIds) {
        const QString serverId = storage->serverUidFromMessageId(localId);
        const Lookup<QString> collectionId = collectionIdOf(*storage, localId, serverId);
        if (!collectionId)
            return false;
        encoder.appendElement(ItemOperations::Fetch, true);
        encoder.appendTextElement(ItemOperations::Store, mStore);
        if (collectionId->isEmpty()) {
            // In no folder that is known: a search result with a long identifier.
            encoder.appendTextElement(Search::LongId, serverId);
        } else {
            encoder.appendTextElement(AirSync::CollectionId, *collectionId);
            encoder.appendTextElement(AirSync::ServerId, KeptEmailId(serverId).onWire().text());
        }
        encoder.appendElement(ItemOperations::Options, true);
        encoder.appendIntElement(AirSync::MIMESupport, 1);
        encoder.setCurrentNodeToParent();
        encoder.setCurrentNodeToParent();
    }
    return true;
}

void FetchItemCommand::handleDownloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    qCDebug(eas()) << "Download item:" << bytesReceived << bytesTotal;
    Q_EMIT downloadProgress(bytesReceived, bytesTotal);
}

bool FetchItemCommand::parseReply(QNetworkReply *reply, const QByteArray &body)
{
    mFetchItems.clear();
    mPartContentType.clear();
    mPartData.clear();
    mHasPart = false;
    mPartRange.clear();
    mTotalSize = -1;
    if (!mAcceptMultipart) {
        return processSingleResponse(body);
    }
    const bool succeeded = processMultiPartResponse(reply, body);
    qCDebug(eas()) << "Processed multi part response; succeeded?" << (succeeded ? "true" : "false");
    return succeeded;
}

bool FetchItemCommand::processSingleResponse(const QByteArray &data)
{
    qCDebug(eas()) << "Treating response as a single response";
    ItemOperationsResponseParser parser;
    parser.parse(data);
    if (!parser.ready()) {
        qCWarning(eas()) << "Parser not ready, failed to parse response";
        return false;
    }
    setStatus(parser.status());
    mFetchItems = parser.fetchItems();
    return true;
}

void FetchItemCommand::logBody(const QByteArray &body) const
{
    // The documents of a reply in parts are logged one by one, when they are read.
    if (body.isEmpty() || body.at(0) == WbxmlVersion13) {
        BaseProtocolCommand::logBody(body);
    }
}

bool FetchItemCommand::processMultiPartResponse(const QNetworkReply *reply, const QByteArray &data)
{
    const QString type = mediaType(reply);
    if (type == ProtocolUtils::ContentTypeWbxml) {
        if (processSingleResponse(data)) {
            return true;
        }
        qCWarning(eas())
            << "We failed to handle the response as a webxml response, so trying to handle it as "
               "a multipart response";
    } else if (type != ProtocolUtils::ContentTypeMultiPart) {
        qCCritical(eas()) << "Invalid content type for multipart response";
        return false;
    }
    return processParts(data);
}

bool FetchItemCommand::processParts(const QByteArray &data)
{
    MultipartReply reply(data);
    if (!reply.open()) {
        return false;
    }
    while (reply.hasNext()) {
        if (!reply.next()) {
            return false;
        }
        if (!processPartWbxml(reply.document())) {
            continue;
        }
        // A file that was refused has no data, whatever lies in its place.
        if (status() <= Eas::ItemOperationsStatusSuccess) {
            mPartData = reply.data();
            mHasPart = true;
            qCDebug(eas()) << "The part with content type" << mPartContentType << "and size"
                           << mPartData.size() << "was found";
        }
        return true;
    }
    qCCritical(eas()) << "The part was not found in multipart response";
    return false;
}

bool FetchItemCommand::checkBound(int dataSize, int offset, int length)
{
    return MultipartReply::checkBound(dataSize, offset, length);
}

bool FetchItemCommand::processPartWbxml(const QByteArray &part)
{
    BaseProtocolCommand::logBody(part);
    ItemOperationsResponseParser parser;
    parser.parse(part);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse";
        return false;
    }
    const QList<ItemOperationsFetchItem> items = parser.fetchItems();
    const auto item =
        std::find_if(items.cbegin(), items.cend(), [this](const ItemOperationsFetchItem &candidate) {
            return candidate.fileReference() == mFileReference;
        });
    if (item == items.cend()) {
        return false;
    }
    const bool isRefused = item->status() > Eas::ItemOperationsStatusSuccess;
    setStatus(isRefused ? item->status() : parser.status());
    mPartContentType = item->contentType();
    mPartRange = item->range();
    mTotalSize = item->total();
    return true;
}
