// SPDX-License-Identifier: LGPL-2.1-or-later
#include "filesession.h"

#include "fileengine.h"

FileSession::FileSession(FileEngine *engine)
    : mEngine(engine)
{
    // The engine lives on the bearer thread.
    connect(engine, &FileEngine::stateChanged, this, &FileSession::onStateChanged, Qt::QueuedConnection);
}

void FileSession::syncStateWithInterface()
{
    serviceConfig = publicConfig;
    activeConfig = publicConfig;
    state = mEngine->state();
}

QNetworkInterface FileSession::currentInterface() const
{
    return QNetworkInterface::interfaceFromName(QStringLiteral("lo"));
}

QVariant FileSession::sessionProperty(const QString &key) const
{
    Q_UNUSED(key)
    return QVariant();
}

void FileSession::setSessionProperty(const QString &key, const QVariant &value)
{
    Q_UNUSED(key)
    Q_UNUSED(value)
}

void FileSession::open()
{
    isOpen = true;
    Q_EMIT q->opened();
    Q_EMIT quitPendingWaitsForOpened();
}

void FileSession::close()
{
    isOpen = false;
    Q_EMIT closed();
}

void FileSession::stop()
{
    close();
}

void FileSession::migrate() {}

void FileSession::accept() {}

void FileSession::ignore() {}

void FileSession::reject() {}

QString FileSession::errorString() const
{
    return QString();
}

QNetworkSession::SessionError FileSession::error() const
{
    return QNetworkSession::UnknownSessionError;
}

quint64 FileSession::bytesWritten() const
{
    return 0;
}

quint64 FileSession::bytesReceived() const
{
    return 0;
}

quint64 FileSession::activeTime() const
{
    return 0;
}

QNetworkSession::UsagePolicies FileSession::usagePolicies() const
{
    return QNetworkSession::NoPolicy;
}

void FileSession::setUsagePolicies(QNetworkSession::UsagePolicies policies)
{
    Q_UNUSED(policies)
}

void FileSession::onStateChanged()
{
    const QNetworkSession::State newState = mEngine->state();
    if (newState == state)
        return;
    state = newState;
    Q_EMIT stateChanged(newState);
}
