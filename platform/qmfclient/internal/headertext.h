// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailaddress.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>

/** Encoded words (RFC 2047) of at most 75 bytes, none of which cuts a character. */
QByteArray encodedWords(QStringView text);
/** The addresses of a header field as bytes that may stand in one, and back. */
QByteArray encodedAddresses(const QList<QMailAddress> &addresses);
QList<QMailAddress> decodedAddresses(const QByteArray &value);
/** One header field as it travels: folded, ended by CR LF, without anything that could end it early. */
QByteArray foldedHeader(const QByteArray &name, const QByteArray &value);
/** The start of a text for lists of messages. */
QString previewOfPlainText(const QString &text);
QString previewOfHtml(const QString &html);
