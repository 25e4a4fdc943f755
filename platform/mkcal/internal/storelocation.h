// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** Where the calendar of the device is kept. */
namespace StoreLocation {

/** What SQLITESTORAGEDB names, otherwise a file below the user's data; the folder of the latter is made. */
QString databaseName();
/** The local file of an attachment, beside the database; whether it exists is another question. */
QString attachmentFile(const QString &attachmentUri);

} // namespace StoreLocation
