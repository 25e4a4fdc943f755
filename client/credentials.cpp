// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/credentials.h"

#include "client/output.h"

#include <QCoreApplication>
#include <SignOn/Identity>

#include <memory>

namespace {

void reportError(const SignOn::Error &error)
{
    Output::error(QStringLiteral("the sign-on service refused: %1").arg(error.message()));
    QCoreApplication::exit(1);
}

std::unique_ptr<SignOn::Identity> openIdentity(quint32 identity)
{
    std::unique_ptr<SignOn::Identity> opened(
        identity != 0 ? SignOn::Identity::existingIdentity(identity) : SignOn::Identity::newIdentity());
    if (opened)
        QObject::connect(
            opened.get(), QOverload<const SignOn::Error &>::of(&SignOn::Identity::error), &reportError);
    return opened;
}

} // namespace

quint32 Credentials::store(
    quint32 identity, const QString &caption, const QString &userName, const QString &password)
{
    const auto opened = openIdentity(identity);
    if (!opened)
        return 0;
    SignOn::IdentityInfo info;
    info.setCaption(caption);
    info.setUserName(userName);
    info.setSecret(password, true);
    info.setMethod(QStringLiteral("password"), { QStringLiteral("password") });
    // An identity without a list can be read by nobody, not even by who stored it.
    info.setAccessControlList({ QStringLiteral("*") });

    quint32 stored = 0;
    QObject::connect(opened.get(), &SignOn::Identity::credentialsStored, [&stored](quint32 id) {
        stored = id;
        QCoreApplication::exit(0);
    });
    opened->storeCredentials(info);
    QCoreApplication::exec();
    return stored;
}

bool Credentials::remove(quint32 identity)
{
    if (identity == 0)
        return true;
    const auto opened = openIdentity(identity);
    if (!opened)
        return true;
    QObject::connect(opened.get(), &SignOn::Identity::removed, [] { QCoreApplication::exit(0); });
    opened->remove();
    return QCoreApplication::exec() == 0;
}
