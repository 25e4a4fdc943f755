// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/exchangeactivesync.h"

#include <QRegularExpression>
#include <QtEndian>

#include <unistd.h>

namespace {

QString peerAddress()
{
    QString folder = QString::fromLocal8Bit(qgetenv("XDG_RUNTIME_DIR"));
    if (folder.isEmpty())
        folder = QStringLiteral("/run/user/%1").arg(getuid());
    return QStringLiteral("unix:path=%1/fennel-eas/directory").arg(folder);
}

int offsetSeconds(const QString &offset)
{
    if (offset.isEmpty() || offset == QLatin1String("Z"))
        return 0;
    const int minutes = offset.midRef(1, 2).toInt() * 60 + offset.rightRef(2).toInt();
    return (offset.startsWith(QLatin1Char('-')) ? -minutes : minutes) * 60;
}

} // namespace

namespace ExchangeActiveSync {

const QString EAS_DBUS_SERVICE_NAME = QStringLiteral("org.fennelos.easdaemon");
const QString EAS_DBUS_PATH_NAME = QStringLiteral("/org/fennelos/easdaemon");
const QString EAS_DBUS_PEER_PATH_NAME = QStringLiteral("/org/fennelos/easdaemonp2p");
const QString EAS_DBUS_PEER_ADDRESS = peerAddress();

const QString MESSAGE_CLASS_FIELD = QStringLiteral("X-Fennel-EAS-MessageClass");
const QString MESSAGE_GLOBAL_OBJ_ID = QStringLiteral("X-Fennel-EAS-GlobalObjId");
const QString MESSAGE_CLASS_MEETING_REQUEST = QStringLiteral("IPM.Schedule.Meeting.Request");
const QString MESSAGE_CLASS_MEETING_REQUEST_ACCEPT = QStringLiteral("IPM.Schedule.Meeting.Resp.Pos");
const QString MESSAGE_CLASS_MEETING_REQUEST_DECLINE = QStringLiteral("IPM.Schedule.Meeting.Resp.Neg");
const QString MESSAGE_CLASS_MEETING_REQUEST_TENTATIVE = QStringLiteral("IPM.Schedule.Meeting.Resp.Tent");
const QString MESSAGE_CLASS_MEETING_REQUEST_CANCELLED = QStringLiteral("IPM.Schedule.Meeting.Canceled");

const QString CalendarICalVersion = QStringLiteral("2.0");
const QString CalendarBoolValueTrue = QStringLiteral("TRUE");
const QString CalendarBoolValueFalse = QStringLiteral("FALSE");
const QString ExchangeCalendarPluginName = QStringLiteral("fennel-eas");
const QString CalendarUidParamName = QStringLiteral("X-FENNEL-EAS-UID");
const QString CalendarRemoteUidParamName = QStringLiteral("X-FENNEL-EAS-REMOTE-UID");
const QString CalendarBusyStatusParamName = QStringLiteral("X-MICROSOFT-CDO-BUSYSTATUS");
const QString CalendarSensitivityParamName = QStringLiteral("X-FENNEL-EAS-SENSITIVITY");
const QString CalendarMeetingStatusParamName = QStringLiteral("X-FENNEL-EAS-MEETING-STATUS");
const QString CalendarResponseRequestedParamName = QStringLiteral("X-FENNEL-EAS-RESPONSE-REQUESTED");
const QString CalendarResponseTypeParamName = QStringLiteral("X-FENNEL-EAS-RESPONSE-TYPE");
const QString CalendarAppointmentReplyTimeParamName = QStringLiteral("X-FENNEL-EAS-REPLY-TIME");
const QString CalendarDisallowCounterParamName = QStringLiteral("X-MICROSOFT-DISALLOW-COUNTER");
const QString CalendarProposedStartTimeParamName = QStringLiteral("X-FENNEL-EAS-PROPOSED-START");
const QString CalendarProposedEndTimeParamName = QStringLiteral("X-FENNEL-EAS-PROPOSED-END");
const QString CalendarMsAlldayParamName = QStringLiteral("X-MICROSOFT-CDO-ALLDAYEVENT");
const QString CalendarNativeBodyTypeParamName = QStringLiteral("X-FENNEL-EAS-NATIVE-BODY-TYPE");
const QString CalendarMeetingExtLinkParamName = QStringLiteral("X-FENNEL-EAS-MEETING-EXTERNAL-LINK");
const QString CalendarMeetingConfLinkParamName = QStringLiteral("X-FENNEL-EAS-MEETING-CONFERENCE-LINK");

} // namespace ExchangeActiveSync

