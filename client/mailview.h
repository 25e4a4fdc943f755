// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QJsonObject>
#include <qmailfolder.h>
#include <qmailmessage.h>

/** The mail store as the command line shows it. */
namespace MailView {

/** The account's folders, parents before children, by display name. */
QMailFolderIdList folders(EasAccountId accountId);
/** By number, or by path of display names ("Projects/2024"); an invalid identifier if there is none. */
QMailFolderId findFolder(EasAccountId accountId, const QString &folder);
QString folderPath(const QMailFolderId &id);
QJsonObject describeFolder(const QMailFolderId &id);

/** Newest first. */
QMailMessageIdList messages(EasAccountId accountId, const QMailFolderId &folder);
/** One of the account's messages by its number; an invalid identifier if there is none. */
QMailMessageId findMessage(EasAccountId accountId, const QString &number);
QJsonObject describeMessage(const QMailMessageMetaData &message);
/** With addresses, text and attachments. */
QJsonObject describeWhole(const QMailMessage &message);

/** The text of a message, HTML turned into text; empty if it is not on the device. */
QString text(const QMailMessage &message);

/** A file name for a part that cannot lead out of a folder, whatever the server called it. */
QString safeFileName(const QMailMessagePart &part);

} // namespace MailView
