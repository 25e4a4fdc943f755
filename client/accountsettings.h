// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/** Where a server is. */
struct ServerAddress
{
    QString host;
    int port = 0;
    bool isSecure = true;
};

/** What the user tells of an account; what is not told stays as it is. */
struct AccountSettings
{
    std::optional<QString> name;
    std::optional<QString> emailAddress;
    std::optional<QString> userName;
    std::optional<QString> domain;
    std::optional<ServerAddress> server;
    std::optional<bool> acceptAllCertificates;
    std::optional<QString> protocolVersion;
    /** "all", "inbox" or "marked". */
    std::optional<QString> folders;
    std::optional<int> pastTime;
    /** Of "mail", "calendar" and "contacts". */
    std::optional<QStringList> services;
};
