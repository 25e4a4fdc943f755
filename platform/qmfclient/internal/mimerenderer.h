// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessage.h>

#include <QByteArray>

/** The text of a message as QMailMessage::toRfc2822() documents its formats. */
QByteArray renderMime(const QMailMessage &message, QMailMessage::EncodingFormat format);
