// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/foldermanagementrequest.h"

/** Creates a folder of the user on the server and on the device.
 *
 * The kind is 0 for mail, 1 for events, 2 for contacts. */
class FolderCreateRequest : public FolderManagementRequest
{
    Q_OBJECT

public:
    FolderCreateRequest(EasAccountId accountId, const QString &parentLocalId, const QString &displayName,
        uint kind, quint64 requestId, QObject *parent = nullptr);

protected:
    QString commandName() const override;
    const Texts &texts() const override;
    RequestStatusTable refusals() const override;
    QString refusedSubject(int status) const override;
    bool translate() override;
    FolderCommand *createCommand() override;
    std::optional<FolderChanges> agreedChanges() override;

private:
    const QString mParentLocalId;
    const QString mDisplayName;
    const uint mKind;
    // As the server knows them.
    QString mServerParentId;
    EasFolderItem::FolderType mType = EasFolderItem::UnknownFolder;
};
