// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/testpictures.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QImageWriter>
#include <QRandomGenerator>
#include <QtEndian>

namespace {

QByteArray encoded(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "png");
    return bytes;
}

quint32 crc(const QByteArray &bytes)
{
    quint32 value = 0xFFFFFFFF;
    for (const char byte : bytes) {
        value ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            value = value & 1 ? (value >> 1) ^ 0xEDB88320 : value >> 1;
    }
    return ~value;
}

QByteArray number(quint32 value)
{
    const quint32 bigEndian = qToBigEndian(value);
    return QByteArray(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
}

} // namespace

QByteArray TestPictures::png(int red, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor(red, 10, 20));
    return encoded(image);
}

QByteArray TestPictures::noise(int side)
{
    QRandomGenerator random(7);
    QImage image(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            image.setPixel(x, y, random.generate() | 0xFF000000);
    }
    return encoded(image);
}

QByteArray TestPictures::lyingPhoto(int width, int height)
{
    QRandomGenerator random(7);
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int grain = int(random.bounded(100));
            image.setPixel(x, y, x < width / 2 ? qRgb(255, grain, grain) : qRgb(grain, grain, 255));
        }
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpg");
    writer.setQuality(95);
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    writer.write(image);
    return bytes;
}

QByteArray TestPictures::hollowPng(quint32 width, quint32 height)
{
    const QByteArray header = "IHDR" + number(width) + number(height) + QByteArray("\x08\x06\0\0\0", 5);
    return QByteArray("\x89PNG\r\n\x1a\n") + number(13) + header + number(crc(header)) + number(0) + "IDAT"
        + number(crc("IDAT"));
}
