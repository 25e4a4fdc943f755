// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/imapclient.h"
#include "support/buildpaths.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace {

constexpr int Timeout = 120000;

ImapAddresses addresses(const QJsonValue &value)
{
    ImapAddresses list;
    for (const QJsonValue &entry : value.toArray())
        list.append({ entry.toArray().at(0).toString(), entry.toArray().at(1).toString() });
    return list;
}

ImapPart part(const QJsonObject &object)
{
    ImapPart part;
    part.path = object[QLatin1String("path")].toString();
    part.type = object[QLatin1String("type")].toString();
    part.name = object[QLatin1String("name")].toString();
    part.disposition = object[QLatin1String("disposition")].toString();
    part.contentId = object[QLatin1String("contentId")].toString();
    part.size = object[QLatin1String("size")].toInt();
    part.encodedSize = object[QLatin1String("encodedSize")].toInt();
    part.sha256 = object[QLatin1String("sha256")].toString();
    return part;
}

ImapMessage message(const QJsonObject &object)
{
    ImapMessage message;
    message.folder = object[QLatin1String("folder")].toString();
    message.uid = object[QLatin1String("uid")].toInt();
    message.read = object[QLatin1String("read")].toBool();
    message.subject = object[QLatin1String("subject")].toString();
    message.from = addresses(object[QLatin1String("from")]);
    message.to = addresses(object[QLatin1String("to")]);
    message.cc = addresses(object[QLatin1String("cc")]);
    message.date = QDateTime::fromSecsSinceEpoch(qint64(object[QLatin1String("date")].toDouble()), Qt::UTC);
    message.text = object[QLatin1String("text")].toString();
    message.html = object[QLatin1String("html")].toString();
    for (const QJsonValue &entry : object[QLatin1String("parts")].toArray())
        message.parts.append(part(entry.toObject()));
    return message;
}

} // namespace

ImapClient::ImapClient(const QString &host, int port, const QString &user, const QString &password)
    : mHost(host)
    , mPort(port)
    , mUser(user)
    , mPassword(password)
{
}

QJsonArray ImapClient::run(const QJsonArray &step)
{
    const QJsonObject order { { QStringLiteral("host"), mHost }, { QStringLiteral("port"), mPort },
        { QStringLiteral("user"), mUser }, { QStringLiteral("password"), mPassword },
        { QStringLiteral("steps"), QJsonArray { step } } };
    QProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start(QStringLiteral("python3"), { BuildPaths::source(QStringLiteral("tests/interop/imap.py")) });
    process.write(QJsonDocument(order).toJson(QJsonDocument::Compact));
    process.closeWriteChannel();
    if (process.waitForFinished(Timeout) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0)
        return QJsonDocument::fromJson(process.readAllStandardOutput()).array().at(0).toArray();
    qWarning().noquote() << "IMAP failed:" << QString::fromUtf8(process.readAllStandardError());
    mValid = false;
    return {};
}

QStringList ImapClient::folders()
{
    QStringList names;
    for (const QJsonValue &name : run({ QStringLiteral("folders") }))
        names.append(name.toString());
    return names;
}

QList<ImapMessage> ImapClient::messages()
{
    QList<ImapMessage> list;
    for (const QJsonValue &entry : run({ QStringLiteral("messages") }))
        list.append(message(entry.toObject()));
    return list;
}

QByteArray ImapClient::source(const QString &folder, const QString &subject)
{
    const QJsonArray result = run({ QStringLiteral("source"), folder, subject });
    return QByteArray::fromBase64(result.at(0).toString().toLatin1());
}

bool ImapClient::change(const QStringList &step)
{
    run(QJsonArray::fromStringList(step));
    return mValid;
}

bool ImapClient::append(const QString &folder, const QString &subject, const QStringList &flags)
{
    const QString text =
        QStringLiteral("From: Bob Brown <bob@example.org>\nTo: someone@example.org\nSubject: %1\n"
                       "Date: Tue, 2 Jan 2024 03:04:05 +0000\nMIME-Version: 1.0\n"
                       "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: 8bit\n\n"
                       "The text of %1.\n")
            .arg(subject);
    return change(QStringList { QStringLiteral("append"), folder, text } + flags);
}

bool ImapClient::setFlag(const QString &folder, const QString &subject, const QString &flag, bool set)
{
    return change(
        { QStringLiteral("flag"), folder, subject, set ? QStringLiteral("+") : QStringLiteral("-"), flag });
}

bool ImapClient::remove(const QString &folder, const QString &subject)
{
    return change({ QStringLiteral("delete"), folder, subject });
}

bool ImapClient::move(const QString &folder, const QString &subject, const QString &target)
{
    return change({ QStringLiteral("move"), folder, subject, target });
}

bool ImapClient::createFolder(const QString &folder)
{
    return change({ QStringLiteral("create"), folder });
}

bool ImapClient::renameFolder(const QString &folder, const QString &target)
{
    return change({ QStringLiteral("rename"), folder, target });
}

bool ImapClient::removeFolder(const QString &folder)
{
    return change({ QStringLiteral("remove"), folder });
}
