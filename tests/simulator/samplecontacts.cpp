// SPDX-License-Identifier: LGPL-2.1-or-later
#include "samplecontacts.h"

using Simulator::Contact;

namespace {

QString element(const QString &name, const QString &content)
{
    return QStringLiteral("<%1>%2</%1>").arg(name, content);
}

QString list(const QString &name, const QString &entryName, const QStringList &entries)
{
    QString inner;
    for (const QString &entry : entries)
        inner += element(entryName, entry.toHtmlEscaped());
    return entries.isEmpty() ? QString() : element(name, inner);
}

/** Those of the second code page. */
bool isOfContacts2(const QString &field)
{
    static const QStringList fields { QStringLiteral("CustomerId"), QStringLiteral("GovernmentId"),
        QStringLiteral("IMAddress"), QStringLiteral("IMAddress2"), QStringLiteral("IMAddress3"),
        QStringLiteral("ManagerName"), QStringLiteral("CompanyMainPhone"), QStringLiteral("AccountName"),
        QStringLiteral("NickName"), QStringLiteral("MMS") };
    return fields.contains(field);
}

} // namespace

Contact SampleContacts::full()
{
    static const QStringList notFromClients { QStringLiteral("Alias"), QStringLiteral("WeightedRank") };
    static const QStringList dates { QStringLiteral("Birthday"), QStringLiteral("Anniversary") };
    Contact contact;
    for (const QString &field : Contact::textFields()) {
        if (dates.contains(field))
            contact.setDate(field, QDate(1971, 2, 28));
        else if (!notFromClients.contains(field))
            contact.setText(field, QStringLiteral("<%1> & äöü 日本").arg(field));
    }
    return contact.setCategories({ QStringLiteral("Friends"), QStringLiteral("Büro") })
        .setChildren({ QStringLiteral("Max"), QStringLiteral("Moritz") })
        .setPicture(QByteArray::fromHex("ffd8ffe000104a464946000102"))
        .setNote(QStringLiteral("First line\r\nSecond line"));
}

QString SampleContacts::asXml(const Contact &contact)
{
    QString xml;
    for (auto text = contact.texts().constBegin(); text != contact.texts().constEnd(); ++text) {
        const QString page = isOfContacts2(text.key()) ? QStringLiteral("c2:") : QStringLiteral("c:");
        xml += element(page + text.key(), text.value().toHtmlEscaped());
    }
    xml += list(QStringLiteral("c:Categories"), QStringLiteral("c:Category"), contact.categories());
    xml += list(QStringLiteral("c:Children"), QStringLiteral("c:Child"), contact.children());
    if (!contact.picture().isEmpty())
        xml += element(QStringLiteral("c:Picture"), QString::fromLatin1(contact.picture().toBase64()));
    if (!contact.note().isEmpty()) {
        // A carriage return that is not escaped would be gone when the text is read.
        const QString text =
            contact.note().toHtmlEscaped().replace(QLatin1Char('\r'), QStringLiteral("&#13;"));
        const QString data = element(QStringLiteral("b:Data"), text);
        xml += element(QStringLiteral("b:Body"), QStringLiteral("<b:Type>1</b:Type>") + data);
    }
    return xml;
}
