// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "accounts/base/accountrecord.h"
#include "application/base/logging.h"
#include "common/easaccountid.h"
#include "configurations/impls/settingstable.h"

#include <functional>
#include <memory>

class QObject;

namespace Accounts {
class Manager;
}

/**
 * Calls back whenever a key of a service of this type was written in the account's record. The manager that
 * reports it has to be kept as long; null, and no call, if the account store cannot be used.
 */
std::shared_ptr<Accounts::Manager> followServiceSettings(QObject *context, const QString &serviceType,
    EasAccountId accountId, const std::function<void()> &changed);

/**
 * What every binding of a configuration shares: the account record, the table of settings and the values read
 * last. Abstract is the configuration's interface, Values the structure of its settings.
 *
 * A binding names its service, gives its table, and emits its own signal when refresh() reports a change.
 */
template <class Abstract, class SettingValues> class RecordConfiguration : public Abstract
{
protected:
    using Rows = QVector<SettingRow<SettingValues>>;

    RecordConfiguration(Accounts::Account *account, EasAccountId accountId, const RecordScope &service,
        const Rows &rows, QObject *parent)
        : Abstract(accountId, parent)
        , mRecord(account)
        , mService(service)
        , mRows(rows)
    {
    }

    /** Reads all settings anew; true if any of them differs from the value before. */
    bool refresh()
    {
        bool changed = false;
        for (const SettingRow<SettingValues> &row : mRows) {
            const RecordScope scope = row.global ? RecordScope::global() : mService;
            changed |= storeSetting(row, mRecord.value(scope, QLatin1String(row.key)), mValues);
        }
        return changed;
    }

    /** Writes one key of the service; the operation's name is for the log. */
    bool writeSetting(const char *key, const QVariant &value, const char *operation)
    {
        if (mRecord.write(mService, QLatin1String(key), value))
            return true;
        qCCritical(eas()) << operation << "failed to write" << key << "of account" << this->accountId();
        return false;
    }

    /** Calls back whenever the service's settings were written, also by other processes. */
    void follow(const std::function<void()> &changed)
    {
        mManager = followServiceSettings(this, mService.serviceType, this->accountId(), changed);
    }

    bool serviceFound() const { return mRecord.contains(mService); }
    QVariant serviceValue(const char *key) const { return mRecord.value(mService, QLatin1String(key)); }
    const SettingValues &values() const { return mValues; }
    Accounts::Account *account() const { return mRecord.account(); }

private:
    std::shared_ptr<Accounts::Manager> mManager;
    AccountRecord mRecord;
    RecordScope mService;
    const Rows &mRows;
    SettingValues mValues;
};
