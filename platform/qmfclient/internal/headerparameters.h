// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessageheaderfield.h>

#include <QByteArray>
#include <QList>

/** The "; name=value" lists of structured header fields. */
namespace HeaderParameters {

/** Splits a field; values in the extended notation of RFC 2231 come out as plain UTF-8. */
void parse(
    const QByteArray &text, QByteArray *content, QList<QMailMessageHeaderField::ParameterType> *parameters);
/** For people and for parse(): quoted if need be, all bytes as they are. */
QByteArray quoted(const QByteArray &name, const QByteArray &value);
/**
 * A field as a part keeps it, with what the store does to values above ASCII and with double quotes: such a
 * value, or its whole parameter, comes back as something else, and parameters behind it are lost.
 */
QByteArray keptInPart(const QMailMessageHeaderField &field);
/** For the wire: ASCII alone, other bytes in the extended notation. */
QByteArray encoded(const QByteArray &name, const QByteArray &value);

} // namespace HeaderParameters
