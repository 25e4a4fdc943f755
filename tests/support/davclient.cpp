// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/davclient.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QLocale>
#include <QNetworkReply>
#include <QTimer>
#include <QXmlStreamReader>

#include <memory>

namespace {

constexpr int clockTimeout = 60000;

struct KindTexts
{
    QString folder;
    QString data; ///< the element with an entry's text
    QByteArray type;
    QByteArray query;
};

const KindTexts &textsOf(DavClient::Kind kind)
{
    static const KindTexts calendar { QStringLiteral("Calendar"), QStringLiteral("calendar-data"),
        "text/calendar",
        "<?xml version=\"1.0\"?><C:calendar-query xmlns=\"DAV:\" xmlns:C=\"urn:ietf:params:xml:ns:caldav\">"
        "<prop><getetag/><C:calendar-data/></prop>"
        "<C:filter><C:comp-filter name=\"VCALENDAR\"><C:comp-filter "
        "name=\"VEVENT\"/></C:comp-filter></C:filter></C:calendar-query>" };
    static const KindTexts addressBook { QStringLiteral("Contacts"), QStringLiteral("address-data"),
        "text/vcard",
        "<?xml version=\"1.0\"?><C:addressbook-query xmlns=\"DAV:\" "
        "xmlns:C=\"urn:ietf:params:xml:ns:carddav\">"
        "<prop><getetag/><C:address-data/></prop><C:filter/></C:addressbook-query>" };
    return kind == DavClient::Calendar ? calendar : addressBook;
}

} // namespace

DavClient::DavClient(Kind kind, const QString &host, int port, const QString &user, const QString &password)
    : mKind(kind)
    , mCollection(QStringLiteral("http://%1:%2/SOGo/dav/%3/%4/personal/")
                      .arg(host)
                      .arg(port)
                      .arg(user, textsOf(kind).folder))
    , mAuthorization("Basic " + (user + QLatin1Char(':') + password).toUtf8().toBase64())
{
}

DavClient::Answer DavClient::send(
    const QByteArray &verb, const QString &address, const QByteArray &body, const QByteArray &type)
{
    QNetworkRequest request(address.isEmpty() ? mCollection : mCollection.resolved(QUrl(address)));
    request.setRawHeader("Authorization", mAuthorization);
    request.setRawHeader("Content-Type", type);
    request.setRawHeader("Depth", "1");
    const std::unique_ptr<QNetworkReply> reply(mNetwork.sendCustomRequest(request, verb, body));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return { reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll(),
        reply->rawHeader("Date") };
}

QMap<QString, QString> DavClient::report(const QString &element)
{
    const Answer answer = send("REPORT", QString(), textsOf(mKind).query);
    QMap<QString, QString> found;
    QXmlStreamReader xml(answer.body);
    QString address;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("href"))
            address = xml.readElementText();
        else if (xml.name() == element)
            found.insert(address, xml.readElementText());
    }
    return answer.status == 207 && !xml.hasError() ? found : QMap<QString, QString>();
}

std::optional<QMap<QString, QString>> DavClient::texts()
{
    if (send("OPTIONS", QString()).status != 200)
        return std::nullopt;
    return report(textsOf(mKind).data);
}

QMap<QString, QString> DavClient::marks()
{
    return report(QStringLiteral("getetag"));
}

bool DavClient::put(const QString &address, const QByteArray &text)
{
    const int status = send("PUT", address, text, textsOf(mKind).type).status;
    return status >= 200 && status < 300;
}

bool DavClient::remove(const QString &address)
{
    const int status = send("DELETE", address).status;
    return status >= 200 && status < 300;
}

bool DavClient::leaveThisSecond()
{
    // Its answers tell the time; a change of the text is a new second.
    const QByteArray start = send("OPTIONS", QString()).date;
    QByteArray latest = start;
    int seconds = 0;
    QElapsedTimer timer;
    timer.start();
    while (!start.isEmpty() && seconds < 2 && timer.elapsed() < clockTimeout) {
        const QByteArray now = send("OPTIONS", QString()).date;
        if (now != latest)
            ++seconds;
        latest = now;
    }
    return seconds == 2;
}
