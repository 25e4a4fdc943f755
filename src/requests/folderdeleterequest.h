// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/foldermanagementrequest.h"

/** Deletes a folder with everything in it, on the server and on the device. */
class FolderDeleteRequest : public FolderManagementRequest
{
    Q_OBJECT

public:
    FolderDeleteRequest(
        EasAccountId accountId, const QString &folderLocalId, quint64 requestId, QObject *parent = nullptr);

protected:
    QString commandName() const override;
    const Texts &texts() const override;
    RequestStatusTable refusals() const override;
    QString refusedSubject(int status) const override;
    bool translate() override;
    FolderCommand *createCommand() override;
    std::optional<FolderChanges> agreedChanges() override;

private:
    const QString mFolderLocalId;
    // As the server knows them.
    QString mServerId;
};
