// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/accountsettings.h"

#include <QCommandLineParser>

/**
 * What the user says of an account: the options that adding and editing share. A value on the stack of a
 * command.
 */
class AccountOptions
{
public:
    explicit AccountOptions(QCommandLineParser &parser);

    /** False, after an error was printed, if an option cannot be understood. */
    bool read(AccountSettings *settings) const;
    /** What a new account needs beside its options, from its mail address. */
    bool complete(const QString &emailAddress, AccountSettings *settings) const;

private:
    bool readServer(const QString &text, AccountSettings *settings) const;
    bool readServices(AccountSettings *settings) const;
    bool readCertificates(AccountSettings *settings) const;

    QCommandLineParser &mParser;
};
