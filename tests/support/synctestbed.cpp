// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/synctestbed.h"

#include "support/maillisting.h"

SyncTestBed::SyncTestBed(const QStringList &versions)
{
    mServer.addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    mServer.setVersions(versions);
    if (!mServer.start())
        return;
    AccountOptions options;
    options.port = mServer.port();
    options.preferredVersion = versions.last();
    start(options);
}

QStringList SyncTestBed::serverState()
{
    return MailListing::serverMessages(mailbox());
}

QStringList SyncTestBed::serverFolders()
{
    return MailListing::serverFolders(mailbox());
}

QByteArray SyncTestBed::message(const QString &subject, const QString &text)
{
    return QStringLiteral("From: Bob <bob@example.com>\r\nTo: Alice <alice@example.com>\r\nSubject: %1\r\n"
                          "Date: Tue, 2 Jan 2024 03:04:05 +0000\r\nMIME-Version: 1.0\r\n"
                          "Content-Type: text/plain; charset=utf-8\r\n\r\n%2\r\n")
        .arg(subject, text)
        .toUtf8();
}
