// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/base/accountstore.h"

#include "accounts/base/accountstoreguard.h"
#include "application/base/logging.h"

#include <Accounts/Manager>

#include <QHash>

#include <sys/stat.h>

namespace {

/** What is made while it lives can be read by the user alone. */
class PrivateFiles
{
public:
    PrivateFiles()
        : mBefore(::umask(S_IRWXG | S_IRWXO))
    {
    }
    ~PrivateFiles() { ::umask(mBefore); }
    Q_DISABLE_COPY(PrivateFiles)

private:
    mode_t mBefore;
};

} // namespace

std::shared_ptr<Accounts::Manager> AccountStore::manager(const QString &serviceType)
{
    thread_local QHash<QString, std::weak_ptr<Accounts::Manager>> managers;
    if (auto present = managers.value(serviceType).lock())
        return present;
    // A database that is there is guarded first; one that the library makes now can be only afterwards.
    AccountStoreGuard::instance().hold();
    const PrivateFiles privateFiles;
    auto created = serviceType.isEmpty() ? std::make_shared<Accounts::Manager>()
                                         : std::make_shared<Accounts::Manager>(serviceType);
    // Later the error is that of the last account which was not found.
    const Accounts::Error error = created->lastError();
    if (error.type() != Accounts::Error::NoError) {
        qCCritical(eas()) << "The account store cannot be used, is there a session bus? Error:"
                          << error.type() << error.message();
        return nullptr;
    }
    if (!AccountStoreGuard::instance().hold())
        qCWarning(eas()) << "The account store's database is not guarded against its removal by others";
    managers.insert(serviceType, created);
    return created;
}
