// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/sqlitedatabase.h"

#include <qmailstore.h>

/** The SQLite database below the mail store, with the store's own errors. */
class MailDatabase : public SqliteDatabase
{
public:
    MailDatabase();

    bool open(const QString &folder);

    QMailStore::ErrorCode lastError() const { return mLastError; }
    void setLastError(QMailStore::ErrorCode error) { mLastError = error; }

protected:
    void noteResult(Result result) override;

private:
    QMailStore::ErrorCode mLastError = QMailStore::NoError;
};
