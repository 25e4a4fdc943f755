// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class QJsonArray;
class QJsonObject;

/** A part of a message other than its texts. */
struct ImapPart
{
    QString path;
    QString type;
    QString name;
    QString disposition;
    QString contentId;
    int size = 0;
    int encodedSize = 0;
    QString sha256;
};

using ImapAddresses = QList<QPair<QString, QString>>;

/** A message as another implementation of mail reads it. */
struct ImapMessage
{
    QString folder;
    int uid = 0;
    bool read = false;
    QString subject;
    ImapAddresses from;
    ImapAddresses to;
    ImapAddresses cc;
    QDateTime date;
    /** Null where there is no such part. */
    QString text;
    QString html;
    QList<ImapPart> parts;
};

/**
 * The same mailbox through another protocol and another implementation: what a sync has to agree with, and
 * the other client that changes things. Messages are named by their subjects, folders by their paths.
 */
class ImapClient
{
public:
    ImapClient(const QString &host, int port, const QString &user, const QString &password);

    /** False after the first operation that failed; the reason was a warning. */
    bool isValid() const { return mValid; }

    QStringList folders();
    QList<ImapMessage> messages();

    /** A message as it lies there. */
    QByteArray source(const QString &folder, const QString &subject);
    bool append(const QString &folder, const QString &subject, const QStringList &flags = {});
    bool setFlag(const QString &folder, const QString &subject, const QString &flag, bool set);
    bool remove(const QString &folder, const QString &subject);
    bool move(const QString &folder, const QString &subject, const QString &target);
    bool createFolder(const QString &folder);
    bool renameFolder(const QString &folder, const QString &target);
    bool removeFolder(const QString &folder);

private:
    /** The result of one step, or null. */
    QJsonArray run(const QJsonArray &step);
    bool change(const QStringList &step);

    QString mHost;
    int mPort;
    QString mUser;
    QString mPassword;
    bool mValid = true;
};
