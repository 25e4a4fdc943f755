// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/eascalendaritem.h"

#include "application/base/logging.h"

#include <QDebug>

void EasCalendarItem::setBodyContainerType(EasBodyContainer::BodyType type)
{
    markChanged(BodyParameter);
    mBody.setType(type);
}

void EasCalendarItem::setBodyContainerData(const QString &data)
{
    markChanged(BodyParameter);
    mBody.setData(data);
}

void EasCalendarItem::setBodyContainerEstimatedDataSize(int size)
{
    markChanged(BodyParameter);
    mBody.setEstimatedDataSize(size);
}

void EasCalendarItem::setBodyContainerTruncated(bool truncated)
{
    markChanged(BodyParameter);
    mBody.setTruncated(truncated);
}

void EasCalendarItem::setExceptionDeleted(uint deleted)
{
    if (deleted > 1) {
        qCCritical(eas()) << "Tried to set deleted value to" << deleted;
        return;
    }
    set(mExceptionDeleted, quint8(deleted), ExceptionDeletedParameter);
}

void EasCalendarItem::appendException(const EasCalendarItem &exception)
{
    markChanged(ExceptionsParameter);
    mExceptions.append(exception);
}

bool EasCalendarItem::parameterHasBeenChanged(CalendarItemParameter parameter) const
{
    return mChangedParameters.contains(parameter);
}

void EasCalendarItem::markChanged(CalendarItemParameter parameter)
{
    if (!mChangedParameters.contains(parameter)) {
        mChangedParameters.append(parameter);
    }
}
