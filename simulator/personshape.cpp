// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/personshape.h"

namespace Simulator {
namespace {

enum PictureStatus { HasPicture = 1, NoPicture = 173, TooLarge = 174, TooMany = 175 };

} // namespace

PersonShape::PersonShape(const WbxmlNode &picture)
    : mIsWanted(!picture.isNull())
{
    if (picture.has(QStringLiteral("MaxSize")))
        mMaxSize = picture.text(QStringLiteral("MaxSize")).toInt();
    if (picture.has(QStringLiteral("MaxPictures")))
        mMaxPictures = picture.text(QStringLiteral("MaxPictures")).toInt();
}

QVector<WbxmlNode> PersonShape::elements(const Person &person)
{
    QVector<WbxmlNode> nodes;
    for (const QString &field : Person::textFields()) {
        if (!person.text(field).isEmpty())
            nodes.append(WbxmlNode(QStringLiteral("GAL:") + field, person.text(field)));
    }
    if (mIsWanted)
        nodes.append(pictureElement(person.picture()));
    return nodes;
}

WbxmlNode PersonShape::pictureElement(const QByteArray &picture)
{
    int status = HasPicture;
    if (picture.isEmpty())
        status = NoPicture;
    else if (mMaxSize >= 0 && picture.size() > mMaxSize)
        status = TooLarge;
    else if (mMaxPictures >= 0 && mCount >= mMaxPictures)
        status = TooMany;
    WbxmlNode node(QStringLiteral("GAL:Picture"));
    node.append(QStringLiteral("Status"), status);
    if (status == HasPicture) {
        ++mCount;
        node.append(QStringLiteral("Data"), QString::fromLatin1(picture.toBase64()));
    }
    return node;
}

} // namespace Simulator
