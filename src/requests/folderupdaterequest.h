// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/foldermanagementrequest.h"

/**
 * Renames a folder, or moves it below another one, on the server and on the device. Without a parent it stays
 * where it is.
 */
class FolderUpdateRequest : public FolderManagementRequest
{
    Q_OBJECT

public:
    FolderUpdateRequest(EasAccountId accountId, const QString &folderLocalId, const QString &parentLocalId,
        const QString &displayName, quint64 requestId, QObject *parent = nullptr);

protected:
    QString commandName() const override;
    const Texts &texts() const override;
    RequestStatusTable refusals() const override;
    QString refusedSubject(int status) const override;
    bool translate() override;
    FolderCommand *createCommand() override;
    std::optional<FolderChanges> agreedChanges() override;

private:
    QString presentParentId();

    const QString mFolderLocalId;
    const QString mParentLocalId;
    const QString mDisplayName;
    // As the server knows them.
    QString mServerId;
    QString mServerParentId;
};
