// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/accountfactory.h"

#include <Accounts/Account>
#include <Accounts/Manager>
#include <SignOn/AuthSession>
#include <SignOn/Identity>
#include <SignOn/IdentityInfo>
#include <SignOn/SessionData>

#include <QDebug>
#include <QEventLoop>
#include <QTimer>

#include <functional>

namespace {

constexpr int signOnTimeout = 20000;
const QString passwordMethod = QStringLiteral("password");
const QString credentialsIdKey = QStringLiteral("CredentialsId");

using Done = std::function<void()>;

/** Runs an operation of the sign-on service to its end; the operation calls the function it is given. */
void await(const std::function<void(const Done &)> &operation)
{
    QEventLoop loop;
    QTimer::singleShot(signOnTimeout, &loop, &QEventLoop::quit);
    bool finished = false;
    operation([&] {
        finished = true;
        loop.quit();
    });
    if (!finished)
        loop.exec();
}

} // namespace

AccountFactory::AccountFactory()
    : mManager(new Accounts::Manager)
{
}

AccountFactory::~AccountFactory()
{
    const QList<EasAccountId> created = mCreated;
    for (const EasAccountId id : created)
        remove(id);
}

EasAccountId AccountFactory::create(const AccountOptions &options)
{
    Accounts::Account *account = mManager->createAccount(QStringLiteral("fenneleas"));
    if (!account)
        return 0;
    fillGlobalPart(account, options);
    fillServices(account, options);
    account->selectService();
    if (!account->syncAndBlock())
        return 0;
    mCreated.append(account->id());
    return account->id();
}

void AccountFactory::fillGlobalPart(Accounts::Account *account, const AccountOptions &options) const
{
    account->selectService();
    account->setDisplayName(options.emailAddress);
    account->setEnabled(options.enabled);
    account->setValue(QStringLiteral("default_credentials_username"), options.userName);
    account->setValue(QStringLiteral("connection/emailaddress"), options.emailAddress);
    account->setValue(QStringLiteral("network/server_address"), options.host);
    account->setValue(QStringLiteral("folderSyncPolicy"), options.folderSyncPolicy);
    if (!options.preferredVersion.isEmpty())
        account->setValue(QStringLiteral("connection/preferred_protocol_version"), options.preferredVersion);
    if (options.withIdentity)
        account->setValue(credentialsIdKey, storeIdentity(options.userName, options.password));
}

void AccountFactory::fillServices(Accounts::Account *account, const AccountOptions &options) const
{
    const Accounts::ServiceList services = account->services();
    for (const Accounts::Service &service : services) {
        account->selectService(service);
        if (service.name() == calendarService())
            account->setEnabled(options.calendarsEnabled);
        else if (service.name() == contactsService())
            account->setEnabled(options.contactsEnabled);
        if (service.name() != mailService())
            continue;
        account->setEnabled(options.mailEnabled);
        account->setValue(QStringLiteral("connection/server_address"), options.host);
        account->setValue(QStringLiteral("connection/port"), options.port);
        account->setValue(QStringLiteral("connection/secure_connection"), options.secure);
        account->setValue(
            QStringLiteral("connection/accept_all_certificates"), options.acceptAllCertificates);
        account->setValue(QStringLiteral("connection/domain"), options.domain);
    }
}

bool AccountFactory::remove(EasAccountId id)
{
    mCreated.removeAll(id);
    // Somebody else may have removed it meanwhile.
    if (!Accounts::Manager().accountList().contains(static_cast<Accounts::AccountId>(id)))
        return false;
    Accounts::Account *account = select(id, QString());
    if (!account)
        return false;
    account->remove();
    return account->syncAndBlock();
}

bool AccountFactory::setEnabled(EasAccountId id, bool enabled)
{
    return setServiceEnabled(id, QString(), enabled);
}

bool AccountFactory::setServiceEnabled(EasAccountId id, const QString &serviceName, bool enabled)
{
    Accounts::Account *account = select(id, serviceName);
    if (!account)
        return false;
    account->setEnabled(enabled);
    account->selectService();
    return account->syncAndBlock();
}

