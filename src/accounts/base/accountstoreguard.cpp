// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/base/accountstoreguard.h"

#include <QFile>
#include <QStandardPaths>

#include <array>
#include <fcntl.h>
#include <unistd.h>

namespace {

// What SQLite's file format sets down: the bytes of the shared lock, and the versions in the header.
constexpr off_t SharedFirst = 0x40000000 + 2;
constexpr off_t SharedSize = 510;
constexpr off_t VersionsOffset = 18;
constexpr std::array<char, 2> WriteAheadVersions { 2, 2 };

/** Where the account library keeps its database. */
QString accountDatabase()
{
    const QString chosen = qEnvironmentVariable("ACCOUNTS");
    const QString folder = chosen.isEmpty()
        ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
            + QStringLiteral("/libaccounts-glib")
        : chosen;
    return folder + QStringLiteral("/accounts.db");
}

} // namespace

AccountStoreGuard::AccountStoreGuard(const QString &databaseFile)
    : mFile(databaseFile)
{
}

AccountStoreGuard &AccountStoreGuard::instance()
{
    static AccountStoreGuard guard(accountDatabase());
    return guard;
}

bool AccountStoreGuard::hold()
{
    const int file = descriptor();
    if (file < 0 || !keepsWriteAheadLog(file))
        return false;
    struct flock lock
    {
    };
    lock.l_type = F_RDLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = SharedFirst;
    lock.l_len = SharedSize;
    return ::fcntl(file, F_OFD_SETLK, &lock) == 0;
}

int AccountStoreGuard::descriptor()
{
    int present = mDescriptor;
    if (present >= 0)
        return present;
    // Never closed, not even where another thread was quicker: a close drops SQLite's own locks on the file.
    const int file = ::open(QFile::encodeName(mFile).constData(), O_RDONLY | O_CLOEXEC);
    return file < 0 || mDescriptor.compare_exchange_strong(present, file) ? file : present;
}

bool AccountStoreGuard::keepsWriteAheadLog(int file)
{
    std::array<char, WriteAheadVersions.size()> versions {};
    return ::pread(file, versions.data(), versions.size(), VersionsOffset) == ssize_t(versions.size())
        && versions == WriteAheadVersions;
}
