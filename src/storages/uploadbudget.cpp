// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/uploadbudget.h"

void UploadBudget::beginFolder(const QSet<QString> &sent)
{
    mSent = sent;
    mTaken.clear();
    mBytesTaken.clear();
    mHasLeftOut = false;
}

bool UploadBudget::take(const QString &id)
{
    if (mSent.contains(id))
        return false;
    if (mTaken.contains(id))
        return true;
    if (isSpent()) {
        mHasLeftOut = true;
        return false;
    }
    ++mChanges;
    mTaken.insert(id);
    return true;
}

void UploadBudget::setBytes(const QString &id, qint64 bytes)
{
    qint64 &present = mBytesTaken[id];
    mBytes += bytes - present;
    present = bytes;
}
