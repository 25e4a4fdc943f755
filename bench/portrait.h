// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QBuffer>
#include <QImage>
#include <QRandomGenerator>

namespace Bench {

/** A picture of some 8 KB that no other number has, as cameras make them: a JPEG. */
inline QByteArray portrait(int number)
{
    constexpr int side = 96;
    QImage image(side, side, QImage::Format_RGB32);
    QRandomGenerator random(quint32(number + 1));
    random.fillRange(reinterpret_cast<quint32 *>(image.bits()), side * side);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpg");
    return bytes;
}

} // namespace Bench
