// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactcards.h"

#include "client/contactbook.h"
#include "client/contactview.h"
#include "client/output.h"
#include "client/plaindetail.h"

#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNickname>
#include <QtContacts/QContactOrganization>
#include <QtVersit/QVersitContactExporter>
#include <QtVersit/QVersitContactImporter>
#include <QtVersit/QVersitReader>
#include <QtVersit/QVersitWriter>

#include <QBuffer>

QTCONTACTS_USE_NAMESPACE
QTVERSIT_USE_NAMESPACE

namespace {

template <class Detail> void keepPlain(QContact &contact)
{
    QList<Detail> details = contact.details<Detail>();
    for (Detail &detail : details) {
        if (!detail.detailUri().isEmpty())
            contact.removeDetail(&detail);
    }
}

/**
 * The contact as a card can have it: without the readings of its names, of which a card would take one for
 * the name itself, and with a name, without which there is no card.
 */
QContact prepared(const QContact &original)
{
    QContact contact = original;
    keepPlain<QContactName>(contact);
    keepPlain<QContactNickname>(contact);
    keepPlain<QContactOrganization>(contact);
    auto name = PlainDetail::plain<QContactName>(contact);
    if (ContactView::fullName(name).isEmpty() && name.prefix().isEmpty()) {
        name.setFirstName(ContactView::name(original));
        contact.saveDetail(&name);
    }
    return contact;
}

/** Marks the second and third address, which the server keeps in fields of their own. */
void markEmails(QContact &contact)
{
    const QStringList &uris = PlainDetail::emailUris();
    QList<QContactEmailAddress> addresses = contact.details<QContactEmailAddress>();
    for (int i = 1; i < qMin(addresses.size(), uris.size()); ++i) {
        addresses[i].setDetailUri(uris.at(i));
        contact.saveDetail(&addresses[i]);
    }
}

bool exportOne(const QContact &contact, QList<QVersitDocument> *documents)
{
    QVersitContactExporter exporter;
    if (!exporter.exportContacts({ prepared(contact) }, QVersitDocument::VCard30Type))
        return false;
    documents->append(exporter.documents());
    return true;
}

} // namespace

bool ContactCards::write(const QList<QContact> &contacts, QByteArray *cards)
{
    QList<QVersitDocument> documents;
    QStringList missing;
    for (const QContact &contact : contacts) {
        if (!exportOne(contact, &documents))
            missing.append(ContactBook::number(contact));
    }
    if (!missing.isEmpty())
        Output::error(
            QStringLiteral("no card can be made of contact %1").arg(missing.join(QStringLiteral(", "))));
    if (documents.isEmpty())
        return missing.isEmpty();
    QBuffer buffer(cards);
    buffer.open(QIODevice::WriteOnly);
    QVersitWriter writer(&buffer);
    const bool isWritten = writer.startWriting(documents) && writer.waitForFinished()
        && writer.error() == QVersitWriter::NoError;
    if (!isWritten)
        Output::error(QStringLiteral("the contacts cannot be written as vCard"));
    return isWritten && missing.isEmpty();
}

bool ContactCards::read(const QByteArray &cards, QList<QContact> *contacts)
{
    QVersitReader reader(cards);
    QVersitContactImporter importer;
    const bool isRead = reader.startReading() && reader.waitForFinished()
        && reader.error() == QVersitReader::NoError && !reader.results().isEmpty();
    if (!isRead || !importer.importDocuments(reader.results())) {
        Output::error(QStringLiteral("what was given is not a file of vCards"));
        return false;
    }
    *contacts = importer.contacts();
    for (QContact &contact : *contacts)
        markEmails(contact);
    return true;
}