QDateTime ExchangeActiveSync::dateTimeFromString(const QString &text, const QTimeZone *zone)
{
    static const QRegularExpression form(
        QStringLiteral("\\A([0-9]{4})-?([0-9]{2})-?([0-9]{2})"
                       "(?:T([0-9]{2}):?([0-9]{2}):?([0-9]{2})(?:[.,]([0-9]{1,9})|([0-9]{3}))?(Z|[+-][0-9]{2}"
                       ":?[0-9]{2})?)?\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    const auto number = [&match](int group) {
        return match.capturedRef(group).toInt();
    };
    const QDate date(number(1), number(2), number(3));
    const int milliseconds =
        (match.captured(7) + match.captured(8)).leftJustified(3, QLatin1Char('0'), true).toInt();
    const QTime time(number(4), number(5), number(6), milliseconds);
    if (!date.isValid() || !time.isValid())
        return {};
    const QDateTime utc = QDateTime(date, time, Qt::UTC).addSecs(-offsetSeconds(match.captured(9)));
    return zone != nullptr && zone->isValid() ? utc.toTimeZone(*zone) : utc;
}

QString ExchangeActiveSync::dateTimeToString(const QDateTime &dateTime)
{
    return dateTime.isValid() ? dateTime.toUTC().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'")) : QString();
}

QString ExchangeActiveSync::getCalendarUidFromGlobalObjId(const QByteArray &globalObjId)
{
    // Sixteen bytes of class, four of the instance's date, eight of the creation time, eight reserved, four
    // of length, then the data. Identifiers from foreign calendars hold their UID in clear behind a mark.
    constexpr int instanceOffset = 16;
    constexpr int instanceLength = 4;
    constexpr int lengthOffset = 36;
    constexpr int dataOffset = 40;
    const QByteArray mark = QByteArrayLiteral("vCal-Uid\x01\x00\x00\x00").left(12);

    const auto decoded =
        QByteArray::fromBase64Encoding(globalObjId.trimmed(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() < dataOffset)
        return {};
    QByteArray id = decoded.decoded;
    if (id.mid(dataOffset, 8) == mark.left(8)) {
        const auto length = qFromLittleEndian<quint32>(id.constData() + lengthOffset);
        const QByteArray data = id.mid(dataOffset, static_cast<int>(qMin<quint32>(length, 0x10000)));
        return QString::fromUtf8(data.mid(mark.size()).constData()); // up to the closing zero
    }
    id.replace(instanceOffset, instanceLength, QByteArray(instanceLength, '\0')); // the series, not one day
    return QString::fromLatin1(id.toHex().toUpper());
}

void ExchangeActiveSync::getTypeParts(const QString &contentType, QString *mediaType, QString *name)
{
    static const QRegularExpression nameParameter(
        QStringLiteral(";\\s*(?:file)?name\\s*=\\s*(?:\"([^\"]*)\"|([^;\\s]+))"),
        QRegularExpression::CaseInsensitiveOption);
    if (mediaType != nullptr)
        *mediaType = contentType.section(QLatin1Char(';'), 0, 0).trimmed();
    if (name != nullptr) {
        const QRegularExpressionMatch match = nameParameter.match(contentType);
        *name = match.captured(1) + match.captured(2);
    }
}
