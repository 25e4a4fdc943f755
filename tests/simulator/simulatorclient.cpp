// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"

#include "simulator/multipart.h"
#include "simulator/wbxmlcodec.h"

#include <QEventLoop>
#include <QSslConfiguration>
#include <QUrlQuery>

using namespace Simulator;

SimulatorClient::SimulatorClient(const ExchangeServer &server, const QString &version)
    : mServer(server)
    , mVersion(version)
{
}

void SimulatorClient::setCredentials(const QString &user, const QString &password)
{
    mUser = user;
    mPassword = password;
}

QNetworkRequest SimulatorClient::request(const QString &command) const
{
    QUrl url = mServer.url();
    if (!command.isEmpty()) {
        url.setQuery(QStringLiteral("Cmd=%1&User=%2&DeviceId=%3&DeviceType=Test%4")
                         .arg(command, mUser, mDevice, mQuery));
    }
    QNetworkRequest request(url);
    const QByteArray pair = (mUser + QLatin1Char(':') + mPassword).toUtf8();
    request.setRawHeader("Authorization", "Basic " + pair.toBase64());
    request.setRawHeader("MS-ASProtocolVersion", mVersion.toLatin1());
    request.setRawHeader("Content-Type", "application/vnd.ms-sync.wbxml");
    for (const auto &header : mHeaders)
        request.setRawHeader(header.first, header.second);
    if (url.scheme() == QLatin1String("https")) {
        QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
        ssl.addCaCertificate(mServer.certificate());
        request.setSslConfiguration(ssl);
    }
    return request;
}

PlainReply SimulatorClient::finished(QNetworkReply *reply)
{
    if (!reply->isFinished()) {
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
    }
    PlainReply result;
    result.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    result.error = reply->error();
    result.body = reply->readAll();
    const auto pairs = reply->rawHeaderPairs();
    for (const auto &pair : pairs)
        result.headers.append(pair);
    if (result.header("Content-Type") == Multipart::contentType)
        result.document = WbxmlCodec::decode(Multipart::split(result.body).value(0)).root;
    else
        result.document = WbxmlCodec::decode(result.body).root;
    reply->deleteLater();
    return result;
}

PlainReply SimulatorClient::options()
{
    return finished(mManager.sendCustomRequest(request(QString()), "OPTIONS"));
}

PlainReply SimulatorClient::post(const QString &command, const WbxmlNode &document)
{
    return postBytes(command, WbxmlCodec::encode(document));
}

PlainReply SimulatorClient::post(const QString &command, const QString &xml)
{
    return finished(send(command, xml));
}

PlainReply SimulatorClient::postBytes(const QString &command, const QByteArray &body)
{
    return finished(mManager.post(request(command), body));
}

QNetworkReply *SimulatorClient::send(const QString &command, const QString &xml)
{
    QString error;
    const WbxmlNode document = WbxmlNode::fromXml(xml, &error);
    if (!error.isEmpty())
        qFatal("%s in %s", qPrintable(error), qPrintable(xml));
    return mManager.post(request(command), WbxmlCodec::encode(document));
}

QString SimulatorClient::syncXml(const QString &folder, const QString &key, const QString &inner)
{
    return QStringLiteral(
        "<Sync xmlns='AirSync' xmlns:b='AirSyncBase' xmlns:e='Email' xmlns:e2='Email2' xmlns:c='Contacts' "
        "xmlns:c2='Contacts2' xmlns:k='Calendar'><Collections><Collection>"
        "<SyncKey>%1</SyncKey><CollectionId>%2</CollectionId>%3</Collection></Collections></Sync>")
        .arg(key, folder, inner);
}

WbxmlNode SimulatorClient::sync(const QString &folder, const QString &key, const QString &inner)
{
    const bool needsClass = mVersion == QLatin1String("12.0");
    const QString className = needsClass ? QStringLiteral("<Class>%1</Class>").arg(mClass) : QString();
    return post(QStringLiteral("Sync"), syncXml(folder, key, className + inner))
        .document.at(QStringLiteral("Collections/Collection"));
}

QString SimulatorClient::firstKey(const QString &folder, const QString &inner)
{
    return sync(folder, QStringLiteral("0"), inner).text(QStringLiteral("SyncKey"));
}

QByteArray sampleMessage(const QString &subject, const QByteArray &body)
{
    return "From: Ann Author <ann@example.com>\r\nTo: Bob Reader <bob@example.com>\r\nSubject: "
        + subject.toUtf8()
        + "\r\nDate: Thu, 02 May 2024 09:30:00 +0200\r\nMIME-Version: 1.0\r\n"
          "Content-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: 8bit\r\n\r\n"
        + body + "\r\n";
}
