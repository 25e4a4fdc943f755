// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "requests/syncresulthandler.h"

class ContactStorage;

/** Contacts of a Sync reply: the server's items first, then acknowledged uploads. */
class ContactsResultHandler : public SyncResultHandler
{
public:
    using SyncResultHandler::SyncResultHandler;

    bool handle(SyncCollection &collection) override;

private:
    void collectSent(const SyncCollection &collection);
    bool collectUploaded(const SyncCollection &collection);
    bool collectUploadedAdds(const SyncCollection &collection);
    bool storeReceived(ContactStorage &storage, SyncCollection &collection);
    bool storeUploaded(ContactStorage &storage);

    QMap<QString, QString> mLocalIds;
    QList<EasContactsItem> mSentAdded;
    QList<EasContactsItem> mSentChanged;
    QStringList mSentDeleted;
    QList<EasContactsItem> mUploadedAdded;
    QList<EasContactsItem> mUploadedChanged;
    QList<QString> mUploadedDeleted;
};
