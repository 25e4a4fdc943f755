// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/email.h"

#include "simulator/emailshape.h"
#include "simulator/wbxmlcodec.h"

#include <QUuid>

namespace Simulator {
namespace {

QByteArray draftMessage(const WbxmlNode &data)
{
    const auto header = [&data](const char *name, const QString &path) {
        const QString value = data.text(path);
        return value.isEmpty() ? QByteArray()
                               : QByteArray(name) + ": =?utf-8?B?" + value.toUtf8().toBase64() + "?=\r\n";
    };
    const auto addresses = [&data](const char *name, const QString &path) {
        const QString value = data.text(path);
        return value.isEmpty() ? QByteArray() : QByteArray(name) + ": " + value.toUtf8() + "\r\n";
    };
    const WbxmlNode body = data.at(QStringLiteral("AirSyncBase:Body"));
    if (body.text(QStringLiteral("Type")) == QLatin1String("4"))
        return body.at(QStringLiteral("Data")).bytes();
    const bool html = body.text(QStringLiteral("Type")) == QLatin1String("2");
    return addresses("To", QStringLiteral("Email:To")) + addresses("Cc", QStringLiteral("Email:Cc"))
        + addresses("Bcc", QStringLiteral("Email2:Bcc")) + header("Subject", QStringLiteral("Email:Subject"))
        + "Message-ID: <" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + "@example.com>\r\n"
        + "MIME-Version: 1.0\r\nContent-Type: text/" + (html ? "html" : "plain")
        + "; charset=utf-8\r\nContent-Transfer-Encoding: base64\r\n\r\n"
        + body.at(QStringLiteral("Data")).bytes().toBase64() + "\r\n";
}

QStringList categoriesOf(const WbxmlNode &node)
{
    QStringList categories;
    const QVector<WbxmlNode> nodes = node.all(QStringLiteral("Category"));
    for (const WbxmlNode &category : nodes)
        categories.append(category.text());
    return categories;
}

} // namespace

Email::Ptr Email::fromMessage(const QByteArray &message, const QDateTime &received)
{
    auto email = std::make_shared<Email>();
    email->mContent = std::make_shared<EmailContent>(message, received);
    return sealed(email);
}

Email::Ptr Email::fromUpload(const WbxmlNode &applicationData, const UploadShape &upload)
{
    const Ptr draft = fromMessage(draftMessage(applicationData), QDateTime::currentDateTimeUtc());
    return std::static_pointer_cast<const Email>(draft->withRead(true)->withChanges(applicationData, upload));
}

int Email::flagStatus() const
{
    return mFlag.text(QStringLiteral("Status")).toInt();
}

Email::Ptr Email::withRead(bool read) const
{
    auto changed = std::make_shared<Email>(*this);
    changed->mRead = read;
    return sealed(changed);
}

Email::Ptr Email::withFlagStatus(int status) const
{
    auto changed = std::make_shared<Email>(*this);
    changed->mFlag = WbxmlNode(QStringLiteral("Email:Flag"));
    if (status > 0) {
        changed->mFlag.append(QStringLiteral("Status"), status);
        changed->mFlag.append(QStringLiteral("FlagType"), QStringLiteral("Flag for follow up"));
    }
    return sealed(changed);
}

Email::Ptr Email::withCategories(const QStringList &categories) const
{
    auto changed = std::make_shared<Email>(*this);
    changed->mCategories = categories;
    return sealed(changed);
}

Email::Ptr Email::sealed(const std::shared_ptr<Email> &email)
{
    email->mState = { { QStringLiteral("Read"), email->mRead ? "1" : "0" },
        { QStringLiteral("Flag"), WbxmlCodec::encode(email->mFlag) },
        { QStringLiteral("Categories"), email->mCategories.join(QLatin1Char('\n')).toUtf8() },
        { QStringLiteral("Content"), QByteArray::number(email->mContent->serial()) } };
    return email;
}

QVector<WbxmlNode> Email::elements(const ItemShape &shape) const
{
    return EmailShape::all(*this, shape);
}

QVector<WbxmlNode> Email::changedElements(const ItemState &known, const ItemShape &shape) const
{
    return EmailShape::changed(*this, known, shape);
}

std::optional<ItemAttachment> Email::attachment(int number) const
{
    const QVector<ItemAttachment> all = mContent->attachments();
    return number >= 0 && number < all.size() ? std::make_optional(all.at(number)) : std::nullopt;
}

ItemPtr Email::withChanges(const WbxmlNode &applicationData, const UploadShape &) const
{
    auto changed = std::make_shared<Email>(*this);
    bool isContent = false;
    for (const WbxmlNode &field : applicationData.children()) {
        if (field.name() == QLatin1String("Email:Read"))
            changed->mRead = field.text() == QLatin1String("1");
        else if (field.name() == QLatin1String("Email:Flag"))
            changed->mFlag = field;
        else if (field.name() == QLatin1String("Email:Categories"))
            changed->mCategories = categoriesOf(field);
        else
            isContent = true;
    }
    if (isContent) {
        const QByteArray message = draftMessage(applicationData);
        changed->mContent = std::make_shared<EmailContent>(message, date());
    }
    return sealed(changed);
}

} // namespace Simulator
