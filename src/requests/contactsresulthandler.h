// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "requests/uploadresulthandler.h"

class ContactStorage;

/** Contacts of a Sync reply: the server's items first, then acknowledged uploads. */
class ContactsResultHandler : public UploadResultHandler<EasContactsItem>
{
public:
    using UploadResultHandler::UploadResultHandler;

    bool handle(SyncCollection &collection) override;

protected:
    const Kind &kind() const override;

private:
    bool readRows(const QString &collectionId);
    bool collectUploaded(const SyncCollection &collection);
    bool storeReceived(ContactStorage &storage, const SyncCollection &collection);
    bool storeUploaded(ContactStorage &storage, const SyncCollection &collection);
    bool finish(ContactStorage &storage, const SyncCollection &collection);
    /** Received contacts that the device has just uploaded get the local identifiers of these. */
    void markUploads(QList<EasContactsItem> &received) const;
    QList<EasContactsItem> withoutReceived(const QList<EasContactsItem> &uploaded) const;

    /** By server identifiers, of the collection's folder. */
    QMap<QString, QString> mLocalIds;
    /** Server identifiers of what the reply has brought. */
    QSet<QString> mReceivedIds;
};
