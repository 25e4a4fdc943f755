// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

#include <qmailid.h>

/** Identifiers of the mail store's folders as the mapping keeps them. */
namespace MailFolderIds {

inline QMailFolderId fromText(const QString &text)
{
    return QMailFolderId(text.toULongLong());
}

inline QString text(const QMailFolderId &id)
{
    return QString::number(id.toULongLong());
}

} // namespace MailFolderIds
