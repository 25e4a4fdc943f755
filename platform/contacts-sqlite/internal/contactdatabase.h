// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/sqlitedatabase.h"

/** The SQLite database below the contact store. */
class ContactDatabase : public SqliteDatabase
{
public:
    ContactDatabase();

    bool open(const QString &folder);

    /** Whether the latest statement could be executed. */
    bool worked() const { return mWorked; }

protected:
    void noteResult(Result result) override { mWorked = result == Succeeded; }

private:
    bool mWorked = false;
};
