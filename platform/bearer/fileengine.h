// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QFileSystemWatcher>
#include <QNetworkSession>
#include <QtNetwork/private/qbearerengine_p.h>

/**
 * Offers one network configuration, the default one, whose state stands in a file.
 *
 * The network library moves the engine to its bearer thread and calls the invokable functions by name there;
 * everything else may be called from any thread.
 */
class FileEngine : public QBearerEngine
{
    Q_OBJECT

public:
    FileEngine();

    bool hasIdentifier(const QString &id) override;
    QNetworkConfigurationManager::Capabilities capabilities() const override;
    QNetworkSessionPrivate *createSessionBackend() override;
    QNetworkConfigurationPrivatePointer defaultConfiguration() override;

    QNetworkSession::State state() const;

    Q_INVOKABLE void initialize();
    Q_INVOKABLE void requestUpdate();

Q_SIGNALS:
    void stateChanged();

private:
    void onFileChanged();
    void watchFile();
    void setState(QNetworkSession::State state);

    QNetworkConfigurationPrivatePointer mConfiguration;
    QFileSystemWatcher *mWatcher = nullptr;
    QNetworkSession::State mState = QNetworkSession::Connected;
};
