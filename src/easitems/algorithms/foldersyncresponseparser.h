// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easfolderitem.h"
#include "protocol/wbxml/wbxmlparserbase.h"

#include <QList>
#include <QStringList>

/** Reads the reply of a FolderSync. An empty reply is ready at once: status 0, no key, no changes. */
class FolderSyncResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    /** Changes of folders in one reply; no mailbox has more. */
    static constexpr int MaxItems = 10000;

    explicit FolderSyncResponseParser(QObject *parent = nullptr);

    bool ready() const override;
    void parse(const QByteArray &data) override;

    int status() const { return mStatus; }
    /** Empty if the reply holds none. */
    QString syncKey() const { return mSyncKey; }
    QList<EasFolderItem> addedItems() const { return mAddedItems; }
    /** Their changed fields are those that the reply holds. */
    QList<EasFolderItem> updatedItems() const { return mUpdatedItems; }
    QStringList deletedItems() const { return mDeletedItems; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    enum Position { BeforeRoot, Top, InChanges, InAdd, InUpdate, InDelete, Done };

    void start(uint tag);
    void end(uint tag);
    void startItem(Position position);
    void endItem();
    void typeContent(const QString &text);
    /** Marks a field of an update; what is added is whole anyway. */
    void markChanged(uint tag);

    Position mPosition = BeforeRoot;
    int mStatus = 0;
    int mItems = 0;
    QString mSyncKey;
    EasFolderItem mItem;
    QList<EasFolderItem> mAddedItems;
    QList<EasFolderItem> mUpdatedItems;
    QStringList mDeletedItems;
};
