// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtNetwork/private/qnetworksession_p.h>

class FileEngine;

/** A session that follows the engine's state. It has no interface of its own to open or close. */
class FileSession : public QNetworkSessionPrivate
{
    Q_OBJECT

public:
    explicit FileSession(FileEngine *engine);

    void syncStateWithInterface() override;
    QNetworkInterface currentInterface() const override;
    QVariant sessionProperty(const QString &key) const override;
    void setSessionProperty(const QString &key, const QVariant &value) override;

    void open() override;
    void close() override;
    void stop() override;
    void migrate() override;
    void accept() override;
    void ignore() override;
    void reject() override;

    QString errorString() const override;
    QNetworkSession::SessionError error() const override;
    quint64 bytesWritten() const override;
    quint64 bytesReceived() const override;
    quint64 activeTime() const override;
    QNetworkSession::UsagePolicies usagePolicies() const override;
    void setUsagePolicies(QNetworkSession::UsagePolicies policies) override;

private:
    void onStateChanged();

    FileEngine *mEngine;
};
