// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/onewaybody.h"

#include <cstring>

OneWayBody::OneWayBody(const QByteArray &bytes, QObject *parent)
    : QIODevice(parent)
    , mBytes(bytes)
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool OneWayBody::seek(qint64 position)
{
    if (position != 0 || (mRead > 0 && !mMayStart))
        return false;
    mRead = 0;
    return QIODevice::seek(0);
}

qint64 OneWayBody::readData(char *data, qint64 maximum)
{
    mMayStart = false;
    const qint64 size = qMin(maximum, qint64(mBytes.size()) - mRead);
    if (size <= 0)
        return -1;
    std::memcpy(data, mBytes.constData() + mRead, std::size_t(size));
    mRead += size;
    return size;
}
