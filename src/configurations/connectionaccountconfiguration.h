// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/baseaccountconfiguration.h"

/** Where and how an account's server is reached. The setters, which a redirect uses, write the account
 * record. */
class ConnectionAccountConfiguration : public BaseAccountConfiguration
{
    Q_OBJECT

public:
    using BaseAccountConfiguration::BaseAccountConfiguration;

    virtual bool acceptAllCertificates() const = 0;
    /** "https" or "http", as secureConnection() says. */
    virtual QString scheme() const;
    /** Sets secureConnection() for "https" or "http"; changes nothing for any other text. */
    virtual void setScheme(const QString &scheme);
    virtual bool secureConnection() const = 0;
    virtual void setSecureConnection(bool secure) = 0;
    virtual int portNumber() const = 0;
    virtual void setPortNumber(int port) = 0;
    virtual QString serverAddress() const = 0;
    virtual void setServerAddress(const QString &address) = 0;
    virtual QString domainName() const = 0;
    virtual QString serverPath() const;
    /** Path of a PKCS #12 file, or empty. */
    virtual QString userCertificatePath() const = 0;

Q_SIGNALS:
    void connectionConfigurationChanged(EasAccountId accountId);
};
