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
    bool collectUploaded(const SyncCollection &collection);
    bool storeReceived(ContactStorage &storage, const SyncCollection &collection);
    bool storeUploaded(ContactStorage &storage);

    QMap<QString, QString> mLocalIds;
};
