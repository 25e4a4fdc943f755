// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/table.h"

#include <QJsonObject>
#include <qmailfolder.h>
#include <qmailmessage.h>

/** Mail as the command line shows it. */
namespace MailView {

QJsonObject describeMessage(const QMailMessageMetaData &message);
/** With addresses, text and attachments. */
QJsonObject describeWhole(const QMailMessage &message);
const Columns &messageColumns();

/** The parts of a message that can be saved, as "location", "name", "type", "size" and "downloaded". */
QJsonArray parts(const QMailMessage &message);
const Columns &partColumns();

/** The text of a message, HTML turned into text; empty if it is not on the device. */
QString text(const QMailMessage &message);

/** A file name that cannot lead out of a folder and is short enough to get an ending; the fallback for a text
 * of which nothing is left. */
QString safeFileName(const QString &text, const QString &fallback);
/** A file name for a part that cannot lead out of a folder, whatever the server called it. */
QString safeFileName(const QMailMessagePart &part);

} // namespace MailView
