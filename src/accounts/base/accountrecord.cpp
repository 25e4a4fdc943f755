// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/base/accountrecord.h"

#include <Accounts/Account>
#include <Accounts/Service>

RecordScope RecordScope::global()
{
    return RecordScope();
}

RecordScope RecordScope::firstOfType(const QString &serviceType)
{
    return { FirstOfType, serviceType, QString() };
}

RecordScope RecordScope::named(const QString &serviceType, const QString &serviceName)
{
    return { Named, serviceType, serviceName };
}

AccountRecord::AccountRecord(Accounts::Account *account)
    : mAccount(account)
{
}

Accounts::Account *AccountRecord::account() const
{
    return mAccount;
}

bool AccountRecord::enabled() const
{
    return select(RecordScope::global()) && mAccount->enabled();
}

bool AccountRecord::contains(const RecordScope &scope) const
{
    const bool found = select(scope);
    select(RecordScope::global());
    return found;
}

QString AccountRecord::serviceName(const RecordScope &scope) const
{
    if (!select(scope))
        return QString();
    const QString name = mAccount->selectedService().name();
    mAccount->selectService();
    return name;
}

QVariant AccountRecord::value(const RecordScope &scope, const QString &key) const
{
    if (!select(scope))
        return QVariant();
    const QVariant value = mAccount->value(key);
    mAccount->selectService();
    return value;
}

bool AccountRecord::write(const RecordScope &scope, const Values &values)
{
    if (!select(scope))
        return false;
    for (const auto &value : values)
        mAccount->setValue(value.first, value.second);
    mAccount->selectService();
    return mAccount->syncAndBlock();
}

bool AccountRecord::write(const RecordScope &scope, const QString &key, const QVariant &value)
{
    return write(scope, Values { { key, value } });
}

void AccountRecord::discard(const RecordScope &scope, const QString &key)
{
    if (!select(scope))
        return;
    mAccount->remove(key);
    mAccount->selectService();
}

bool AccountRecord::select(const RecordScope &scope) const
{
    if (!mAccount)
        return false;
    mAccount->selectService();
    if (scope.kind == RecordScope::Global)
        return true;
    // The store lists services in no useful order.
    const Accounts::ServiceList services = mAccount->services(scope.serviceType);
    for (const Accounts::Service &service : services) {
        if (scope.kind == RecordScope::FirstOfType || service.name() == scope.serviceName) {
            mAccount->selectService(service);
            return true;
        }
    }
    return false;
}
