// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascommonbase.h"

/** An item with its places in the local store. A plain value. */
class EasBaseItem : public EasCommonBase
{
    Q_GADGET

public:
    quint64 localStorageAccountId() const { return mLocalStorageAccountId; }
    void setLocalStorageAccountId(quint64 id) { mLocalStorageAccountId = id; }

    /** Row identifier of a search or find result. */
    quint64 id() const { return mId; }
    void setId(quint64 id) { mId = id; }

    QString localId() const { return mLocalId; }
    void setLocalId(const QString &localId) { mLocalId = localId; }

    void clear() { *this = EasBaseItem(); }

private:
    quint64 mLocalStorageAccountId = 0;
    quint64 mId = 0;
    QString mLocalId;
};
