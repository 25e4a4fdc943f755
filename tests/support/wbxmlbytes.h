// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

/** Documents by hand, byte by byte; blanks in the hexadecimal text are for the reader. */
namespace WbxmlBytes {

inline QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

/** Version 1.3, unknown public identifier, UTF-8, no string table. */
inline QByteArray document(const char *body)
{
    return hex("03016A00") + hex(body);
}

/** A number as WBXML writes it. */
inline QByteArray number(quint32 value)
{
    QByteArray bytes(1, static_cast<char>(value & 0x7FU));
    while ((value >>= 7U) != 0)
        bytes.prepend(static_cast<char>(0x80U | (value & 0x7FU)));
    return bytes;
}

inline QByteArray documentWithTable(const QByteArray &table, const char *body)
{
    return hex("03016A") + number(static_cast<quint32>(table.size())) + table + hex(body);
}

} // namespace WbxmlBytes
