// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/authenticationservice.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServer>
#include <QDBusVariant>
#include <QDir>
#include <QMutex>
#include <QMutexLocker>

namespace {

constexpr char addressVariable[] = "FENNEL_AUTHD_ADDRESS";

} // namespace

/** What the service answers; lives in the thread of the service, and is asked by a test from another. */
class AuthenticationOptions : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.halcyonos.AuthService.Settings")

public:
    explicit AuthenticationOptions(const QMap<QString, QVariant> &options)
        : mOptions(options)
    {
    }

    Q_SCRIPTABLE QDBusVariant GetMethodOption(const QString &method, const QString &option)
    {
        const QMutexLocker lock(&mMutex);
        mAsked.append(option);
        if (mIsSilent)
            setDelayedReply(true);
        else if (method != QLatin1String("password") || !mOptions.contains(option))
            sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("no such option"));
        return QDBusVariant(mOptions.value(option, 0));
    }

    void fallSilent()
    {
        const QMutexLocker lock(&mMutex);
        mIsSilent = true;
    }
    QStringList asked() const
    {
        const QMutexLocker lock(&mMutex);
        return mAsked;
    }

private:
    mutable QMutex mMutex;
    QMap<QString, QVariant> mOptions;
    bool mIsSilent = false;
    QStringList mAsked;
};

AuthenticationService::AuthenticationService(const QMap<QString, QVariant> &options)
    : mOptions(std::make_unique<AuthenticationOptions>(options))
{
    AuthenticationOptions *const answering = mOptions.get();
    answering->moveToThread(&mThread);
    mThread.start();
    const QString address = QStringLiteral("unix:tmpdir=") + QDir::tempPath();
    QMetaObject::invokeMethod(
        answering,
        [this, answering, address] {
            mServer = new QDBusServer(address, answering);
            QObject::connect(
                mServer, &QDBusServer::newConnection, answering, [answering](QDBusConnection connection) {
                    connection.registerObject(QStringLiteral("/org/halcyonos/AuthService/Settings"),
                        answering,
                        QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableInvokables);
                });
        },
        Qt::BlockingQueuedConnection);
    qputenv(addressVariable, mServer->address().toUtf8());
}

AuthenticationService::~AuthenticationService()
{
    qunsetenv(addressVariable);
    QMetaObject::invokeMethod(
        mOptions.get(), [this] { delete mServer; }, Qt::BlockingQueuedConnection);
    mThread.quit();
    mThread.wait();
}

void AuthenticationService::fallSilent()
{
    mOptions->fallSilent();
}

QStringList AuthenticationService::asked() const
{
    return mOptions->asked();
}

#include "authenticationservice.moc"