bool AccountFactory::setValue(
    EasAccountId id, const QString &serviceName, const QString &key, const QVariant &value)
{
    Accounts::Account *account = select(id, serviceName);
    if (!account)
        return false;
    account->setValue(key, value);
    account->selectService();
    return account->syncAndBlock();
}

QVariant AccountFactory::value(EasAccountId id, const QString &serviceName, const QString &key) const
{
    // A manager of its own reads what is stored, whatever signals are still under way.
    const Accounts::Manager reader;
    Accounts::Account *account = reader.account(static_cast<Accounts::AccountId>(id));
    if (!account)
        return QVariant();
    account->selectService(serviceName.isEmpty() ? Accounts::Service() : reader.service(serviceName));
    return account->value(key);
}

bool AccountFactory::changePassword(EasAccountId id, const QString &password)
{
    const quint32 identity = value(id, QString(), credentialsIdKey).toUInt();
    const QString userName = value(id, QString(), QStringLiteral("default_credentials_username")).toString();
    if (storeIdentity(userName, password, identity) != identity)
        return false;
    Accounts::Account *account = select(id, mailService());
    const QString counterKey = QStringLiteral("credentials_update_counter");
    account->setValue(counterKey, account->value(counterKey).toInt() + 1);
    account->setValue(QStringLiteral("CredentialsNeedUpdate"), false);
    account->selectService();
    return account->syncAndBlock();
}

quint32 AccountFactory::storeIdentity(const QString &userName, const QString &secret, quint32 existing)
{
    SignOn::IdentityInfo info;
    info.setCaption(QStringLiteral("test"));
    info.setUserName(userName);
    info.setSecret(secret, true);
    info.setMethod(passwordMethod, { passwordMethod });
    info.setType(SignOn::IdentityInfo::Application);
    // An empty list refuses everybody.
    info.setAccessControlList({ QStringLiteral("*") });
    const std::unique_ptr<SignOn::Identity> identity(
        existing ? SignOn::Identity::existingIdentity(existing) : SignOn::Identity::newIdentity(info));
    quint32 stored = 0;
    await([&](const Done &done) {
        QObject::connect(identity.get(), &SignOn::Identity::credentialsStored, [&stored, done](quint32 id) {
            stored = id;
            done();
        });
        QObject::connect(identity.get(), QOverload<const SignOn::Error &>::of(&SignOn::Identity::error),
            [done](const SignOn::Error &error) {
                qWarning() << "storing an identity failed:" << error.type() << error.message();
                done();
            });
        identity->storeCredentials(info);
    });
    return stored;
}

QString AccountFactory::storedSecret(quint32 id)
{
    const std::unique_ptr<SignOn::Identity> identity(SignOn::Identity::existingIdentity(id));
    if (!identity)
        return QString();
    QString secret;
    await([&](const Done &done) {
        const SignOn::AuthSessionP session = identity->createSession(passwordMethod);
        QObject::connect(
            session.data(), &SignOn::AuthSession::response, [&secret, done](const SignOn::SessionData &data) {
                secret = data.Secret();
                done();
            });
        QObject::connect(session.data(), QOverload<const SignOn::Error &>::of(&SignOn::AuthSession::error),
            [done](const SignOn::Error &) { done(); });
        SignOn::SessionData data;
        data.setUiPolicy(SignOn::NoUserInteractionPolicy);
        session->process(data, passwordMethod);
    });
    return secret;
}

bool AccountFactory::identityExists(quint32 id)
{
    return !storedSecret(id).isNull();
}

Accounts::Account *AccountFactory::select(EasAccountId id, const QString &serviceName) const
{
    Accounts::Account *account = mManager->account(static_cast<Accounts::AccountId>(id));
    if (!account)
        return nullptr;
    account->selectService(serviceName.isEmpty() ? Accounts::Service() : mManager->service(serviceName));
    return account;
}
