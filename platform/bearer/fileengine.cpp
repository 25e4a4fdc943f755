// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fileengine.h"

#include "bearerstate.h"
#include "filesession.h"

#include <QFileInfo>

namespace {

QNetworkConfiguration::StateFlags configurationState(QNetworkSession::State state)
{
    switch (state) {
    case QNetworkSession::Connected:
    case QNetworkSession::Roaming:
        return QNetworkConfiguration::Active;
    case QNetworkSession::NotAvailable:
    case QNetworkSession::Invalid:
        return QNetworkConfiguration::Defined;
    default:
        return QNetworkConfiguration::Discovered;
    }
}

} // namespace

FileEngine::FileEngine()
    : mConfiguration(new QNetworkConfigurationPrivate)
{
    mConfiguration->id = QStringLiteral("fennel-file");
    mConfiguration->name = QStringLiteral("file");
    mConfiguration->isValid = true;
    mConfiguration->type = QNetworkConfiguration::InternetAccessPoint;
    mConfiguration->purpose = QNetworkConfiguration::PublicPurpose;
    mConfiguration->bearerType = QNetworkConfiguration::BearerEthernet;
    setState(BearerState::read());
}

bool FileEngine::hasIdentifier(const QString &id)
{
    return id == mConfiguration->id;
}

QNetworkConfigurationManager::Capabilities FileEngine::capabilities() const
{
    return QNetworkConfigurationManager::ForcedRoaming;
}

QNetworkSessionPrivate *FileEngine::createSessionBackend()
{
    return new FileSession(this);
}

QNetworkConfigurationPrivatePointer FileEngine::defaultConfiguration()
{
    return mConfiguration;
}

QNetworkSession::State FileEngine::state() const
{
    const QMutexLocker locker(&mutex);
    return mState;
}

void FileEngine::initialize()
{
    {
        const QMutexLocker locker(&mutex);
        accessPointConfigurations.insert(mConfiguration->id, mConfiguration);
    }
    Q_EMIT configurationAdded(mConfiguration);
    mWatcher = new QFileSystemWatcher(this);
    connect(mWatcher, &QFileSystemWatcher::fileChanged, this, &FileEngine::onFileChanged);
    connect(mWatcher, &QFileSystemWatcher::directoryChanged, this, &FileEngine::onFileChanged);
    watchFile();
    // The file may have changed since the constructor.
    onFileChanged();
    Q_EMIT updateCompleted();
}

void FileEngine::requestUpdate()
{
    onFileChanged();
    Q_EMIT updateCompleted();
}

void FileEngine::onFileChanged()
{
    if (mWatcher)
        watchFile();
    const QFileInfo file(BearerState::fileName());
    const bool isBeingWritten = file.exists() && file.size() == 0;
    const QNetworkSession::State newState = BearerState::read();
    if (isBeingWritten || newState == state())
        return;
    setState(newState);
    Q_EMIT configurationChanged(mConfiguration);
    Q_EMIT stateChanged();
}

void FileEngine::watchFile()
{
    // The folder tells when the file appears or is replaced; the file itself when it is written in place.
    const QFileInfo file(BearerState::fileName());
    if (file.filePath().isEmpty())
        return;
    if (!mWatcher->directories().contains(file.absolutePath()))
        mWatcher->addPath(file.absolutePath());
    // The watcher still lists the name of a file that was replaced, but watches the one before.
    if (mWatcher->files().contains(file.absoluteFilePath()))
        mWatcher->removePath(file.absoluteFilePath());
    if (file.exists())
        mWatcher->addPath(file.absoluteFilePath());
}

void FileEngine::setState(QNetworkSession::State state)
{
    const QMutexLocker engineLocker(&mutex);
    const QMutexLocker configurationLocker(&mConfiguration->mutex);
    mState = state;
    mConfiguration->state = configurationState(state);
}
