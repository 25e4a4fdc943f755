// SPDX-License-Identifier: LGPL-2.1-or-later
#include "samplemessages.h"

QByteArray SampleMessages::attachment()
{
    return QByteArray("0123456789").repeated(100) + QByteArray("\0\xFF end", 6);
}

QByteArray SampleMessages::nested()
{
    return "From: =?utf-8?Q?J=C3=BCrgen_M=C3=BCller?= <juergen@example.com>\r\n"
           "To: Bob Reader <bob@example.com>, carol@example.com\r\n"
           "Cc: \"Dave, D.\" <dave@example.com>\r\n"
           "Reply-To: team@example.com\r\n"
           "Subject: RE: =?utf-8?B?w5xiZXJzaWNodCDigqw=?=\r\n"
           "Date: Thu, 02 May 2024 09:30:00 +0200\r\n"
           "Importance: high\r\n"
           "MIME-Version: 1.0\r\n"
           "Content-Type: multipart/mixed; boundary=\"outer\"\r\n\r\n"
           "--outer\r\nContent-Type: multipart/related; boundary=\"related\"\r\n\r\n"
           "--related\r\nContent-Type: multipart/alternative; boundary=\"inner\"\r\n\r\n"
           "--inner\r\nContent-Type: text/plain; charset=iso-8859-1\r\nContent-Transfer-Encoding: "
           "quoted-printable\r\n\r\n"
           "Gr=FC=DFe aus K=F6ln\r\n"
           "--inner\r\nContent-Type: text/html; charset=utf-8\r\nContent-Transfer-Encoding: 8bit\r\n\r\n"
           "<html><body><p>Gr\xC3\xBC\xC3\x9F"
           "e aus <b>K\xC3\xB6ln</b></p><img src=\"cid:image1\"></body></html>\r\n"
           "--inner--\r\n"
           "--related\r\nContent-Type: image/png\r\nContent-ID: <image1>\r\nContent-Disposition: inline; "
           "filename=\"logo.png\"\r\nContent-Transfer-Encoding: base64\r\n\r\n"
        + QByteArray("\x89PNG fake").toBase64()
        + "\r\n--related--\r\n"
          "--outer\r\nContent-Type: application/octet-stream\r\nContent-Disposition: attachment;\r\n"
          " filename*=utf-8''%C3%9Cbersicht%202024.txt\r\nContent-Transfer-Encoding: base64\r\n\r\n"
        + attachment().toBase64() + "\r\n--outer--\r\n";
}

QByteArray SampleMessages::meetingRequest()
{
    return "From: Olga Organizer <olga@example.com>\r\nTo: Bob Reader <bob@example.com>\r\nSubject: "
           "Planning\r\n"
           "Date: Mon, 06 May 2024 08:00:00 +0000\r\nMIME-Version: 1.0\r\n"
           "Content-Type: multipart/alternative; boundary=\"b\"\r\n\r\n"
           "--b\r\nContent-Type: text/plain; charset=utf-8\r\n\r\nWhen: Friday\r\n"
           "--b\r\nContent-Type: text/calendar; charset=utf-8; method=REQUEST\r\n\r\n"
           "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nMETHOD:REQUEST\r\nBEGIN:VEVENT\r\nUID:event-1@example.com\r\n"
           "DTSTAMP:20240506T080000Z\r\nDTSTART;TZID=Europe/Berlin:20240510T090000\r\n"
           "DTEND;TZID=Europe/Berlin:20240510T100000\r\nSUMMARY:Planning\r\nLOCATION:Room\\, 2nd floor\r\n"
           "ORGANIZER;CN=Olga:mailto:olga@example.com\r\nRRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,FR;COUNT=5\r\n"
           "END:VEVENT\r\nEND:VCALENDAR\r\n"
           "--b--\r\n";
}

QByteArray SampleMessages::signedMessage()
{
    return "From: ann@example.com\r\nTo: bob@example.com\r\nSubject: Signed\r\n"
           "Date: Mon, 06 May 2024 08:00:00 +0000\r\nMIME-Version: 1.0\r\n"
           "Content-Type: multipart/signed; protocol=\"application/pkcs7-signature\"; boundary=\"s\"\r\n\r\n"
           "--s\r\nContent-Type: text/plain\r\n\r\nSigned text\r\n"
           "--s\r\nContent-Type: application/pkcs7-signature; name=\"smime.p7s\"\r\n"
           "Content-Disposition: attachment; filename=\"smime.p7s\"\r\nContent-Transfer-Encoding: "
           "base64\r\n\r\n"
           "AAEC\r\n--s--\r\n";
}
