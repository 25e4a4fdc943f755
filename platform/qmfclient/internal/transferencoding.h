// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessagebody.h>

#include <QByteArray>

/** The transfer encodings of RFC 2045 by name; NoEncoding has none. */
QMailMessageBody::TransferEncoding transferEncodingFromName(const QByteArray &name);
QByteArray transferEncodingName(QMailMessageBody::TransferEncoding encoding);

/** text: line feeds travel as CR LF. */
QByteArray encodeForTransfer(
    const QByteArray &octets, QMailMessageBody::TransferEncoding encoding, bool text);
QByteArray decodeFromTransfer(
    const QByteArray &encoded, QMailMessageBody::TransferEncoding encoding, bool text);
QByteArray withCrLf(const QByteArray &text);
QByteArray withLf(const QByteArray &text);
