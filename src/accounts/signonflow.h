// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QPointer>

namespace SignOn {
class AuthSession;
class Error;
class Identity;
class SessionData;
} // namespace SignOn

/**
 * Fetches one stored secret from the sign-on service, without ever asking the user.
 *
 * A flow runs once and ends with exactly one signal, also when the service is killed meanwhile or does not
 * answer for 30 s, which the service's client library would never tell. Its owner deletes it after that, from
 * the signal with deleteLater(). Main thread only.
 */
class SignOnFlow : public QObject
{
    Q_OBJECT

public:
    enum StartResult { Started, NoIdentity, NoSession };

    explicit SignOnFlow(QObject *parent);
    ~SignOnFlow() override;

    StartResult start(quint32 credentialsId, const QString &method, const QString &mechanism);

Q_SIGNALS:
    void received(const QString &secret);
    void failed(const SignOn::Error &error);

private:
    void onResponse(const SignOn::SessionData &data);
    void onError(const SignOn::Error &error);
    /** False if the flow has already ended. */
    bool end();

    SignOn::Identity *mIdentity = nullptr;
    QPointer<SignOn::AuthSession> mSession;
    bool mEnded = false;
};
