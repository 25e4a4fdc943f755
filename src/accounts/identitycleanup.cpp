// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/identitycleanup.h"

#include "accounts/identityremoval.h"
#include "accounts/identityusers.h"
#include "accounts/waitingidentities.h"
#include "application/base/logging.h"

IdentityCleanUp::IdentityCleanUp(QObject *parent)
    : QObject(parent)
{
}

void IdentityCleanUp::start()
{
    const WaitingIdentities::Identities waiting = WaitingIdentities().all().valueOr({});
    for (const quint32 identity : waiting) {
        const Lookup<Existence> users = IdentityUsers::any(identity);
        if (!users)
            qCWarning(eas()) << "identity" << identity << "waits, the account records cannot be read";
        else if (*users == Existence::Present)
            qCInfo(eas()) << "identity" << identity << "stays, an account names it";
        else
            remove(identity);
    }
}

void IdentityCleanUp::remove(quint32 identity)
{
    auto *const removal = new IdentityRemoval(identity, this);
    connect(removal, &IdentityRemoval::finished, this, [this, removal](bool removed) {
        removal->deleteLater();
        if (removed && WaitingIdentities().remove(removal->credentialsId()))
            qCInfo(eas()) << "identity" << removal->credentialsId() << "of a wiped account is gone";
        Q_EMIT tried(removal->credentialsId(), removed);
    });
    removal->start();
}
