// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easemailitem.h"
#include "requests/mailserverids.h"
#include "requests/syncresulthandler.h"

class MailStorage;

/** Mail of a Sync reply: acknowledged uploads first, then the server's items, then the mapping. */
class EmailResultHandler : public SyncResultHandler
{
public:
    using SyncResultHandler::SyncResultHandler;

    bool handle(SyncCollection &collection) override;

private:
    static bool namesAreValid(const SyncCollection &collection);
    Lookup<MailServerIds> lookUp(const SyncCollection &collection) const;
    bool acknowledgeChanges(MailStorage &storage, const SyncCollection &collection);
    bool acknowledgeDeletes(MailStorage &storage, const SyncCollection &collection, const MailServerIds &ids);
    void nameAsKept(const SyncCollection &collection, MailServerIds &ids);
    void recogniseRepeatedAdds(const SyncCollection &collection, MailServerIds &ids);
    /** Changes of messages that neither the mapping nor this reply knows. */
    QStringList unknownChanges(const MailServerIds &ids) const;
    void spareMovedMail();

    QList<EasEmailItem> mAdded;
    QList<EasEmailItem> mChanged;
    QStringList mDeleted;
};
