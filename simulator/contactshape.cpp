// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/contactshape.h"

#include "simulator/bodyshape.h"
#include "simulator/datetext.h"
#include "simulator/protocolversion.h"

#include <algorithm>

namespace Simulator {
namespace {

const int largestPicture = 48 * 1024;
const int mostListEntries = 300;

enum class Kind { Text, Date, ReadOnly, Categories, Children, Picture, Note };

struct Row
{
    const char *name;
    Kind kind = Kind::Text;
    int firstVersion = Version120;

    QString qualifiedName() const { return QLatin1String(name); }
    QString field() const { return qualifiedName().section(QLatin1Char(':'), 1); }
    bool isText() const { return kind == Kind::Text || kind == Kind::Date || kind == Kind::ReadOnly; }
};

// The order of replies. The note comes last: its element does not tell a client the class of the item.
const Row rows[] = {
    { "Contacts:FileAs" },
    { "Contacts:FirstName" },
    { "Contacts:MiddleName" },
    { "Contacts:LastName" },
    { "Contacts:Title" },
    { "Contacts:Suffix" },
    { "Contacts:YomiFirstName" },
    { "Contacts:YomiLastName" },
    { "Contacts:YomiCompanyName" },
    { "Contacts:CompanyName" },
    { "Contacts:Department" },
    { "Contacts:JobTitle" },
    { "Contacts:OfficeLocation" },
    { "Contacts:AssistantName" },
    { "Contacts:AssistantPhoneNumber" },
    { "Contacts:Spouse" },
    { "Contacts:Birthday", Kind::Date },
    { "Contacts:Anniversary", Kind::Date },
    { "Contacts:WebPage" },
    { "Contacts:Email1Address" },
    { "Contacts:Email2Address" },
    { "Contacts:Email3Address" },
    { "Contacts:BusinessPhoneNumber" },
    { "Contacts:Business2PhoneNumber" },
    { "Contacts:BusinessFaxNumber" },
    { "Contacts:HomePhoneNumber" },
    { "Contacts:Home2PhoneNumber" },
    { "Contacts:HomeFaxNumber" },
    { "Contacts:MobilePhoneNumber" },
    { "Contacts:CarPhoneNumber" },
    { "Contacts:RadioPhoneNumber" },
    { "Contacts:PagerNumber" },
    { "Contacts:BusinessAddressStreet" },
    { "Contacts:BusinessAddressCity" },
    { "Contacts:BusinessAddressState" },
    { "Contacts:BusinessAddressPostalCode" },
    { "Contacts:BusinessAddressCountry" },
    { "Contacts:HomeAddressStreet" },
    { "Contacts:HomeAddressCity" },
    { "Contacts:HomeAddressState" },
    { "Contacts:HomeAddressPostalCode" },
    { "Contacts:HomeAddressCountry" },
    { "Contacts:OtherAddressStreet" },
    { "Contacts:OtherAddressCity" },
    { "Contacts:OtherAddressState" },
    { "Contacts:OtherAddressPostalCode" },
    { "Contacts:OtherAddressCountry" },
    { "Contacts2:CustomerId" },
    { "Contacts2:GovernmentId" },
    { "Contacts2:IMAddress" },
    { "Contacts2:IMAddress2" },
    { "Contacts2:IMAddress3" },
    { "Contacts2:ManagerName" },
    { "Contacts2:CompanyMainPhone" },
    { "Contacts2:AccountName" },
    { "Contacts2:NickName" },
    { "Contacts2:MMS" },
    { "Contacts:Alias", Kind::ReadOnly, Version140 },
    { "Contacts:WeightedRank", Kind::ReadOnly, Version140 },
    { "Contacts:Categories", Kind::Categories },
    { "Contacts:Children", Kind::Children },
    { "Contacts:Picture", Kind::Picture },
    { "AirSyncBase:Body", Kind::Note },
};

WbxmlNode listNode(const QString &name, const QString &entryName, const QStringList &entries)
{
    WbxmlNode node(name);
    for (const QString &entry : entries)
        node.append(entryName, entry);
    return node;
}

QVector<WbxmlNode> nodesOf(const Row &row, const Contact &contact, const ItemShape &shape)
{
    const QString name = row.qualifiedName();
    switch (row.kind) {
    case Kind::Text:
    case Kind::Date:
    case Kind::ReadOnly: {
        const QString text = contact.text(row.field());
        return text.isEmpty() ? QVector<WbxmlNode>() : QVector<WbxmlNode> { WbxmlNode(name, text) };
    }
    case Kind::Categories:
        return contact.categories().isEmpty()
            ? QVector<WbxmlNode>()
            : QVector<WbxmlNode> { listNode(name, QStringLiteral("Category"), contact.categories()) };
    case Kind::Children:
        return contact.children().isEmpty()
            ? QVector<WbxmlNode>()
            : QVector<WbxmlNode> { listNode(name, QStringLiteral("Child"), contact.children()) };
    case Kind::Picture:
        return contact.picture().isEmpty()
            ? QVector<WbxmlNode>()
            : QVector<WbxmlNode> { WbxmlNode(name, QString::fromLatin1(contact.picture().toBase64())) };
    case Kind::Note:
        return BodyShape::elements(EmailBodies { contact.note(), QString() }, shape);
    }
    return {};
}

bool takeDate(const QString &field, const QString &text, Contact &contact)
{
    const QDateTime time = DateText::parse(text);
    if (!text.isEmpty() && !time.isValid())
        return false;
    contact.setText(field, time.isValid() ? DateText::withDashes(time) : QString());
    return true;
}

bool takePicture(const QByteArray &text, Contact &contact)
{
    const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() > largestPicture)
        return false;
    contact.setPicture(decoded.decoded);
    return true;
}

bool takeList(const WbxmlNode &node, const QString &entryName, Contact &contact,
    Contact &(Contact::*set)(const QStringList &))
{
    QStringList entries;
    const QVector<WbxmlNode> nodes = node.all(entryName);
    for (const WbxmlNode &entry : nodes)
        entries.append(entry.text());
    (contact.*set)(entries);
    return entries.size() <= mostListEntries;
}

bool take(const Row &row, const WbxmlNode &node, Contact &contact)
{
    switch (row.kind) {
    case Kind::Text:
        contact.setText(row.field(), node.text());
        return true;
    case Kind::Date:
        return takeDate(row.field(), node.text(), contact);
    case Kind::ReadOnly:
        return false;
    case Kind::Categories:
        return takeList(node, QStringLiteral("Category"), contact, &Contact::setCategories);
    case Kind::Children:
        return takeList(node, QStringLiteral("Child"), contact, &Contact::setChildren);
    case Kind::Picture:
        return takePicture(node.bytes(), contact);
    case Kind::Note:
        if (const auto note = BodyShape::uploadedText(node))
            contact.setNote(*note);
        return true;
    }
    return false;
}

void clear(const Row &row, Contact &contact)
{
    if (row.kind == Kind::Categories)
        contact.setCategories({});
    else if (row.kind == Kind::Children)
        contact.setChildren({});
    else if (row.kind == Kind::Text || row.kind == Kind::Date)
        contact.setText(row.field(), QString());
}

bool isKnown(const WbxmlNode &field, int version)
{
    return std::any_of(std::begin(rows), std::end(rows), [&](const Row &row) {
        return version >= row.firstVersion && field.name() == QLatin1String(row.name);
    });
}

} // namespace

QVector<WbxmlNode> ContactShape::elements(const Contact &contact, const ItemShape &shape)
{
    QVector<WbxmlNode> result;
    for (const Row &row : rows) {
        if (shape.version >= row.firstVersion)
            result += nodesOf(row, contact, shape);
    }
    return result;
}

std::optional<Contact> ContactShape::changed(
    const Contact &before, const WbxmlNode &data, const UploadShape &upload)
{
    const bool allKnown = std::all_of(data.children().begin(), data.children().end(),
        [&upload](const WbxmlNode &field) { return isKnown(field, upload.version); });
    if (!allKnown)
        return std::nullopt;
    Contact contact = before;
    for (const Row &row : rows) {
        const WbxmlNode node = data.at(row.qualifiedName());
        if (node.isNull()) {
            if (upload.isManaged(row.qualifiedName()))
                clear(row, contact);
        } else if (!take(row, node, contact)) {
            return std::nullopt;
        }
    }
    return contact;
}

QStringList ContactShape::textFields()
{
    QStringList fields;
    for (const Row &row : rows) {
        if (row.isText())
            fields.append(row.field());
    }
    return fields;
}

} // namespace Simulator
