// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "easitems/itemoperationsfetchitem.h"
#include "protocol/baseprotocolcommand.h"

#include <QByteArray>
#include <QHash>
#include <QList>

class MailStorage;
class WbxmlEncoder;

/**
 * One ItemOperations that fetches what a Sync left out: an attachment by its file reference, whole or a range
 * of it, or whole messages by their local identifiers.
 *
 * An attachment may be accepted in the multipart form, where its bytes come as they are; the server is free
 * to answer in the single form all the same. Needs protocol version 12.0 or above.
 */
class FetchItemCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    explicit FetchItemCommand(EasAccountId accountId, QObject *parent = nullptr);

    void setRange(int rangeStart, int rangeEnd);
    int rangeStart() const { return mRangeStart; }
    int rangeEnd() const { return mRangeEnd; }
    /** "start-end", or an empty text without a proper range. */
    QString rangeString() const;
    /** What progress is measured against. */
    int estimatedDataSize() const { return mEstimatedDataSize; }
    void setEstimatedDataSize(int size) { mEstimatedDataSize = size; }
    bool acceptMultipart() const { return mAcceptMultipart; }
    void setAcceptMultipart(bool accept) { mAcceptMultipart = accept; }
    QString store() const { return mStore; }
    void setStore(const QString &store) { mStore = store; }
    QString fileReference() const { return mFileReference; }
    void setFileReference(const QString &fileReference) { mFileReference = fileReference; }
    QList<quint64> localIds() const { return mLocalIds; }
    void setLocalIds(const QList<quint64> &localIds);
    /** The message that was asked for by this long identifier; 0 if none was. */
    quint64 getLocalIdByLongId(const QString &longId) const;

    // Results
    QString partContentType() const { return mPartContentType; }
    QByteArray partData() const { return mPartData; }
    /** Whether the reply came in parts and held the file; the part of a file without bytes is empty. */
    bool hasPart() const { return mHasPart; }
    /** "start-end" of what the data holds of the whole; empty if the server does not say. */
    QString partRange() const { return mPartRange; }
    /** Size of the whole file of which a range was fetched; -1 if the server does not say. */
    int totalSize() const { return mTotalSize; }
    QList<ItemOperationsFetchItem> fetchItems() const { return mFetchItems; }

Q_SIGNALS:
    void downloadProgress(qint64 bytesReceived, qint64 bytesTotal);

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool prepareRequest(QNetworkRequest &request) override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    void logBody(const QByteArray &body) const override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;
    /** The files of a mailbox are larger than what else a server says. */
    qint64 maximumReplySize() const override { return 256 * 1024 * 1024; }
    void handleDownloadProgress(qint64 bytesReceived, qint64 bytesTotal) override;

    bool processSingleResponse(const QByteArray &data);
    bool processMultiPartResponse(const QNetworkReply *reply, const QByteArray &data);
    bool processPartWbxml(const QByteArray &part);
    static bool checkBound(int dataSize, int offset, int length);

private:
    void encodeFileReference(WbxmlEncoder &encoder) const;
    bool encodeMessages(EasAccount &account, WbxmlEncoder &encoder) const;
    /** The folder on the server; empty for a result of a search that only has a long identifier. */
    Lookup<QString> collectionIdOf(MailStorage &storage, quint64 localId, const QString &serverId) const;
    bool processParts(const QByteArray &data);

    int mRangeStart = -1;
    int mRangeEnd = -1;
    int mEstimatedDataSize = 0;
    bool mAcceptMultipart = false;
    QString mStore;
    QString mFileReference;
    QList<quint64> mLocalIds;
    QHash<QString, quint64> mLocalIdsByLongId;

    QString mPartContentType;
    QByteArray mPartData;
    bool mHasPart = false;
    QString mPartRange;
    int mTotalSize = -1;
    QList<ItemOperationsFetchItem> mFetchItems;
};
