// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easfolderitem.h"
#include "requests/folderhierarchychanges.h"
#include "requests/hierarchyrequest.h"

#include <optional>

class FolderCommand;

/**
 * What the requests share that create, remove and rename a folder for a client.
 *
 * A subclass names its command, translates the client's local identifiers, and says which change the stores
 * and the mapping database get once the server has agreed. The hierarchy's new key is stored last: whatever
 * fails before makes the next synchronisation bring the change again. A refusal of the server ends the
 * request with RequestStatusBadRequest; nothing is repeated for it. Queued and owned by the RequestManager.
 * Main thread only.
 */
class FolderManagementRequest : public HierarchyRequest
{
    Q_OBJECT

public:
    using HierarchyRequest::HierarchyRequest;

protected:
    /** The lines that name the kind of request in the log. */
    struct Texts
    {
        const char *commandMissing;
        FolderHierarchyChanges::StoreFailures stores;
        const char *databaseFailure;
    };
    void startRequest() override;
    void onCommandFinished(bool success) override;
    virtual void handleFinished(bool success);

    virtual const Texts &texts() const = 0;
    /** The statuses that mean no to this kind of request. */
    virtual RequestStatusTable refusals() const = 0;
    /** The name or identifier that the text of a refusal is about. */
    virtual QString refusedSubject(int status) const = 0;
    /** Translates the arguments; false, and the request has ended, if one of them is not valid. */
    virtual bool translate() = 0;
    virtual FolderCommand *createCommand() = 0;
    /** What the server has agreed to; nothing, logged, if its reply does not say enough. */
    virtual std::optional<FolderChanges> agreedChanges() = 0;

    bool acceptDisplayName(const QString &name);
    /** The folder's identifier on the server; empty, and the request has ended, if there is none. */
    QString serverFolderId(const QString &localId);
    /** The same for the parent of a folder; "0" is the root on both sides. */
    QString serverParentId(const QString &localId);
    /** Ends the request because of its arguments; false, for a return. */
    bool refuse(const char *text);

private:
    QString translated(const QString &localId, const char *failure);
    void processReply() override;
    bool processResponse();
};
