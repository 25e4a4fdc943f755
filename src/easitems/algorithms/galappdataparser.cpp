// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/galappdataparser.h"

#include "application/base/logging.h"
#include "protocol/wbxml/parserbase.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <algorithm>
#include <iterator>

using namespace Wbxml;

namespace {

constexpr int PictureSuccess = 1;

struct Member
{
    Token tag;
    void (GalItem::*set)(const QString &);
};

constexpr Member members[] = {
    { GAL::DisplayName, &GalItem::setDisplayName },
    { GAL::Phone, &GalItem::setPhone },
    { GAL::Office, &GalItem::setOffice },
    { GAL::Title, &GalItem::setTitle },
    { GAL::Company, &GalItem::setCompany },
    { GAL::Alias, &GalItem::setAlias },
    { GAL::FirstName, &GalItem::setFirstName },
    { GAL::LastName, &GalItem::setLastName },
    { GAL::HomePhone, &GalItem::setHomePhone },
    { GAL::MobilePhone, &GalItem::setMobilePhone },
    { GAL::EmailAddress, &GalItem::setEmailAddress },
};

} // namespace

GalAppDataParser::GalAppDataParser(QObject *parent)
    : AppDataParserBase(parent)
{
}

void GalAppDataParser::reset()
{
    mItem = GalItem();
    mIsEmpty = true;
}

void GalAppDataParser::onStartElement(uint page, uint token)
{
    if (key(page, token) != GAL::Picture)
        return;
    mPictureStatus = 0;
    mPictureText.clear();
}

void GalAppDataParser::onEndElement(uint page, uint token)
{
    if (key(page, token) != GAL::Picture)
        return;
    if (mPictureStatus == PictureSuccess)
        takePicture(mPictureText);
    mPictureText.clear();
}

void GalAppDataParser::onContent(uint page, uint token, const QString &text, const QByteArray &)
{
    const uint tag = key(page, token);
    if (tag == GAL::Status)
        mPictureStatus = ParserBase::toStatus(text);
    else if (tag == GAL::Data)
        mPictureText = text;
    else if (tag != GAL::Picture && !takeText(tag, text))
        logUnhandledField(text, page, token);
}

bool GalAppDataParser::takeText(uint key, const QString &text)
{
    const auto member = std::find_if(std::begin(members), std::end(members),
        [key](const Member &candidate) { return candidate.tag.key() == key; });
    if (member == std::end(members))
        return false;
    (mItem.*member->set)(text);
    mIsEmpty = false;
    return true;
}

void GalAppDataParser::takePicture(const QString &text)
{
    if (text.size() > LongestPicture) {
        qCWarning(eas()) << "Picture of" << mItem.emailAddress() << "is too large:" << text.size();
        return;
    }
    // Servers may fold the text into lines.
    QByteArray base64 = text.toLatin1();
    base64.replace('\r', QByteArray()).replace('\n', QByteArray());
    const auto decoded = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (base64.isEmpty() || decoded.decodingStatus != QByteArray::Base64DecodingStatus::Ok) {
        qCWarning(eas()) << "Picture of" << mItem.emailAddress() << "is not Base64";
        return;
    }
    mItem.setPictureData(QString::fromLatin1(base64));
    mIsEmpty = false;
}
