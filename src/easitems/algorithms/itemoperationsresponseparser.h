// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/emailappdataparser.h"
#include "easitems/itemoperationsemptyfoldercontentsitem.h"
#include "easitems/itemoperationsfetchitem.h"
#include "easitems/itemoperationsmoveitem.h"
#include "protocol/wbxml/wbxmlparserbase.h"

#include <QList>

/**
 * Reads the reply of an ItemOperations, or the WBXML part of a multipart one. It is ready only behind the end
 * of the root: an empty reply is no answer to what was asked.
 */
class ItemOperationsResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit ItemOperationsResponseParser(QObject *parent = nullptr);

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** Of the whole command; each item has its own as well. */
    int status() const { return mStatus; }
    QList<ItemOperationsMoveItem> moveItems() const { return mMoveItems; }
    QList<ItemOperationsFetchItem> fetchItems() const { return mFetchItems; }
    QList<ItemOperationsEmptyFolderContentsItem> emptyFolderItems() const { return mEmptyFolderItems; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    enum Operation { NoOperation, InFetch, InMove, InEmptyFolderContents };
    /** What of a message is open; its fields share elements with those of the fetch itself. */
    enum Nested { NotNested, InBody, InBodyPart, InAttachment };

    void endOperation();
    void trackNested(uint tag, bool isStart);
    /** Whether an element belongs to the fetched message, not to the fetch. */
    bool isOfMessage(uint codePage, uint token) const;
    void fetchContent(uint tag, const QString &text);
    void setStatus(const QString &text);
    void setTotal(const QString &text);
    void setPart(const QString &text);
    void setCollectionId(const QString &collectionId);

    void handlePropertiesDataStart(uint codePage, uint token);
    void handlePropertiesDataContent(uint codePage, uint token, const QString &text, const QByteArray &raw);
    void handlePropertiesDataEnd(uint codePage, uint token);

    bool mFinished = false;
    int mStatus = 0;
    Operation mOperation = NoOperation;
    Nested mNested = NotNested;
    bool mInProperties = false;
    int mBodyPartNumber = 0;
    ItemOperationsMoveItem mMoveItem;
    ItemOperationsFetchItem mFetchItem;
    ItemOperationsEmptyFolderContentsItem mEmptyFolderItem;
    EmailAppDataParser mPropertiesParser;
    QList<ItemOperationsMoveItem> mMoveItems;
    QList<ItemOperationsFetchItem> mFetchItems;
    QList<ItemOperationsEmptyFolderContentsItem> mEmptyFolderItems;
};
