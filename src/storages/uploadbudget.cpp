// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/uploadbudget.h"

#include "easitems/eascalendaritem.h"
#include "easitems/eascontactsitem.h"
#include "easitems/easemailitem.h"

namespace {

/** Of an event and of its exceptions. */
qint64 sizeOf(const EasCalendarItem &item)
{
    qint64 size = item.body().data().size();
    for (const EasAttachmentContainer &attachment : item.attachments())
        size += attachment.estimatedDataSize();
    const QList<EasCalendarItem> exceptions = item.exceptions();
    for (const EasCalendarItem &exception : exceptions)
        size += sizeOf(exception);
    return size;
}

} // namespace

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

void UploadBudget::note(const EasEmailItem &item)
{
    setBytes(item.localId(), item.body().data().size());
}

void UploadBudget::note(const EasContactsItem &item)
{
    setBytes(item.localId(), item.picture().size() + item.body().data().size());
}

void UploadBudget::note(const EasCalendarItem &item)
{
    setBytes(item.localId(), sizeOf(item));
}

void UploadBudget::setBytes(const QString &id, qint64 bytes)
{
    qint64 &present = mBytesTaken[id];
    mBytes += bytes - present;
    present = bytes;
}
